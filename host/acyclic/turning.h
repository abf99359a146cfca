// Which links of a document to turn around.
#pragma once

#include <cstddef>
#include <vector>

#include "host/acyclic/arc_graph.h"
#include "host/check/graph_sections.h"
#include "host/check/watch.h"

namespace tessera_host {

// Links and nodes are those of a DeclaredGraph, by index.

// Nodes of one group that links connect in circles.
struct Tangle {
    std::size_t group = 0;           // 0: the top level
    std::vector<std::size_t> nodes;  // ascending; the arcs name them by their place here
    std::vector<std::size_t> links;  // ascending, each an arc
    ArcGraph arcs{0, {}};
};

// The links that lie on cycles inside their groups; a link between groups counts for the two nodes side by
// side that hold its ends.
struct CyclicLinks {
    std::vector<Tangle> tangles;  // in the order of their first links
    // From a node to itself, or between a group and what is in it. No turning helps there.
    std::vector<std::size_t> loops;
};

[[nodiscard]] CyclicLinks findCyclicLinks(const DeclaredGraph& graph, Watch& watch);

// The links to be turned around so that no cycle but the loops is left, ascending; few, and none for nothing,
// as feedbackArcs() says.
[[nodiscard]] std::vector<std::size_t> linksToTurn(const CyclicLinks& cyclic, Watch& watch);

}  // namespace tessera_host
