#include "draw/placement/link_layers.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "draw/placement/feedback_arcs.h"
#include "draw/placement/label_layers.h"
#include "draw/placement/nesting.h"
#include "draw/placement/network_simplex.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw {
namespace {

using namespace placing;  // NOLINT(google-build-using-namespace): this is one of its steps

using Rank = std::int32_t;
using LabelEnd = BoxToPlace::LabelEnd;

constexpr Index border = nothing;  // the end of a part that is a container's border, not a member

// The part of a line inside one container, from a member or the border to a member or the border.
struct LinePart {
    Index container = 0;
    Index line = 0;
    Index from = border;
    Index to = border;
};

class LineLayers {
  public:
    explicit LineLayers(PlacementInput& input) : m_input(input), m_nesting(nestingOf(input.boxes)) {}

    void assign() {
        findSpans();
        moveEndLabels();
        m_isFree.assign(m_nesting.containerCount(), 0);
        moveLabelsOfOuterLines();
        findContradictions();
        if (std::find(m_isFree.begin(), m_isFree.end(), 1) == m_isFree.end()) return;
        moveLabelsOfFreeContainers();
        for (Index line = 0; line < m_input.lines.size(); ++line)
            if (isWhole(m_input.lines[line]))
                forEachPart(line, [&](const LinePart& part) { m_parts.push_back(part); });
        std::stable_sort(m_parts.begin(), m_parts.end(),
                         [](const LinePart& a, const LinePart& b) { return a.container < b.container; });
        freeMembers();
        // Outer containers have smaller numbers, so that it is known how a line runs there.
        m_vertexOf.assign(m_input.boxes.size(), nothing);
        for (std::size_t i = 0; i < m_parts.size();) {
            std::size_t end = i;
            while (end < m_parts.size() && m_parts[end].container == m_parts[i].container)
                ++end;
            rankContainer(i, end);
            i = end;
        }
        placeLabels(m_input, m_nesting, m_isFree, m_lines);
    }

  private:
    [[nodiscard]] bool isWhole(const LineToPlace& line) const {
        return placing::isWhole(line, m_input.boxes.size());
    }

    void findSpans() {
        m_spans.resize(m_input.lines.size());
        for (Index i = 0; i < m_spans.size(); ++i)
            if (isWhole(m_input.lines[i]))
                m_spans[i] = routeSegmentBetween(m_input.lines[i].from, m_input.lines[i].to, m_nesting);
    }

    // Between a container and something inside it.
    [[nodiscard]] bool isOuterLine(Index line) const {
        const RouteSegment& span = m_spans[line];
        return isWhole(m_input.lines[line]) && (span.fromMember == nothing || span.toMember == nothing);
    }

    // The container that a label belongs in when it stands next to its end.
    [[nodiscard]] Index homeOf(Index label, Index line) const {
        const LineToPlace& ends = m_input.lines[line];
        const LabelEnd end = m_input.boxes[label].labelEnd;
        const Index box = end == LabelEnd::from ? ends.from : end == LabelEnd::to ? ends.to : nothing;
        const Index common = m_nesting.boxOf[m_spans[line].container];
        return box == nothing || box == common ? m_spans[line].container : m_nesting.containerAround(box);
    }

    // Whether place() puts the label beside the end of its line, in no layer.
    [[nodiscard]] bool isAtEnd(Index label, Index line) const {
        const auto& labels = m_input.lines[line].through;
        const LabelEnd end = m_input.boxes[label].labelEnd;
        return (end == LabelEnd::from && label == labels.front()) ||
               (end == LabelEnd::to && label == labels.back());
    }

    [[nodiscard]] Index groupOf(Index container) const {
        return m_nesting.boxOf[container] == m_nesting.drawing ? nothing : m_nesting.boxOf[container];
    }

    // A line from a box to itself would turn back inside a label that stands alone.
    void moveToEnds(const std::vector<Index>& labels) {
        LabelEnd& first = m_input.boxes[labels.front()].labelEnd;
        LabelEnd& last = m_input.boxes[labels.back()].labelEnd;
        if (isInMiddle(first)) first = LabelEnd::from;
        if (isInMiddle(last)) last = LabelEnd::to;
    }

    void moveEndLabels() {
        for (const LineToPlace& line : m_input.lines)
            if (isWhole(line) && line.from == line.to && !line.through.empty()) moveToEnds(line.through);
        for (Index line = 0; line < m_input.lines.size(); ++line)
            for (const Index label : m_input.lines[line].through)
                if (isWhole(m_input.lines[line]) && isAtEnd(label, line))
                    m_input.boxes[label].group = groupOf(homeOf(label, line));
    }

    // A container that gets a label from elsewhere has no level for it, and so becomes free. Returns whether one did.
    bool moveLabels(Index line) {
        bool isNew = false;
        m_isMoved[line] = 1;
        for (const Index label : m_input.lines[line].through) {
            if (isAtEnd(label, line)) continue;
            BoxToPlace& box = m_input.boxes[label];
            const Index home = homeOf(label, line);
            const Index around = groupOf(home);
            box.along = box.labelEnd == LabelEnd::from ? BoxToPlace::Along::start
                        : box.labelEnd == LabelEnd::to ? BoxToPlace::Along::end
                                                       : BoxToPlace::Along::middle;
            if (box.group == around) continue;
            box.group = around;
            isNew = isNew || m_isFree[home] == 0;
            m_isFree[home] = 1;
        }
        return isNew;
    }

    void moveLabelsOfOuterLines() {
        m_isMoved.assign(m_input.lines.size(), 0);
        for (Index line = 0; line < m_input.lines.size(); ++line)
            if (isOuterLine(line)) (void)moveLabels(line);
    }

    // Labels that move can make further containers free. Where that goes on and on, all become free at once.
    void moveLabelsOfFreeContainers() {
        constexpr int maxRounds = 8;
        bool isNew = true;
        for (int round = 0; isNew; ++round) {
            if (round == maxRounds) std::fill(m_isFree.begin(), m_isFree.end(), 1);
            isNew = false;
            for (Index line = 0; line < m_input.lines.size(); ++line)
                if (!m_isMoved[line] && isWhole(m_input.lines[line]) && concernsFreeContainer(line))
                    isNew = moveLabels(line) || isNew;
        }
    }

    // For lines whose labels are where they were.
    [[nodiscard]] bool concernsFreeContainer(Index line) const {
        bool isConcerned = false;
        forEachPart(line, [&](const LinePart&) { isConcerned = true; });
        const auto& labels = m_input.lines[line].through;
        return isConcerned || std::any_of(labels.begin(), labels.end(), [&](Index label) {
                   return !isAtEnd(label, line) && m_isFree[m_nesting.containerAround(label)] != 0;
               });
    }

    void findContradictions() {
        for (Index line = 0; line < m_input.lines.size(); ++line) {
            if (!isWhole(m_input.lines[line]) || m_isMoved[line]) continue;
            Index from = m_input.lines[line].from;
            for (std::size_t i = 0; i <= m_input.lines[line].through.size(); ++i) {
                const bool isLast = i == m_input.lines[line].through.size();
                const Index to = isLast ? m_input.lines[line].to : m_input.lines[line].through[i];
                if (!isLast && isAtEnd(to, line)) continue;
                const RouteSegment part = routeSegmentBetween(from, to, m_nesting);
                if (part.fromMember != part.toMember && part.fromMember != nothing &&
                    part.toMember != nothing &&
                    !agree(m_input.boxes[part.fromMember].level, m_input.boxes[part.toMember].level))
                    m_isFree[part.container] = 1;
                from = to;
            }
        }
    }

    static bool agree(std::int32_t from, std::int32_t to) { return from >= 0 && from < to; }

    // Calls `take` with each part of the line in a free container.
    template <class Take>
    void forEachPart(Index line, Take take) const {
        const RouteSegment& span = m_spans[line];
        forEachCrossing(line, m_input.lines[line].from, span.fromMember, true, take);
        forEachCrossing(line, m_input.lines[line].to, span.toMember, false, take);
        if (m_isFree[span.container]) take({span.container, line, span.fromMember, span.toMember});
    }

    // From the container around an end of the line up to the border of `member`. Lines from very deep are followed for
    // some borders only, which keeps the work in proportion to the diagram.
    template <class Take>
    void forEachCrossing(Index line, Index box, Index member, bool isFrom, Take take) const {
        constexpr int maxBorders = 100;
        for (int i = 0; member != nothing && box != member && i < maxBorders; ++i) {
            const Index container = m_nesting.containerAround(box);
            if (m_isFree[container]) take({container, line, isFrom ? box : border, isFrom ? border : box});
            box = m_nesting.boxOf[container];
        }
    }

    void freeMembers() {
        for (Index container = 0; container < m_nesting.containerCount(); ++container)
            for (Index i = m_nesting.memberBegin[container];
                 m_isFree[container] && i < m_nesting.memberBegin[container + 1]; ++i)
                if (!m_input.boxes[m_nesting.members[i]].isLabel)
                    m_input.boxes[m_nesting.members[i]].level = 0;
    }

    // Which way the line runs in the container around both its ends: 1 to higher levels, -1 back, 0 neither.
    [[nodiscard]] int directionOf(Index line) const {
        const RouteSegment& span = m_spans[line];
        if (span.fromMember == nothing || span.toMember == nothing) return 1;
        const Rank from = m_input.boxes[span.fromMember].level;
        const Rank to = m_input.boxes[span.toMember].level;
        return from < to ? 1 : from > to ? -1 : 0;
    }

    // Whether the part leaves or enters its container at the side of the last layer.
    [[nodiscard]] bool isAtLastLayer(const LinePart& part) const {
        if (m_spans[part.line].container == part.container) return part.to == border;
        return part.to == border ? directionOf(part.line) >= 0 : directionOf(part.line) <= 0;
    }

    // Calls `take` with each label of the line that is a member of the container, in the line's order.
    template <class Take>
    void forEachLabel(const LinePart& part, Take take) const {
        for (const Index label : m_input.lines[part.line].through)
            if (!isAtEnd(label, part.line) && homeOf(label, part.line) == part.container) take(label);
    }

    Index vertexOf(Index box) {
        if (m_vertexOf[box] == nothing) {
            m_vertexOf[box] = static_cast<Index>(m_boxOf.size());
            m_boxOf.push_back(box);
        }
        return m_vertexOf[box];
    }

    // A part as an edge of the container's graph: its ends in the order of their ranks.
    struct Ends {
        Index tail = 0;
        Index head = 0;
        bool isReversed = false;  // the line runs from head to tail
    };

    // Ranks for the members that the parts from `begin` to `end` end in, and for the labels on them.
    void rankContainer(std::size_t begin, std::size_t end) {
        // Two vertices stand for the borders before the first and after the last layer.
        constexpr Index first = 0;
        constexpr Index last = 1;
        m_boxOf.assign(2, nothing);
        std::vector<Ends> ends;
        std::vector<Arc> arcs;
        std::vector<std::size_t> ofArc;
        for (std::size_t i = begin; i < end; ++i) {
            const LinePart& part = m_parts[i];
            Ends& each = ends.emplace_back();
            if (part.from != border && part.to != border) {
                each.tail = vertexOf(part.from);
                each.head = vertexOf(part.to);
                arcs.push_back({each.tail, each.head});
                ofArc.push_back(ends.size() - 1);
                continue;
            }
            const Index member = vertexOf(part.from != border ? part.from : part.to);
            const bool isAtLast = isAtLastLayer(part);
            each.tail = isAtLast ? member : first;
            each.head = isAtLast ? last : member;
            each.isReversed = isAtLast == (part.from == border);
        }
        const std::vector<char> isReversed = feedbackArcs(static_cast<Index>(m_boxOf.size()), arcs);
        for (std::size_t i = 0; i < arcs.size(); ++i) {
            if (!isReversed[i]) continue;
            ends[ofArc[i]].isReversed = true;
            std::swap(ends[ofArc[i]].tail, ends[ofArc[i]].head);
        }
        keep(begin, ends, ranksOf(ends, arcs.size() < ends.size()));
        for (const Index box : m_boxOf)
            if (box != nothing) m_vertexOf[box] = nothing;
    }

    // By vertex; the border before the first layer has -1.
    [[nodiscard]] std::vector<Rank> ranksOf(const std::vector<Ends>& ends, bool hasBorders) const {
        const auto count = static_cast<Index>(m_boxOf.size());
        std::vector<RankEdge> edges;
        for (const Ends& each : ends)
            if (each.tail != each.head) edges.push_back({each.tail, each.head, 1, 1});
        // All members are between the borders, without being drawn to them.
        for (Index vertex = 2; hasBorders && vertex < count; ++vertex) {
            edges.push_back({0, vertex, 1, 0});
            edges.push_back({vertex, 1, 1, 0});
        }
        std::vector<Rank> ranks = shortestRanks(count, edges);
        for (Rank& rank : ranks)
            rank -= hasBorders ? 1 : 0;
        return ranks;
    }

    // The ranks as levels, and which labels stand between them.
    void keep(std::size_t begin, const std::vector<Ends>& ends, const std::vector<Rank>& ranks) {
        for (Index vertex = 2; vertex < m_boxOf.size(); ++vertex)
            m_input.boxes[m_boxOf[vertex]].level = ranks[vertex];
        for (std::size_t i = 0; i < ends.size(); ++i) {
            const LinePart& part = m_parts[begin + i];
            LabelsOfLine line{
                part.container, m_boxOf[ends[i].tail], m_boxOf[ends[i].head], ends[i].isReversed, {}};
            forEachLabel(part, [&](Index label) { line.labels.push_back(label); });
            if (line.labels.empty()) continue;
            if (line.isReversed) std::reverse(line.labels.begin(), line.labels.end());
            m_lines.push_back(std::move(line));
        }
    }

    PlacementInput& m_input;
    const Nesting m_nesting;
    std::vector<RouteSegment> m_spans;  // by line: from its first to its last box
    std::vector<char> m_isMoved;        // by line
    std::vector<char> m_isFree;         // by container: its levels are not the input's
    std::vector<LinePart> m_parts;
    std::vector<Index> m_vertexOf;  // by box, in the container at work
    std::vector<Index> m_boxOf;
    std::vector<LabelsOfLine> m_lines;
};

}  // namespace

void layerByLines(PlacementInput& input) {
    LineLayers(input).assign();
}

}  // namespace tessera_draw
