// Message catalogues, read by a library that is loaded only for them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/error.h"
#include "platform/optstore2/message_catalog_source.h"

namespace tessera_host {

// What was found in a folder of catalogues.
struct Catalogs {
    // Never null; may have no catalogue. Any thread may use it and keep it.
    std::shared_ptr<const optstore2::IMessageCatalogSource> source;
    // One sentence for each file that could not be read and is left out, with its path.
    std::vector<std::string> problems;
};

// Reads the catalogues of `locale` below `directory`, as GettextCatalogs describes. Installs nothing: who
// wants the diagram library to use them calls optstore2::setMessageCatalogSource(). The error has the kind
// cannotOpen when the library that reads catalogues cannot be loaded. Any thread.
[[nodiscard]] Expected<Catalogs> readCatalogs(const std::string& directory, const std::string& locale);

}  // namespace tessera_host
