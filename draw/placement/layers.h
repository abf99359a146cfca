// The layer of every box among the members of its container.
#pragma once

#include <vector>

#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {

struct Layers {
    std::vector<Index> ofBox;        // from 0
    std::vector<Index> inContainer;  // how many there are
};

// Boxes with levels stand in their order. Those at -1 stand behind what leads to them or, where nothing with
// a level does, before what they lead to. Boxes at a border stand in the container's first or last layer, in
// one of their own where their level says otherwise.
[[nodiscard]] Layers layersOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                              const std::vector<RouteSegment>& routeSegments);

}  // namespace tessera_draw::placing
