#include "draw/picture_writer.h"

#include <dlfcn.h>

namespace tessera_draw {

PictureWriter* loadPictureWriter(std::string& error) {
    // The name carries the version: a scene means the same to those who were built together only.
    void* library = dlopen(TESSERA_PICTURES_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* symbol = library == nullptr ? nullptr : dlsym(library, "tesseraPictureWriter");
    if (symbol == nullptr) {
        const char* reason = dlerror();
        error = reason == nullptr ? TESSERA_PICTURES_LIBRARY " cannot be loaded" : reason;
        return nullptr;
    }
    return reinterpret_cast<PictureWriter* (*)()>(symbol)();
}

}  // namespace tessera_draw
