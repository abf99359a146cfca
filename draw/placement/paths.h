// Lines as they are drawn.
#pragma once

#include "draw/placement/container_geometry.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {

// Needs the boxes where they stand in the drawing.
[[nodiscard]] std::vector<PlacedLine> pathsOf(const PlacementInput& input, const Nesting& nesting,
                                              const std::vector<RouteSegment>& routeSegments,
                                              const LayeredGraph& graph, const ContainerGeometry& geometry,
                                              const std::vector<Rect>& boxes, const Spacing& spacing);

}  // namespace tessera_draw::placing
