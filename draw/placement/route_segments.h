// Splits lines into route segments: from one box to the next one that the line meets.
#pragma once

#include <vector>

#include "draw/placement/end_labels.h"
#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

struct RouteSegment {
    Index line = 0;
    Index from = 0;  // boxes
    Index to = 0;
    // The innermost container around both ends; if one end contains the other, that end. Then its members
    // that the ends are in; `nothing` for an end that is the container itself.
    Index container = 0;
    Index fromMember = nothing;
    Index toMember = nothing;
    // The labels that stand beside the ends, or `nothing`.
    Index fromLabel = nothing;
    Index toLabel = nothing;
    // Drawn as one straight line, because all segments together cross too many borders to be routed.
    bool isDirect = false;
};

// The segment between two boxes, of which both may be one and one may contain the other. Logarithmic time.
[[nodiscard]] RouteSegment routeSegmentBetween(Index from, Index to, const Nesting& nesting);

// Whether all boxes that the line names exist.
[[nodiscard]] bool isWhole(const LineToPlace& line, std::size_t boxCount);

// Returns the segments in the order of the lines. A line that names a missing box has none. The labels of segments that
// are drawn as straight lines are end labels no longer.
[[nodiscard]] std::vector<RouteSegment> routeSegmentsOf(const PlacementInput& input, const Nesting& nesting,
                                                        EndLabels& endLabels);

}  // namespace tessera_draw::placing
