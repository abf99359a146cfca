// Shared libraries of the program's own that are loaded only when their contents are needed.
#pragma once

#include <string>

namespace tessera_support {

// The address of the exported function or object `name` in the library with that file name, which is in the
// folder of libtessera_platform.so, or where the system's loader finds it when that folder is unknown. The
// name has to be an exported C name; the caller casts the address to the right type. The library stays loaded
// until the process ends. Returns null, with the reason in `error`, when the library or the name cannot be
// found. Any thread.
[[nodiscard]] void* findInModule(const std::string& library, const char* name, std::string& error);

}  // namespace tessera_support
