// Reads the process environment.
#pragma once

#include <string>

#include "platform/export.h"

namespace basekit2 {

// The value of the environment variable `name`, or "" when it is not set. Any thread, as long as nobody
// changes the environment at the same time.
[[nodiscard]] TESSERA_PLATFORM_EXPORT std::string get_environ_value(const std::string& name);

}  // namespace basekit2
