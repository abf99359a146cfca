#include "draw/picture_writer.h"

#include "support/module_loader.h"

namespace tessera_draw {

PictureWriter* loadPictureWriter(std::string& error) {
    void* symbol = tessera_support::findInModule(TESSERA_PICTURES_LIBRARY, "tesseraPictureWriter", error);
    return symbol == nullptr ? nullptr : reinterpret_cast<PictureWriter* (*)()>(symbol)();
}

}  // namespace tessera_draw
