#include "draw/placement/end_labels.h"

#include <cstdint>

#include "draw/placement/route_segments.h"

namespace tessera_draw::placing {
namespace {

using LabelEnd = BoxToPlace::LabelEnd;

class EndLabelFinder {
  public:
    EndLabelFinder(const PlacementInput& input, const Nesting& nesting)
        : m_input(input), m_nesting(nesting), m_uses(usesOf(input)) {}

    void find(const LineToPlace& line, Index& atFrom, Index& atTo) const {
        if (mayBe(line.through.front(), LabelEnd::from)) atFrom = line.through.front();
        if (mayBe(line.through.back(), LabelEnd::to)) atTo = line.through.back();
        const bool isToAtHome = atTo != nothing && isAtHome(atTo, line.to, stopBeforeTo(line, atFrom));
        if (!isToAtHome) atTo = nothing;
        const bool isFromAtHome = atFrom != nothing && isAtHome(atFrom, line.from, stopAfterFrom(line, atTo));
        if (isFromAtHome) return;
        // The line leads to the other label from here then, and not to its first box.
        if (atFrom != nothing && line.through.size() == 2) atTo = nothing;
        atFrom = nothing;
    }

  private:
    [[nodiscard]] bool mayBe(Index label, LabelEnd end) const {
        return m_input.boxes[label].isLabel && m_input.boxes[label].labelEnd == end && m_uses[label] == 1 &&
               m_nesting.containerOf[label] == nothing;
    }

    // What the line meets next to its ends, apart from end labels.
    [[nodiscard]] static Index stopAfterFrom(const LineToPlace& line, Index atTo) {
        if (line.through.size() == 1) return line.to;
        return line.through[1] == atTo ? line.to : line.through[1];
    }
    [[nodiscard]] static Index stopBeforeTo(const LineToPlace& line, Index atFrom) {
        if (line.through.size() == 1) return line.from;
        const Index before = line.through[line.through.size() - 2];
        return before == atFrom ? line.from : before;
    }

    // Whether the label is where the line between its box and this stop runs.
    [[nodiscard]] bool isAtHome(Index label, Index box, Index stop) const {
        const RouteSegment segment = routeSegmentBetween(box, stop, m_nesting);
        const Index around = segment.fromMember == nothing ? box : m_nesting.tree.parent(box);
        return m_nesting.tree.parent(label) == around;
    }

    const PlacementInput& m_input;
    const Nesting& m_nesting;
    const std::vector<std::uint32_t> m_uses;
};

}  // namespace

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

EndLabels endLabelsOf(const PlacementInput& input, const Nesting& nesting) {
    EndLabels result;
    result.isOne.assign(input.boxes.size(), 0);
    result.atFrom.assign(input.lines.size(), nothing);
    result.atTo.assign(input.lines.size(), nothing);
    const EndLabelFinder finder(input, nesting);
    for (std::size_t i = 0; i < input.lines.size(); ++i) {
        const LineToPlace& line = input.lines[i];
        if (line.through.empty() || !isWhole(line, input.boxes.size())) continue;
        finder.find(line, result.atFrom[i], result.atTo[i]);
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
            if (endLabels.isOne[nesting.members[begin]] == 0)
                nesting.members[kept++] = nesting.members[begin];
    }
    nesting.memberBegin.back() = kept;
    nesting.members.resize(kept);
}

}  // namespace tessera_draw::placing
