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
        if (edge.head != nothing) visit(edge.head, i, false);
    }
}

constexpr double maxSlide = 14;
constexpr double minShare = 0.55;  // of the even distance that neighbours keep

}  // namespace

Offsets::Offsets(LayeredGraph& graph, const Nesting& nesting, const Spacing& spacing)
    : m_graph(graph), m_nesting(nesting), m_spacing(spacing), m_ranks(graph, nesting) {
    m_otherBegin.assign(graph.firstDummyVertex + 1, 0);
    forEnds(graph, [&](Index vertex, Index, bool) { ++m_otherBegin[vertex + 1]; });
    std::partial_sum(m_otherBegin.begin(), m_otherBegin.end(), m_otherBegin.begin());
    m_others.resize(m_otherBegin.back());
    std::vector<Index> next(m_otherBegin.begin(), m_otherBegin.end() - 1);
    forEnds(graph, [&](Index vertex, Index edge, bool isTail) { m_others[next[vertex]++] = {edge, isTail}; });
}

void Offsets::set(Index container) {
    for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i)
        for (const bool isAtEnd : {false, true}) {
            collectSide(m_nesting.members[i], isAtEnd);
            spread(m_nesting.members[i]);
        }
}

void Offsets::collectSide(Index box, bool isAtEnd) {
    m_side.clear();
    const auto& begin = isAtEnd ? m_graph.outBegin : m_graph.inBegin;
    const auto& edges = isAtEnd ? m_graph.outEdges : m_graph.inEdges;
    for (Index k = begin[box]; k < begin[box + 1]; ++k)
        m_side.push_back(sideKey(m_graph, m_ranks, edges[k], isAtEnd));
    forOthers(box, [&](Index edge, bool isTail) {
        if ((m_graph.edges[edge].kind != Edge::Kind::fromLane) == isAtEnd)
            m_side.push_back(sideKey(m_graph, m_ranks, edge, isTail));
    });
}

// Spreads the ends evenly around the middle, closer together if the box is low.
// Ports of containers are fixed.
void Offsets::spread(Index box) {
    std::sort(m_side.begin(), m_side.end());
    const double height = m_graph.height[box];
    const auto count = static_cast<double>(m_side.size());
    const double usable = std::max(height - 2 * std::min(m_spacing.betweenLines * 0.8, height / 6), 0.0);
    const double step = count > 1 ? std::min(1.6 * m_spacing.betweenLines, usable / (count - 1)) : 0;
    double offset = height / 2 - step * (count - 1) / 2;
    for (const SideKey& side : m_side) {
        const Edge& edge = m_graph.edges[side.edge];
        const Index port = side.isTail ? edge.tailPort : edge.headPort;
        offsetOf(side) = port == nothing ? offset : m_graph.top[m_graph.vertexOf(port)];
        offset += step;
    }
}

// Sides with several edges first: there, unequal distances are hardly visible.
void Offsets::straighten(Index container) {
    for (const bool areSingle : {false, true})
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            if (m_graph.isOnLine[box] != 0 || m_nesting.containerOf[box] != nothing) continue;
            for (const bool isAtEnd : {false, true}) {
                collectSide(box, isAtEnd);
                if (!m_side.empty() && (m_side.size() == 1) == areSingle) slide(box);
            }
        }
}

// The offset at which the edge would be straight.
double Offsets::straightOffset(const SideKey& side, Index box) const {
    const Edge& edge = m_graph.edges[side.edge];
    if (edge.kind != Edge::Kind::plain) return side.isTail ? edge.tailOffset : edge.headOffset;
    return (side.isTail ? m_graph.headY(edge) : m_graph.tailY(edge)) - m_graph.top[box];
}

void Offsets::slide(Index box) {
    std::sort(m_side.begin(), m_side.end());
    const double height = m_graph.height[box];
    const double margin = std::min(m_spacing.betweenLines * 0.8, height / 6);
    const double step = m_side.size() > 1 ? offsetOf(m_side[1]) - offsetOf(m_side[0]) : 0;
    double from = margin;
    for (std::size_t i = 0; i < m_side.size(); ++i) {
        double& offset = offsetOf(m_side[i]);
        const double to = i + 1 < m_side.size() ? offsetOf(m_side[i + 1]) - step * minShare : height - margin;
        const double wanted = straightOffset(m_side[i], box);
        if (wanted >= from && wanted <= to && std::abs(wanted - offset) <= maxSlide) offset = wanted;
        from = offset + step * minShare;
    }
}

}  // namespace tessera_draw::placing
