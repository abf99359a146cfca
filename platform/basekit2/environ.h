// Reads the process environment.
#pragma once

#include <string>

#include "platform/export.h"

namespace basekit2 {

// The value of the environment variable `name` as a copy, or "" when it is not set; an empty value and an
// absent variable look the same. Any thread, as long as no thread changes the environment at the same time:
// a host that calls setenv() does so before it loads the library. The diagram library reads one variable,
// tessera_ERROR_HANDLING, once a source unit.
[[nodiscard]] TESSERA_PLATFORM_EXPORT std::string get_environ_value(const std::string& name);

}  // namespace basekit2
