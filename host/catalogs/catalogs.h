// Message catalogues, read by a library that is loaded only for them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/optstore2/message_catalog_source.h"

namespace tessera_host {

using Catalogs = std::shared_ptr<optstore2::IMessageCatalogSource>;

// What GettextCatalogs reads. What cannot be read is left out, one sentence each in `problems`; null, with a
// sentence too, when the library is not there.
[[nodiscard]] Catalogs readCatalogs(const std::string& directory, const std::string& locale,
                                    std::vector<std::string>& problems);

}  // namespace tessera_host
