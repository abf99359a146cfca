// The function that the program looks up in this library.
#include "host/catalogs/catalogs.h"
#include "host/catalogs/gettext/gettext_catalogs.h"

extern "C" __attribute__((visibility("default"))) void tesseraReadCatalogs(const std::string& directory,
                                                                           const std::string& locale,
                                                                           tessera_host::Catalogs& catalogs) {
    catalogs.source = std::make_shared<tessera_host::GettextCatalogs>(directory, locale, catalogs.problems);
}
