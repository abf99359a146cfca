// What the layout has put onto links, as the ids and the order of a diagram's nodes and links tell.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"

namespace tessera_draw {

// A link has been split in two around a new node: it leads to that, and a new link from there to where it had
// led.
struct Split {
    Index node = nothing;
    Index half = nothing;  // the new link
    // The nodes that the split link had as its ends; of several with their id, the last.
    Index from = nothing;
    Index to = nothing;
};

struct Splits {
    std::vector<Split> all;  // in the order in which they were made
    // So many links come first that are no halves: the document's.
    std::size_t documentLinks = 0;
    std::vector<Index> classes;  // by node: the last one that has its id
};

[[nodiscard]] inline bool isDummy(const Node& node) {
    return node.type == "dummy";
}
[[nodiscard]] inline bool isLabel(const Node& node) {
    return node.type == "label";
}
[[nodiscard]] inline bool isLabel(const Node& node, std::string_view location) {
    return isLabel(node) && node.location == location;
}

// Every split appends a node and a link, so that the last links belong to the labels and dummies in their
// order; their ids say what was split. Where that does not hold no library has written the diagram: what
// comes before is then left alone. Linear time.
[[nodiscard]] Splits readSplits(const Diagram& diagram);

}  // namespace tessera_draw
