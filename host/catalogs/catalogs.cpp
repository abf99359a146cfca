#include "host/catalogs/catalogs.h"

#include "support/module_loader.h"

namespace tessera_host {

Expected<Catalogs> readCatalogs(const std::string& directory, const std::string& locale) {
    std::string reason;
    void* symbol = tessera_support::findInModule(TESSERA_CATALOGS_LIBRARY, "tesseraReadCatalogs", reason);
    if (symbol == nullptr)
        return Error{ErrorKind::cannotOpen, "message catalogues cannot be read here: " + reason};
    using Read = void (*)(const std::string&, const std::string&, Catalogs&);
    Catalogs catalogs;
    reinterpret_cast<Read>(symbol)(directory, locale, catalogs);
    return catalogs;
}

}  // namespace tessera_host
