// Turns the routes of lines into segments and curves.
#pragma once

#include "draw/placement/container_geometry.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {

// Returns one line for each line of the input. `boxes` are in the drawing's
// coordinates, and so are the results.
[[nodiscard]] std::vector<PlacedLine> pathsOf(const PlacementInput& input, const Nesting& nesting,
                                              const std::vector<RouteSegment>& routeSegments,
                                              const LayeredGraph& graph, const ContainerGeometry& geometry,
                                              const std::vector<Rect>& boxes, const Spacing& spacing);

}  // namespace tessera_draw::placing
