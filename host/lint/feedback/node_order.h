// Orders of the nodes of a graph with few backward arcs: arcs from a later node to an earlier one.
#pragma once

#include <vector>

#include "host/lint/feedback/arc_graph.h"
#include "support/cancel_token.h"

namespace tessera_host {

using tessera_support::CancelToken;

// The greedy order of Eades, Lin and Smyth: sinks go to the end, sources to the beginning, and when there are
// neither, the node with the largest surplus of leaving over entering arcs to the beginning; of equals the
// first one. Linear time.
[[nodiscard]] std::vector<std::size_t> greedyOrder(const ArcGraph& graph, const CancelToken& token);

// Moves single nodes to where they have the fewest backward arcs, until no move helps or a number of rounds
// has passed. n log n time.
[[nodiscard]] std::vector<std::size_t> siftedOrder(const ArcGraph& graph, std::vector<std::size_t> order,
                                                   const CancelToken& token);

// An order with the same forward arcs, and otherwise as much like the reverse of `order` as they allow, so
// that many of its backward arcs become forward arcs. n log n time.
[[nodiscard]] std::vector<std::size_t> reversedOrder(const ArcGraph& graph,
                                                     const std::vector<std::size_t>& order,
                                                     const CancelToken& token);

// An order that keeps the forward arcs of `order` and adds as many others as it can: every backward arc
// closes a cycle with forward arcs. Ends early when that takes more than a number of steps for each node and
// arc.
[[nodiscard]] std::vector<std::size_t> minimalOrder(const ArcGraph& graph,
                                                    const std::vector<std::size_t>& order,
                                                    const CancelToken& token);

inline constexpr std::size_t maxExactNodes = 10;

// An order with the fewest backward arcs. REQUIRES: at most `maxExactNodes` nodes.
[[nodiscard]] std::vector<std::size_t> exactOrder(const ArcGraph& graph);

}  // namespace tessera_host
