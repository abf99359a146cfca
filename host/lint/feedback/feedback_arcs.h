// Which arcs to turn around so that no cycle is left.
#pragma once

#include <vector>

#include "host/lint/feedback/arc_graph.h"
#include "support/cancel_token.h"

namespace tessera_host {

using tessera_support::CancelToken;

// The arcs of graphs that are to be turned around, for each graph in ascending order. In a graph of few nodes
// they are the fewest possible. In a larger one they are few: more than the fewest, which nobody can find in
// reasonable time, but none of them for nothing: turning any single one back would close a cycle again (where
// a graph is so large and tangled that this takes too long to tell, some may be). The smaller the graphs are
// together, the harder is the search. Takes n log n time; the same graphs give the same arcs.
//
// REQUIRES: each graph has a way from every node to every other.
[[nodiscard]] std::vector<std::vector<std::size_t>> feedbackArcs(const std::vector<const ArcGraph*>& graphs,
                                                                 const CancelToken& token);

}  // namespace tessera_host
