#include "draw/placement/route_segments.h"

#include <algorithm>
#include <utility>

namespace tessera_draw::placing {
namespace {

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
// Returns whether some are drawn as straight lines then.
bool limitBorders(std::vector<RouteSegment>& routeSegments, const Nesting& nesting) {
    const std::size_t limit = 8 * (routeSegments.size() + nesting.tree.size()) + 200'000;
    std::size_t sum = 0;
    for (const RouteSegment& routeSegment : routeSegments)
        sum += bordersOf(routeSegment, nesting);
    if (sum <= limit) return false;
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
    return true;
}

// Splits straight segments at the labels beside their ends, which become boxes as others.
void releaseLabels(std::vector<RouteSegment>& routeSegments, EndLabels& endLabels) {
    std::vector<RouteSegment> split;
    split.reserve(routeSegments.size());
    for (RouteSegment segment : routeSegments) {
        if (segment.isDirect)
            for (const Index label : {segment.fromLabel, segment.toLabel})
                if (label != nothing) endLabels.isOne[label] = 0;
        const Index last = segment.toLabel;
        if (segment.isDirect && segment.fromLabel != nothing) {
            RouteSegment first = segment;
            first.to = segment.from = std::exchange(segment.fromLabel, nothing);
            first.fromLabel = first.toLabel = nothing;
            split.push_back(first);
        }
        if (segment.isDirect && last != nothing) {
            RouteSegment middle = segment;
            middle.to = segment.from = std::exchange(segment.toLabel, nothing);
            middle.toLabel = nothing;
            split.push_back(middle);
        }
        split.push_back(segment);
    }
    routeSegments = std::move(split);
}

}  // namespace

bool isWhole(const LineToPlace& line, std::size_t boxCount) {
    return line.from < boxCount && line.to < boxCount &&
           std::all_of(line.through.begin(), line.through.end(), [&](Index box) { return box < boxCount; });
}

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

std::vector<RouteSegment> routeSegmentsOf(const PlacementInput& input, const Nesting& nesting,
                                          EndLabels& endLabels) {
    std::vector<RouteSegment> routeSegments;
    routeSegments.reserve(input.lines.size());
    for (Index i = 0; i < input.lines.size(); ++i) {
        const LineToPlace& line = input.lines[i];
        if (!isWhole(line, input.boxes.size())) continue;
        Index from = line.from;
        Index label = endLabels.atFrom[i];
        for (std::size_t k = label == nothing ? 0 : 1; k <= line.through.size(); ++k) {
            const Index next = k < line.through.size() ? line.through[k] : line.to;
            const bool isLast = next == endLabels.atTo[i];
            const Index to = isLast ? line.to : next;
            RouteSegment& segment = routeSegments.emplace_back(routeSegmentBetween(from, to, nesting));
            segment.line = i;
            segment.fromLabel = std::exchange(label, nothing);
            if (isLast) {
                segment.toLabel = next;
                break;
            }
            from = to;
        }
    }
    if (limitBorders(routeSegments, nesting)) releaseLabels(routeSegments, endLabels);
    return routeSegments;
}

}  // namespace tessera_draw::placing
