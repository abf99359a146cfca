// Joins the parts of split links again: one link path for each link of the document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"

namespace tessera_draw {

// A place on a link path, between its ends, and the label or dummy there.
struct PathStop {
    Index node = nothing;
    Index group = nothing;    // the group whose layers it is in; `nothing` at top level
    std::int32_t level = -1;  // its layer there; not always the node's own (see findLinkPaths)
};

// One link as the document has it, drawn as one line. Its direction is the document's, so it names the arrow
// heads of the whole path. Texts are views of the diagram's.
struct LinkPath {
    std::string_view id;
    std::string_view name;
    std::string_view direction;
    Index from = nothing;  // a node or a group; `nothing` when the diagram lacks it
    Index to = nothing;
    std::uint32_t firstStop = 0;  // its stops, from `from` to `to`, in LinkPaths::stops
    std::uint32_t stopCount = 0;
    Index link = nothing;  // the link of the diagram that has the path's id and values
};

struct LinkPaths {
    std::vector<LinkPath> paths;      // in the diagram's order of their first parts
    std::vector<PathStop> stops;      // of all paths, one path after the other
    std::vector<Index> orphanLabels;  // labels that are neither a stop nor an end of any path
};

// The layout splits a link around each label and dummy node that it inserts. It also exchanges some labels
// with dummies by rewriting the ends of the parts. This can leave a chain that ends in a label, or a label
// that links to itself while a dummy has its place.
//
// Returns the paths without these defects. Each label and each dummy is on exactly one path, labels in the
// order "from", "center", "to". An exchanged label has the stop of the dummy that it was exchanged with,
// group and level included. Inserted nodes of parallel links can have the same ids; the order of nodes and
// links in the bag tells them apart.
//
// Accepts any diagram. A link that does not follow these rules, which the layout never writes, is a path of
// its own without stops. The diagram's texts must outlive the result. Linear time.
[[nodiscard]] LinkPaths findLinkPaths(const Diagram& diagram);

// By node: the path that stops at it, as an index of `paths`; `nothing` for other nodes. Linear time.
[[nodiscard]] std::vector<Index> pathsOfStops(const LinkPaths& linkPaths, std::size_t nodeCount);

}  // namespace tessera_draw
