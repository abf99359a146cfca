// The order in layers that an earlier placement had.
#pragma once

#include "draw/placement/container_geometry.h"

namespace tessera_draw::placing {

// Orders the layers as `kept`, and inserts new vertices between those that are near their neighbours in the layers
// beside. No two vertices that `kept` knows in one layer change their order. Sets LayeredGraph::kept. n log n time.
void orderAsKept(LayeredGraph& graph, const Nesting& nesting, const std::vector<RouteSegment>& routeSegments,
                 const KeptLayers& kept);

// The layers of a graph whose vertices have their tops.
[[nodiscard]] KeptLayers layersIn(const LayeredGraph& graph, const Nesting& nesting,
                                  const std::vector<RouteSegment>& routeSegments,
                                  const ContainerGeometry& geometry);

}  // namespace tessera_draw::placing
