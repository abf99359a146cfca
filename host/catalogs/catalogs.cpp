#include "host/catalogs/catalogs.h"

#include "support/module_loader.h"

namespace tessera_host {

Catalogs readCatalogs(const std::string& directory, const std::string& locale,
                      std::vector<std::string>& problems) {
    std::string error;
    void* symbol = tessera_support::findInModule(TESSERA_CATALOGS_LIBRARY, "tesseraReadCatalogs", error);
    if (symbol == nullptr) {
        problems.push_back("message catalogues cannot be read here: " + error);
        return nullptr;
    }
    using Read = void (*)(const std::string&, const std::string&, std::vector<std::string>&, Catalogs&);
    Catalogs catalogs;
    reinterpret_cast<Read>(symbol)(directory, locale, problems, catalogs);
    return catalogs;
}

}  // namespace tessera_host
