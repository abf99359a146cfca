#include "draw/placement/end_labels.h"

#include <cstdint>

#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {
namespace {

using LabelEnd = BoxToPlace::LabelEnd;

// How often lines name each box.
std::vector<std::uint32_t> usesOf(const PlacementInput& input) {
    std::vector<std::uint32_t> uses(input.boxes.size(), 0);
    const auto count = [&](Index box) {
        if (box < uses.size()) ++uses[box];
    };
    for (const LineToPlace& line : input.lines) {
        count(line.from);
        count(line.to);
        for (const Index label : line.through)
            count(label);
    }
    return uses;
}

}  // namespace

EndLabels endLabelsOf(const PlacementInput& input, const Nesting& nesting) {
    EndLabels result;
    result.isOne.assign(input.boxes.size(), 0);
    result.atFrom.assign(input.lines.size(), nothing);
    result.atTo.assign(input.lines.size(), nothing);
    const std::vector<std::uint32_t> uses = usesOf(input);
    for (std::size_t i = 0; i < input.lines.size(); ++i) {
        const LineToPlace& line = input.lines[i];
        if (line.through.empty() || !isWhole(line, input.boxes.size())) continue;
        const RouteSegment span = routeSegmentBetween(line.from, line.to, nesting);
        const auto stands = [&](Index label, LabelEnd end) {
            const Index box = end == LabelEnd::from ? line.from : line.to;
            const Index member = end == LabelEnd::from ? span.fromMember : span.toMember;
            const Index around = member == nothing ? box : nesting.tree.parent(box);
            return input.boxes[label].isLabel && input.boxes[label].labelEnd == end && uses[label] == 1 &&
                   nesting.containerOf[label] == nothing && nesting.tree.parent(label) == around;
        };
        if (stands(line.through.front(), LabelEnd::from)) result.atFrom[i] = line.through.front();
        if (stands(line.through.back(), LabelEnd::to)) result.atTo[i] = line.through.back();
        for (const Index label : {result.atFrom[i], result.atTo[i]})
            if (label != nothing) result.isOne[label] = 1;
    }
    return result;
}

void removeFromMembers(const EndLabels& endLabels, Nesting& nesting) {
    Index kept = 0;
    Index begin = 0;
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        const Index end = nesting.memberBegin[container + 1];
        nesting.memberBegin[container] = kept;
        for (; begin < end; ++begin)
            if (endLabels.isOne[nesting.members[begin]] == 0) nesting.members[kept++] = nesting.members[begin];
    }
    nesting.memberBegin.back() = kept;
    nesting.members.resize(kept);
}

}  // namespace tessera_draw::placing
