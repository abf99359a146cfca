#include "draw/placement/route_segments.h"

#include <algorithm>

namespace tessera_draw::placing {
namespace {

bool isWhole(const LineToPlace& line, std::size_t boxCount) {
    return line.from < boxCount && line.to < boxCount &&
           std::all_of(line.through.begin(), line.through.end(), [&](Index box) { return box < boxCount; });
}

// The number of borders that the route segment crosses between its ends and the container.
std::size_t bordersOf(const RouteSegment& routeSegment, const Nesting& nesting) {
    std::size_t count = 0;
    if (routeSegment.fromMember != nothing)
        count += nesting.tree.depth(routeSegment.from) - nesting.tree.depth(routeSegment.fromMember);
    if (routeSegment.toMember != nothing)
        count += nesting.tree.depth(routeSegment.to) - nesting.tree.depth(routeSegment.toMember);
    return count;
}

// Keeps the work linear: only diagrams nested thousands of levels deep reach the limit. Segments that cross
// few borders are routed first.
void limitBorders(std::vector<RouteSegment>& routeSegments, const Nesting& nesting) {
    const std::size_t limit = 8 * (routeSegments.size() + nesting.tree.size()) + 200'000;
    std::size_t sum = 0;
    for (const RouteSegment& routeSegment : routeSegments)
        sum += bordersOf(routeSegment, nesting);
    if (sum <= limit) return;
    std::vector<std::pair<std::size_t, Index>> byBorders;
    byBorders.reserve(routeSegments.size());
    for (Index i = 0; i < routeSegments.size(); ++i)
        byBorders.emplace_back(bordersOf(routeSegments[i], nesting), i);
    std::sort(byBorders.begin(), byBorders.end());
    sum = 0;
    for (const auto& [borders, routeSegment] : byBorders) {
        sum += borders;
        routeSegments[routeSegment].isDirect = sum > limit;
    }
}

}  // namespace

RouteSegment routeSegmentBetween(Index from, Index to, const Nesting& nesting) {
    RouteSegment routeSegment;
    routeSegment.from = from;
    routeSegment.to = to;
    const Index common = from == to ? nesting.tree.parent(from) : nesting.tree.lowestCommonAncestor(from, to);
    routeSegment.container = nesting.containerOf[common];
    const Index depth = nesting.tree.depth(common) + 1;
    if (from != common) routeSegment.fromMember = nesting.tree.ancestorAtDepth(from, depth);
    if (to != common) routeSegment.toMember = nesting.tree.ancestorAtDepth(to, depth);
    return routeSegment;
}

std::vector<RouteSegment> routeSegmentsOf(const PlacementInput& input, const Nesting& nesting) {
    std::vector<RouteSegment> routeSegments;
    routeSegments.reserve(input.lines.size());
    for (Index i = 0; i < input.lines.size(); ++i) {
        const LineToPlace& line = input.lines[i];
        if (!isWhole(line, input.boxes.size())) continue;
        Index from = line.from;
        for (std::size_t k = 0; k <= line.through.size(); ++k) {
            const Index to = k < line.through.size() ? line.through[k] : line.to;
            routeSegments.push_back(routeSegmentBetween(from, to, nesting));
            routeSegments.back().line = i;
            from = to;
        }
    }
    limitBorders(routeSegments, nesting);
    return routeSegments;
}

}  // namespace tessera_draw::placing
