// Orders of nodes against which few arcs run.
#pragma once

#include <vector>

#include "host/lint/feedback/arc_graph.h"
#include "support/cancel_token.h"

namespace tessera_host {

using tessera_support::CancelToken;

// All nodes in the order of Eades, Lin and Smyth: nodes that no arc leaves go to the end, nodes that no arc
// enters to the beginning, and when there are neither, the one with the most leaving arcs above its entering
// ones; of several, the one that stands first. Takes linear time.
[[nodiscard]] std::vector<std::size_t> greedyOrder(const ArcGraph& graph, const CancelToken& token);

// Moves single nodes to where the fewest of their arcs run backwards, until that gains nothing or a number of
// rounds has passed. Takes n log n time.
[[nodiscard]] std::vector<std::size_t> siftedOrder(const ArcGraph& graph, std::vector<std::size_t> order,
                                                   const CancelToken& token);

// Of all orders in which the arcs run forwards that do so in this one, that which is most like its reverse:
// so that many of the other arcs run forwards, too. Takes n log n time.
[[nodiscard]] std::vector<std::size_t> reversedOrder(const ArcGraph& graph,
                                                     const std::vector<std::size_t>& order,
                                                     const CancelToken& token);

// An order in which the arcs run forwards that do so in this one, and as many others that none can be added:
// every arc that runs backwards closes a cycle with those that run forwards. When that takes more than a
// number of steps for each node and arc, it ends before it is done.
[[nodiscard]] std::vector<std::size_t> minimalOrder(const ArcGraph& graph,
                                                    const std::vector<std::size_t>& order,
                                                    const CancelToken& token);

inline constexpr std::size_t maxExactNodes = 10;

// An order against which the fewest arcs run. REQUIRES: no more nodes than that.
[[nodiscard]] std::vector<std::size_t> exactOrder(const ArcGraph& graph);

}  // namespace tessera_host
