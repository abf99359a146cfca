// Where message catalogues come from.
//
// A host that translates display names installs its source once, before its first "create". The diagram
// library reads the process's source again for every catalogue that it looks a name up in.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "platform/RTBASE_2_18/i18n/catalog.h"
#include "platform/export.h"

namespace optstore2 {

// The catalogues that names in a diagram are looked up in, in this order. The first that
// has a text for the key wins, unless the text is empty; a key that none has is shown as it stands.
inline constexpr std::array<std::string_view, 3> catalogNames{"slicer2", "viewpoint", "storeiface1"};

// The catalogue's text for the key; "" when it has none, and for a null catalogue.
[[nodiscard]] inline std::string textIn(const std::shared_ptr<const RTBASE_2_18::i18n::catalog_t>& catalog,
                                        const std::string& key) {
    if (!catalog || !catalog->has_message(key)) return {};
    return catalog->message(key).as_ustring(RTBASE_2_18::generic::varg_list{}).str();
}

// Hands out catalogues by name. Implemented by the host and shared by all panes of the process, so every
// member may be called on any thread at once. Calls come under the lock of the handler that reads its
// viewpoint: an implementation must not send a request, and should have its files read already.
class IMessageCatalogSource {
  public:
    virtual ~IMessageCatalogSource() = default;

    // The catalogue `name` (for example "viewpoint"), or null when the host has none of that name; null is
    // an ordinary result and is not reported. The caller shares ownership and keeps it only for the look-up.
    [[nodiscard]] virtual std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(
        const std::string& name) const = 0;
};

// The process's source; never null: before a host installs one, a source without catalogues. Any thread.
[[nodiscard]] TESSERA_PLATFORM_EXPORT std::shared_ptr<const IMessageCatalogSource> getMessageCatalogSource();

// Installs the host's source for the whole process; null brings the empty one back. The process shares
// ownership until another is installed. Any thread; a reader that already holds the earlier source keeps it
// alive, so unload the code of a source only after the requests that were running have ended.
TESSERA_PLATFORM_EXPORT void setMessageCatalogSource(std::shared_ptr<const IMessageCatalogSource> source);

}  // namespace optstore2
