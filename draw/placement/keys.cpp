#include "draw/placement/keys.h"

#include <algorithm>

namespace tessera_draw::placing {

Keys::Keys(const Net& net, const Nesting& nesting)
    : m_net(net), m_nesting(nesting), m_in(net.vertexCount(), 0), m_out(net.vertexCount(), 0) {
    for (Index layer = 0; layer < net.firstLayer.back(); ++layer)
        refresh(layer);
}

Index Keys::portsOf(Index vertex, bool isAtEnd) const {
    if (vertex >= m_net.boxCount || m_nesting.containerOf[vertex] == nothing) return 1;
    const Index container = m_nesting.containerOf[vertex];
    const Index ports = m_net.sizeOf(isAtEnd ? m_net.lastLayer(container) : m_net.firstLayer[container]);
    return std::max<Index>(ports, 1);
}

void Keys::refresh(Index layer) {
    Index in = 0;
    Index out = 0;
    for (Index i = m_net.layerBegin[layer]; i < m_net.layerBegin[layer + 1]; ++i) {
        const Index vertex = m_net.order[i];
        m_in[vertex] = in;
        m_out[vertex] = out;
        in += portsOf(vertex, false);
        out += portsOf(vertex, true);
    }
}

Index Keys::headKeys(Index layer) const {
    if (m_net.sizeOf(layer) == 0) return 0;
    const Index last = m_net.at(layer, m_net.sizeOf(layer) - 1);
    return m_in[last] + portsOf(last, false);
}

SideKey sideKey(const Net& net, const Keys& keys, Index edge, bool isTail) {
    enum Part : std::uint64_t { loopsUp, plain, loopsDown, selfLoops, lanes };
    const auto in = [](Part part, std::uint64_t key) { return static_cast<std::uint64_t>(part) << 32 | key; };
    const Edge& e = net.edges[edge];
    if (e.kind == Edge::Kind::plain)
        return {in(plain, isTail ? keys.ofHead(e) : keys.ofTail(e)), edge, isTail};
    if (e.kind != Edge::Kind::loop) return {in(lanes, 0), edge, isTail};
    const Index own = isTail ? e.tail : e.head;
    const Index other = isTail ? e.head : e.tail;
    if (own == other) return {in(selfLoops, 0), edge, isTail};
    // The one that goes farther lies around the other.
    const Index fromBelow = net.sizeOf(net.layer[own]) - net.place[other];
    return {in(net.place[other] < net.place[own] ? loopsUp : loopsDown, fromBelow), edge, isTail};
}

}  // namespace tessera_draw::placing
