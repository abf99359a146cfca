// The way of a line from one box to the next one that it meets.
#pragma once

#include <vector>

#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

struct RouteSegment {
    Index line = 0;
    Index from = 0;  // boxes
    Index to = 0;
    // The innermost container around both, or that one of the two which holds the other, and the members of
    // it that the ends stand in; nothing for the container itself.
    Index container = 0;
    Index fromMember = nothing;
    Index toMember = nothing;
    // True of route segments through so many containers that together they would be too much to draw properly.
    bool isDirect = false;
};

// In the order of the lines. A line that names a box that is not there has none.
[[nodiscard]] std::vector<RouteSegment> routeSegmentsOf(const PlacementInput& input, const Nesting& nesting);

}  // namespace tessera_draw::placing
