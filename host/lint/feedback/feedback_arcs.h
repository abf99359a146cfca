// Which arcs to reverse so that no cycle is left.
#pragma once

#include <vector>

#include "host/lint/feedback/arc_graph.h"
#include "support/cancel_token.h"

namespace tessera_host {

using tessera_support::CancelToken;

// A feedback arc set of each graph: the arcs to reverse so that no cycle is left, in ascending order. In a
// graph of at most `maxExactNodes` nodes it is a smallest one. In a larger graph it is small and minimal:
// restoring any single arc would close a cycle again, except where a graph is so large that finding this out
// takes too long. The smaller the graphs are in total, the more orders are tried. n log n time; the same
// graphs give the same arcs. Incomplete once `token` is cancelled.
//
// REQUIRES: each graph is strongly connected.
[[nodiscard]] std::vector<std::vector<std::size_t>> feedbackArcs(const std::vector<const ArcGraph*>& graphs,
                                                                 const CancelToken& token);

}  // namespace tessera_host
