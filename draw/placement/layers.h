// The layer of every box among the members of its container.
#pragma once

#include <vector>

#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {

struct Layers {
    std::vector<Index> ofBox;        // from 0, in its container
    std::vector<Index> inContainer;  // by container: the number of layers
};

// Boxes with levels are ordered by them. A box with level -1 comes after the boxes with a level that lead to
// it, or else before those that it leads to. Boxes at a border are in the container's first or last layer, in
// one of their own if their level is another. Layers are numbered without gaps. n log n time.
[[nodiscard]] Layers layersOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                              const std::vector<RouteSegment>& routeSegments);

}  // namespace tessera_draw::placing
