// Reads the values of a bag for a structure that was read before, possibly from another bag.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"
#include "draw/read/meaning.h"
#include "draw/text_arena.h"

namespace tessera_draw {

// How a bag differs from the structure that its values were read for: the ids of nodes and links, new ones in
// the bag's order, missing ones in the structure's. An id of several nodes or links occurs once for each.
// Owns its texts.
struct Differences {
    std::vector<std::string> newNodes;      // in the bag only: not drawn
    std::vector<std::string> missingNodes;  // in the structure only: drawn without values
    std::vector<std::string> newLinks;
    std::vector<std::string> missingLinks;

    [[nodiscard]] bool isEmpty() const noexcept {
        return newNodes.empty() && missingNodes.empty() && newLinks.empty() && missingLinks.empty();
    }
};

// The values of one link: at its start, in total, and at its end.
struct LinkValues {
    Info from;
    Info total;
    Info to;
};

struct Values {
    std::string_view displayMode;
    Meaning meaning;
    std::vector<Info> nodes;        // by node of the structure
    std::vector<LinkValues> links;  // by link of the structure
};

// Reads the values of `bag`, matched by id to the nodes and links of `structure`. Where several have one id,
// they are matched in their order. What the bag lacks gets empty values. All texts are copied into `texts`,
// so the bag may be destroyed after the call. Appends to `differences`. Accepts any bag. Linear time.
[[nodiscard]] Values readValues(const basekit2::variant_bag_t& bag, const Diagram& structure,
                                TextArena& texts, Differences& differences);

// Those of the nodes alone, as views of the texts in `bag`.
[[nodiscard]] std::vector<Info> readNodeValues(const basekit2::variant_bag_t& bag, const Diagram& structure);

}  // namespace tessera_draw
