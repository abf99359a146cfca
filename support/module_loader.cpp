#include "support/module_loader.h"

#include <dlfcn.h>
#include <link.h>

#include <string_view>

namespace tessera_support {
namespace {

// The folder that the program's other libraries were loaded from, with a slash at the end; empty if unknown.
// The loader itself searches relative to its caller, which under a sanitizer is not the program.
std::string folderOfLibraries() {
    void* program = dlopen(nullptr, RTLD_NOW | RTLD_LOCAL);
    link_map* each = nullptr;
    if (program == nullptr || dlinfo(program, RTLD_DI_LINKMAP, static_cast<void*>(&each)) != 0) return {};
    for (; each != nullptr; each = each->l_next) {
        const std::string_view path = each->l_name;
        const std::size_t name = path.rfind('/') + 1;
        if (path.substr(name).starts_with("libtessera_platform.so")) return std::string(path.substr(0, name));
    }
    return {};
}

}  // namespace

void* findInModule(const std::string& library, const char* name, std::string& error) {
    void* module = dlopen((folderOfLibraries() + library).c_str(), RTLD_NOW | RTLD_LOCAL);
    void* symbol = module == nullptr ? nullptr : dlsym(module, name);
    if (symbol != nullptr) return symbol;
    const char* reason = dlerror();
    error = reason == nullptr ? library + " cannot be loaded" : reason;
    return nullptr;
}

}  // namespace tessera_support
