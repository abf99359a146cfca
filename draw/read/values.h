// The values of a bag, for a structure that was read before, perhaps from another bag.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"
#include "draw/text_arena.h"

namespace tessera_draw {

// How a bag differs from the structure that its values were read for. Ids, in the order of the bag or the
// structure; each at most once for each node or link.
struct Differences {
    std::vector<std::string> newNodes;      // in the bag only: not drawn
    std::vector<std::string> missingNodes;  // in the structure only: drawn without values
    std::vector<std::string> newLinks;
    std::vector<std::string> missingLinks;

    [[nodiscard]] bool isEmpty() const noexcept {
        return newNodes.empty() && missingNodes.empty() && newLinks.empty() && missingLinks.empty();
    }
};

struct LinkValues {
    Info from;
    Info total;
    Info to;
};

struct Values {
    std::string_view displayMode;
    std::vector<Info> nodes;        // as the structure's
    std::vector<LinkValues> links;  // as the structure's
};

// Reads the values of `bag` into the places of `structure`, matched by id: where a bag has several nodes or
// links of one id, in their order. All texts are copied into `texts`. Accepts any bag. Linear time.
[[nodiscard]] Values readValues(const basekit2::variant_bag_t& bag, const Diagram& structure,
                                TextArena& texts, Differences& differences);

}  // namespace tessera_draw
