#include "draw/picture_writer.h"

#include "modules/module.h"

namespace tessera_draw {

PictureWriter* loadPictureWriter(std::string& error) {
    void* symbol = tessera_modules::findInModule(TESSERA_PICTURES_LIBRARY, "tesseraPictureWriter", error);
    return symbol == nullptr ? nullptr : reinterpret_cast<PictureWriter* (*)()>(symbol)();
}

}  // namespace tessera_draw
