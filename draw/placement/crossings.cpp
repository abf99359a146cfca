#include "draw/placement/crossings.h"

#include <algorithm>

namespace tessera_draw::placing {

void CrossingCounter::collectHeads(Index layer) {
    m_heads.clear();
    for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
        const Index vertex = m_graph.order[i];
        m_ends.clear();
        for (Index k = m_graph.outBegin[vertex]; k < m_graph.outBegin[vertex + 1]; ++k) {
            const Edge& edge = m_graph.edges[m_graph.outEdges[k]];
            const std::uint64_t port = m_graph.portPlace(edge.tailPort);
            m_ends.push_back(port << 32 | m_ranks.ofHead(edge));
        }
        if (m_ends.size() > 1) std::sort(m_ends.begin(), m_ends.end());
        for (const std::uint64_t end : m_ends)
            m_heads.push_back(static_cast<Index>(end));
    }
}

std::uint64_t CrossingCounter::behind(Index layer) {
    collectHeads(layer);
    if (m_heads.size() < 2) return 0;
    const std::size_t size = m_ranks.headRanks(layer + 1);
    m_tree.assign(size + 1, 0);
    std::uint64_t count = 0;
    Index seen = 0;
    for (const Index head : m_heads) {
        Index notBehind = 0;
        for (std::size_t i = head + 1; i > 0; i &= i - 1)
            notBehind += m_tree[i];
        count += seen - notBehind;
        ++seen;
        for (std::size_t i = head + 1; i <= size; i += i & (~i + 1))
            ++m_tree[i];
    }
    return count;
}

std::uint64_t CrossingCounter::inContainer(Index container) {
    std::uint64_t count = 0;
    for (Index layer = m_graph.firstLayer[container]; layer < m_graph.lastLayer(container); ++layer)
        count += behind(layer);
    return count;
}

}  // namespace tessera_draw::placing
