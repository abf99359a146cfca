// The order of vertices in their layers, with few crossings.
#pragma once

#include "draw/placement/layered_graph.h"
#include "support/cancel_token.h"

namespace tessera_draw::placing {

// Leaves: `order` and `place` of all layers. Each container is ordered on its own, at first from the inside
// to the outside and then, with its hierarchical ports as the container around it would have them, back again.
void orderLayers(LayeredGraph& graph, const Nesting& nesting, const CancelToken& cancel);

// Crossings of the edges between layers, in all containers.
[[nodiscard]] std::uint64_t crossingsOf(const LayeredGraph& graph, const Nesting& nesting);

}  // namespace tessera_draw::placing
