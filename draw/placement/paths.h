// Lines as they are drawn.
#pragma once

#include "draw/placement/frame.h"
#include "draw/placement/hops.h"

namespace tessera_draw::placing {

// Needs the boxes where they stand in the drawing.
[[nodiscard]] std::vector<PlacedLine> pathsOf(const PlacementInput& input, const Nesting& nesting,
                                              const std::vector<Hop>& hops, const Net& net,
                                              const Frame& frame, const std::vector<Rect>& boxes,
                                              const Spacing& spacing);

}  // namespace tessera_draw::placing
