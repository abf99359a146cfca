// Message catalogues from gettext's .mo files.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/optstore2/message_catalog_source.h"

namespace tessera_host {

// Reads DIR/LOCALE/LC_MESSAGES/NAME.mo for the names "slicer2", "viewpoint" and "storeiface1", whichever
// exist; where the locale has an encoding or a country ("de_AT.UTF-8") and no such file is there,
// DIR/de_AT/... and DIR/de/... are tried. Locales that the machine has installed do not matter. Texts are
// UTF-8 whatever the file's encoding. Unchanging once made, so any thread may use it.
class GettextCatalogs final : public optstore2::IMessageCatalogSource {
  public:
    // Files that cannot be read are left out; a sentence for each is appended to `problems`. A file that does
    // not exist is not a problem.
    GettextCatalogs(const std::string& directory, const std::string& locale,
                    std::vector<std::string>& problems);

    [[nodiscard]] std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(
        const std::string& name) const override;

    // How many catalogues were found.
    [[nodiscard]] std::size_t size() const noexcept { return m_catalogs.size(); }

  private:
    std::map<std::string, std::shared_ptr<const RTBASE_2_18::i18n::catalog_t>> m_catalogs;
};

}  // namespace tessera_host
