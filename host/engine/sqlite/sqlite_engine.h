// The SQLite engine, as it is registered.
#pragma once

#include "host/engine/engine_registry.h"

namespace tessera_host {

// Reads SQLite files. Knows no scheme: every address is the path of a file, taken literally.
[[nodiscard]] Engine sqliteEngine();

}  // namespace tessera_host
