#include "draw/placement/offsets.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tessera_draw::placing {
namespace {

template <typename Visit>
void forEnds(const LayeredGraph& graph, Visit visit) {
    for (Index i = 0; i < graph.edges.size(); ++i) {
        const Edge& edge = graph.edges[i];
        if (edge.kind == Edge::Kind::plain) continue;
        if (edge.tail != nothing) visit(edge.tail, i, true);
        const bool isAtDummy = edge.head != nothing && edge.head >= graph.firstDummyVertex;
        if (edge.head != nothing && !isAtDummy) visit(edge.head, i, false);
    }
}

constexpr double sideMargin = 10;       // between the first and last end and the corners; less on a low box
constexpr double lineStep = 1.6;        // between the ends of lines, as a multiple of their least distance
constexpr double leastStep = 8;         // between the ends of lines, so that arrow heads can be told apart
constexpr std::size_t mostApart = 400;  // ends; beyond, they come closer to each other
constexpr double maxSlide = 14;
constexpr double minShare = 0.55;  // of the even distance that neighbours keep

}  // namespace

Offsets::Offsets(const std::vector<BoxToPlace>& boxes, LayeredGraph& graph, const Nesting& nesting,
                 const Spacing& spacing)
    : m_boxes(boxes),
      m_graph(graph),
      m_nesting(nesting),
      m_spacing(spacing),
      m_ranks(graph, nesting),
      m_beside(boxes.size()) {
    m_otherBegin.assign(graph.firstDummyVertex + 1, 0);
    forEnds(graph, [&](Index vertex, Index, bool) { ++m_otherBegin[vertex + 1]; });
    std::partial_sum(m_otherBegin.begin(), m_otherBegin.end(), m_otherBegin.begin());
    m_others.resize(m_otherBegin.back());
    std::vector<Index> next(m_otherBegin.begin(), m_otherBegin.end() - 1);
    forEnds(graph, [&](Index vertex, Index edge, bool isTail) { m_others[next[vertex]++] = {edge, isTail}; });
}

void Offsets::set(Index container, std::vector<Rect>& rects) {
    for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
        const Index box = m_nesting.members[i];
        collect(m_before, box, false);
        collect(m_after, box, true);
        makeRoom(box, rects[box]);
        spread(m_before, box);
        spread(m_after, box);
    }
}

void Offsets::collect(Side& side, Index box, bool isAtEnd) {
    side.ends.clear();
    const auto& begin = isAtEnd ? m_graph.outBegin : m_graph.inBegin;
    const auto& edges = isAtEnd ? m_graph.outEdges : m_graph.inEdges;
    for (Index k = begin[box]; k < begin[box + 1]; ++k)
        side.ends.push_back(sideKey(m_graph, m_ranks, edges[k], isAtEnd));
    forOthers(box, [&](Index edge, bool isTail) {
        if ((m_graph.edges[edge].kind != Edge::Kind::fromLane) == isAtEnd)
            side.ends.push_back(sideKey(m_graph, m_ranks, edge, isTail));
    });
    std::sort(side.ends.begin(), side.ends.end());
    measure(side, box);
}

// From the lower side of one end, or its label, to the upper side of the next.
double Offsets::between(const SideKey& upper, const SideKey& lower) const {
    const bool isLabel = labelOf(upper) != nothing;
    if (isLabel != (labelOf(lower) != nothing)) return m_spacing.betweenLines;
    return isLabel ? m_spacing.betweenBoxes / 2 : lineStep * m_spacing.betweenLines;
}

void Offsets::measure(Side& side, Index box) const {
    side.height = side.labelWidth = side.leastBox = 0;
    const std::size_t count = std::min(side.ends.size(), mostApart);
    if (count > 1 && !m_boxes[box].isLabel)
        side.leastBox = 2 * sideMargin + leastStep * static_cast<double>(count - 1);
    for (const SideKey& end : side.ends)
        if (labelOf(end) != nothing)
            side.labelWidth = std::max(side.labelWidth, m_boxes[labelOf(end)].size.width);
    if (side.labelWidth == 0) return;
    for (std::size_t i = 0; i < side.ends.size(); ++i)
        side.height += heightOf(side.ends[i]) + (i == 0 ? 0 : between(side.ends[i - 1], side.ends[i]));
    const double outer = std::min(heightOf(side.ends.front()), heightOf(side.ends.back()));
    side.leastBox = side.height - outer + 2 * sideMargin;
}

// Ends at containers are where their hierarchical ports are, which are as high as their labels.
void Offsets::makeRoom(Index box, Rect& rect) {
    const auto widthOf = [&](const Side& side) {
        return side.labelWidth == 0 ? 0 : side.labelWidth + m_spacing.besideLabels;
    };
    m_beside[box] = {widthOf(m_before), widthOf(m_after)};
    if (m_nesting.containerOf[box] != nothing || (m_before.leastBox == 0 && m_after.leastBox == 0)) return;
    rect.height = std::max({rect.height, m_before.leastBox, m_after.leastBox});
    m_graph.height[box] = std::max({rect.height, m_before.height, m_after.height});
    m_graph.inset[box] = (m_graph.height[box] - rect.height) / 2;
}

// Spreads the ends evenly around the middle, closer together if the box is low.
// Ports of containers are fixed.
void Offsets::spread(const Side& side, Index box) {
    if (side.labelWidth > 0 && m_nesting.containerOf[box] == nothing) return spreadLabels(side, box);
    const double height = ownHeight(box);
    const auto count = static_cast<double>(side.ends.size());
    const double usable = std::max(height - 2 * std::min(sideMargin, height / 5), 0.0);
    const double step = count > 1 ? std::min(lineStep * m_spacing.betweenLines, usable / (count - 1)) : 0;
    double offset = m_graph.inset[box] + height / 2 - step * (count - 1) / 2;
    for (const SideKey& end : side.ends) {
        const Edge& edge = m_graph.edges[end.edge];
        const Index port = end.isTail ? edge.tailPort : edge.headPort;
        const Index vertex = port == nothing ? nothing : m_graph.vertexOf(port);
        offsetOf(end) = port == nothing ? offset : m_graph.top[vertex] + m_graph.height[vertex] / 2;
        offset += step;
    }
}

void Offsets::spreadLabels(const Side& side, Index box) {
    double y = (m_graph.height[box] - side.height) / 2;
    for (std::size_t i = 0; i < side.ends.size(); ++i) {
        if (i > 0) y += between(side.ends[i - 1], side.ends[i]);
        offsetOf(side.ends[i]) = y + heightOf(side.ends[i]) / 2;
        y += heightOf(side.ends[i]);
    }
}

// Sides with several edges first: there, unequal distances are hardly visible.
void Offsets::straighten(Index container) {
    for (const bool areSingle : {false, true})
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            if (m_graph.isOnLine[box] != 0 || m_nesting.containerOf[box] != nothing) continue;
            for (const bool isAtEnd : {false, true}) {
                collect(m_after, box, isAtEnd);
                if (m_after.labelWidth == 0 && !m_after.ends.empty() &&
                    (m_after.ends.size() == 1) == areSingle)
                    slide(m_after, box);
            }
        }
}

// The offset at which the edge would be straight.
double Offsets::straightOffset(const SideKey& side, Index box) const {
    const Edge& edge = m_graph.edges[side.edge];
    if (edge.kind != Edge::Kind::plain) return side.isTail ? edge.tailOffset : edge.headOffset;
    return (side.isTail ? m_graph.headY(edge) : m_graph.tailY(edge)) - m_graph.top[box];
}

void Offsets::slide(const Side& side, Index box) {
    const double height = ownHeight(box);
    const double margin = std::min(sideMargin, height / 5);
    const double last = m_graph.inset[box] + height - margin;
    const double step = side.ends.size() > 1 ? offsetOf(side.ends[1]) - offsetOf(side.ends[0]) : 0;
    const double least = std::min(step, std::max(leastStep, step * minShare));
    double from = m_graph.inset[box] + margin;
    for (std::size_t i = 0; i < side.ends.size(); ++i) {
        double& offset = offsetOf(side.ends[i]);
        const double to = i + 1 < side.ends.size() ? offsetOf(side.ends[i + 1]) - least : last;
        const double wanted = straightOffset(side.ends[i], box);
        if (wanted >= from && wanted <= to && std::abs(wanted - offset) <= maxSlide) offset = wanted;
        from = offset + least;
    }
}

}  // namespace tessera_draw::placing
