// Libraries of the program's own that are loaded only when somebody needs what is in them.
#pragma once

#include <string>

namespace tessera_modules {

// What `name` stands for in the library of that file name, which lies beside libtessera_platform.so; the
// library stays loaded. Null, with the reason in `error`, when there is none. Any thread.
[[nodiscard]] void* findInModule(const std::string& library, const char* name, std::string& error);

}  // namespace tessera_modules
