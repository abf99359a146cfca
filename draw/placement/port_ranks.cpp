#include "draw/placement/port_ranks.h"

#include <algorithm>

namespace tessera_draw::placing {

PortRanks::PortRanks(const LayeredGraph& graph, const Nesting& nesting)
    : m_graph(graph), m_nesting(nesting), m_in(graph.vertexCount(), 0), m_out(graph.vertexCount(), 0) {
    for (Index layer = 0; layer < graph.firstLayer.back(); ++layer)
        refresh(layer);
}

// A container has as many ranks as lines cross its border on that side; all else has one.
Index PortRanks::portsOf(Index vertex, bool isAtEnd) const {
    if (vertex >= m_graph.boxCount || m_nesting.containerOf[vertex] == nothing) return 1;
    const Index container = m_nesting.containerOf[vertex];
    const Index ports =
        m_graph.sizeOf(isAtEnd ? m_graph.lastLayer(container) : m_graph.firstLayer[container]);
    return std::max<Index>(ports, 1);
}

void PortRanks::refresh(Index layer) {
    Index in = 0;
    Index out = 0;
    for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
        const Index vertex = m_graph.order[i];
        m_in[vertex] = in;
        m_out[vertex] = out;
        in += portsOf(vertex, false);
        out += portsOf(vertex, true);
    }
}

Index PortRanks::headRanks(Index layer) const {
    if (m_graph.sizeOf(layer) == 0) return 0;
    const Index last = m_graph.at(layer, m_graph.sizeOf(layer) - 1);
    return m_in[last] + portsOf(last, false);
}

SideKey sideKey(const LayeredGraph& graph, const PortRanks& ranks, Index edge, bool isTail) {
    enum Part : std::uint64_t { loopsUp, plain, loopsDown, selfLoops, lanes };
    const auto in = [](Part part, std::uint64_t key) { return static_cast<std::uint64_t>(part) << 32 | key; };
    const Edge& e = graph.edges[edge];
    if (e.kind == Edge::Kind::plain)
        return {in(plain, isTail ? ranks.ofHead({e.head, e.headPort}) : ranks.ofTail({e.tail, e.tailPort})),
                edge, isTail};
    if (e.kind != Edge::Kind::loop) return {in(lanes, 0), edge, isTail};
    const Index own = isTail ? e.tail : e.head;
    const Index other = isTail ? e.head : e.tail;
    if (own == other) return {in(selfLoops, 0), edge, isTail};
    // Of two loops, the longer one encloses the other.
    const Index fromBelow = graph.sizeOf(graph.layer[own]) - graph.place[other];
    return {in(graph.place[other] < graph.place[own] ? loopsUp : loopsDown, fromBelow), edge, isTail};
}

}  // namespace tessera_draw::placing
