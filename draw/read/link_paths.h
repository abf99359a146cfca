// Puts the pieces of links together again: one link path for each link of the document.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"

namespace tessera_draw {

// A place on a link path, between its ends: the label or dummy that stands there, and where.
struct PathStop {
    Index node = nothing;
    Index group = nothing;    // the group whose layers it is in
    std::int32_t level = -1;  // its layer there; not always the node's own (see findLinkPaths)
};

// One link as a document has it, drawn as one line. Its direction names the arrow heads as the document does.
struct LinkPath {
    std::string_view id;
    std::string_view name;
    std::string_view direction;
    Index from = nothing;  // a node or a group; `nothing` when the diagram lacks it
    Index to = nothing;
    std::uint32_t firstStop = 0;  // its stops, from `from` to `to`, in LinkPaths::stops
    std::uint32_t stopCount = 0;
    Index link = nothing;  // the link of the diagram that carries the link path's own id
};

struct LinkPaths {
    std::vector<LinkPath> paths;  // in the order in which the diagram has their first piece
    std::vector<PathStop> stops;
    std::vector<Index> orphanLabels;  // labels that no link path passes or ends in
};

// The layout splits a link around each label and dummy node that it inserts, and exchanges some labels with
// dummies by rewriting the pieces' ends, which can leave a chain that ends in a label, or a label that links
// to itself while a dummy has its place. Returns what was meant: each label and each dummy is on exactly one
// link path, labels in the order "from", "center", "to", an exchanged label in the stop of the dummy that it was
// exchanged with, group and level included. Parallel links can share the ids of all that was put onto them;
// the order in which a bag lists nodes and links tells them apart. A link that cannot be understood so, in a
// diagram that no library has written, is a link path of its own. Linear time.
[[nodiscard]] LinkPaths findLinkPaths(const Diagram& diagram);

}  // namespace tessera_draw
