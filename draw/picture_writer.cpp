#include "draw/picture_writer.h"

#include <dlfcn.h>
#include <link.h>

#include <string_view>

namespace tessera_draw {
namespace {

// The folder that the program's other libraries were loaded from, with a slash behind; empty if nobody knows.
// The loader's own search begins with whoever calls it, which under a sanitizer is not the program.
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

PictureWriter* loadPictureWriter(std::string& error) {
    // The name carries the version: a scene means the same to those who were built together only.
    const std::string path = folderOfLibraries() + TESSERA_PICTURES_LIBRARY;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* symbol = library == nullptr ? nullptr : dlsym(library, "tesseraPictureWriter");
    if (symbol == nullptr) {
        const char* reason = dlerror();
        error = reason == nullptr ? TESSERA_PICTURES_LIBRARY " cannot be loaded" : reason;
        return nullptr;
    }
    return reinterpret_cast<PictureWriter* (*)()>(symbol)();
}

}  // namespace tessera_draw
