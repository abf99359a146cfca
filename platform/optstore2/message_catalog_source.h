// Where message catalogues come from.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "platform/RTBASE_2_18/i18n/catalog.h"
#include "platform/export.h"

namespace optstore2 {

// The catalogues that names in a diagram are looked up in, in this order.
inline constexpr std::array<std::string_view, 3> catalogNames{"slicer2", "viewpoint", "storeiface1"};

// Hands out catalogues by name. Implemented by the host. Any thread.
class IMessageCatalogSource {
  public:
    virtual ~IMessageCatalogSource() = default;

    // The catalogue `name` (for example "viewpoint"), or null when the host has none of that name.
    [[nodiscard]] virtual std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(
        const std::string& name) const = 0;
};

// The process's source; never null: without a host's own it is one that has no catalogues. Any thread.
[[nodiscard]] TESSERA_PLATFORM_EXPORT std::shared_ptr<const IMessageCatalogSource> getMessageCatalogSource();

// Installs the host's source for the whole process; null brings the empty one back. Any thread; a reader that
// already holds the earlier source keeps it alive.
TESSERA_PLATFORM_EXPORT void setMessageCatalogSource(std::shared_ptr<const IMessageCatalogSource> source);

}  // namespace optstore2
