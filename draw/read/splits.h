// The splits by which the layout has inserted nodes into links, derived from the ids and the order of a
// diagram's nodes and links.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"

namespace tessera_draw {

// One split: the layout has inserted a node into a link. The link now leads to the node, and a new link, the
// half, leads from the node to where the link led before.
struct Split {
    Index node = nothing;
    Index half = nothing;  // the new link
    // The ends of the link before the split; where several nodes have the id, the last. `nothing` for "".
    Index from = nothing;
    Index to = nothing;
};

struct Splits {
    std::vector<Split> all;  // in the order in which they were made
    // The number of links at the start of the list that are the document's own, not halves.
    std::size_t documentLinks = 0;
    std::vector<Index> classes;  // by node: the last node with the same id; `nothing` for ""
};

// Types of nodes that the layout inserts. A label's location is "from", "to" or "center".
[[nodiscard]] inline bool isDummy(const Node& node) {
    return node.type == "dummy";
}
[[nodiscard]] inline bool isLabel(const Node& node) {
    return node.type == "label";
}
[[nodiscard]] inline bool isLabel(const Node& node, std::string_view location) {
    return isLabel(node) && node.location == location;
}

// Every split appends a node and a link. The last links of the diagram therefore belong to its labels and
// dummies, in their order, and their ids name the ends of the link that was split. Reads from the end of both
// lists and stops at the first pair that does not match, which the layout never writes: all links before it
// count as the document's. Accepts any diagram. Linear time.
[[nodiscard]] Splits readSplits(const Diagram& diagram);

}  // namespace tessera_draw
