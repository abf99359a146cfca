// The order of vertices in their layers, with few crossings.
#pragma once

#include "draw/placement/layered_graph.h"
#include "support/cancel_token.h"

namespace tessera_draw::placing {

// Sets `order` and `place` of all layers. Each container is ordered on its own: first from inner to outer
// ones, then back, with hierarchical ports ordered as the surrounding container needs them. Limited by a
// number of comparisons, not by time, so the result is the same on every machine. Stops early when cancelled;
// the order is then valid, but has more crossings.
void orderLayers(LayeredGraph& graph, const Nesting& nesting, const CancelToken& cancel);

// The number of crossings of edges between layers, in all containers. For tests and measurements.
[[nodiscard]] std::uint64_t crossingsOf(const LayeredGraph& graph, const Nesting& nesting);

}  // namespace tessera_draw::placing
