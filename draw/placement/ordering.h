// The order of vertices in their layers, with few crossings.
#pragma once

#include "draw/placement/net.h"
#include "draw/placement/watch.h"

namespace tessera_draw::placing {

// Leaves: `order` and `place` of all layers. Each container is ordered on its own, at first from the inside
// to the outside and then, with its border points as the container around it would have them, back again.
void orderLayers(Net& net, const Nesting& nesting, Watch& watch);

// Crossings of the edges between layers, in all containers.
[[nodiscard]] std::uint64_t crossingsOf(const Net& net, const Nesting& nesting);

}  // namespace tessera_draw::placing
