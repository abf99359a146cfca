#include "draw/placement/offsets.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tessera_draw::placing {
namespace {

template <typename Visit>
void forEnds(const Net& net, Visit visit) {
    for (Index i = 0; i < net.edges.size(); ++i) {
        const Edge& edge = net.edges[i];
        if (edge.kind == Edge::Kind::plain) continue;
        if (edge.tail != nothing) visit(edge.tail, i, true);
        if (edge.head != nothing) visit(edge.head, i, false);
    }
}

constexpr double farthestSlide = 14;
constexpr double leastShare = 0.55;  // of the even distance that neighbours keep

}  // namespace

Offsets::Offsets(Net& net, const Nesting& nesting, const Spacing& spacing)
    : m_net(net), m_nesting(nesting), m_spacing(spacing), m_keys(net, nesting) {
    m_otherBegin.assign(net.firstWaypoint + 1, 0);
    forEnds(net, [&](Index vertex, Index, bool) { ++m_otherBegin[vertex + 1]; });
    std::partial_sum(m_otherBegin.begin(), m_otherBegin.end(), m_otherBegin.begin());
    m_others.resize(m_otherBegin.back());
    std::vector<Index> next(m_otherBegin.begin(), m_otherBegin.end() - 1);
    forEnds(net, [&](Index vertex, Index edge, bool isTail) { m_others[next[vertex]++] = {edge, isTail}; });
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
    const auto& begin = isAtEnd ? m_net.outBegin : m_net.inBegin;
    const auto& edges = isAtEnd ? m_net.outEdges : m_net.inEdges;
    for (Index k = begin[box]; k < begin[box + 1]; ++k)
        m_side.push_back(sideKey(m_net, m_keys, edges[k], isAtEnd));
    forOthers(box, [&](Index edge, bool isTail) {
        if ((m_net.edges[edge].kind != Edge::Kind::fromLane) == isAtEnd)
            m_side.push_back(sideKey(m_net, m_keys, edge, isTail));
    });
}

// Around the middle; where the box is too low for all, closer together. Ports stand where they are.
void Offsets::spread(Index box) {
    std::sort(m_side.begin(), m_side.end());
    const double height = m_net.height[box];
    const auto count = static_cast<double>(m_side.size());
    const double usable = std::max(height - 2 * std::min(m_spacing.betweenLines * 0.8, height / 6), 0.0);
    const double step = count > 1 ? std::min(1.6 * m_spacing.betweenLines, usable / (count - 1)) : 0;
    double offset = height / 2 - step * (count - 1) / 2;
    for (const SideKey& side : m_side) {
        const Edge& edge = m_net.edges[side.edge];
        const Index port = side.isTail ? edge.tailPort : edge.headPort;
        offsetOf(side) = port == nothing ? offset : m_net.top[m_net.vertexOf(port)];
        offset += step;
    }
}

// Boxes with several edges on a side first: there nobody sees it.
void Offsets::straighten(Index container) {
    for (const bool areSingle : {false, true})
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            if (m_net.isOnLine[box] != 0 || m_nesting.containerOf[box] != nothing) continue;
            for (const bool isAtEnd : {false, true}) {
                collectSide(box, isAtEnd);
                if (!m_side.empty() && (m_side.size() == 1) == areSingle) slide(box);
            }
        }
}

// Where the end would have to be.
double Offsets::straightOffset(const SideKey& side, Index box) const {
    const Edge& edge = m_net.edges[side.edge];
    if (edge.kind != Edge::Kind::plain) return side.isTail ? edge.tailOffset : edge.headOffset;
    return (side.isTail ? m_net.headY(edge) : m_net.tailY(edge)) - m_net.top[box];
}

void Offsets::slide(Index box) {
    std::sort(m_side.begin(), m_side.end());
    const double height = m_net.height[box];
    const double margin = std::min(m_spacing.betweenLines * 0.8, height / 6);
    const double step = m_side.size() > 1 ? offsetOf(m_side[1]) - offsetOf(m_side[0]) : 0;
    double from = margin;
    for (std::size_t i = 0; i < m_side.size(); ++i) {
        double& offset = offsetOf(m_side[i]);
        const double to =
            i + 1 < m_side.size() ? offsetOf(m_side[i + 1]) - step * leastShare : height - margin;
        const double wanted = straightOffset(m_side[i], box);
        if (wanted >= from && wanted <= to && std::abs(wanted - offset) <= farthestSlide) offset = wanted;
        from = offset + step * leastShare;
    }
}

}  // namespace tessera_draw::placing
