#include "draw/placement/crossings.h"

#include <algorithm>

namespace tessera_draw::placing {

void CrossingCounter::collectHeads(Index layer) {
    m_heads.clear();
    for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
        const Index begin = m_graph.outBegin[m_graph.order[i]];
        const Index end = m_graph.outBegin[m_graph.order[i] + 1];
        if (end - begin == 1) m_heads.push_back(m_ranks.ofHead(m_graph.outHeads[begin]));
        if (end - begin < 2) continue;
        m_ends.clear();
        for (Index k = begin; k < end; ++k) {
            const std::uint64_t port = m_graph.portPlace(m_graph.edges[m_graph.outEdges[k]].tailPort);
            m_ends.push_back(port << 32 | m_ranks.ofHead(m_graph.outHeads[k]));
        }
        std::sort(m_ends.begin(), m_ends.end());
        for (const std::uint64_t head : m_ends)
            m_heads.push_back(static_cast<Index>(head));
    }
}

// With the tails in order, two edges cross when their heads are not. A Fenwick tree counts the heads seen so
// far by rank: n log n time.
std::uint64_t CrossingCounter::after(Index layer) {
    collectHeads(layer);
    if (m_heads.size() < 2) return 0;
    const std::size_t size = m_ranks.headRanks(layer + 1);
    m_tree.assign(size + 1, 0);
    std::uint64_t count = 0;
    Index seen = 0;
    for (const Index head : m_heads) {
        Index notAfter = 0;
        for (std::size_t i = head + 1; i > 0; i &= i - 1)
            notAfter += m_tree[i];
        count += seen - notAfter;
        ++seen;
        for (std::size_t i = head + 1; i <= size; i += i & (~i + 1))
            ++m_tree[i];
    }
    return count;
}

std::uint64_t CrossingCounter::inContainer(Index container) {
    std::uint64_t count = 0;
    for (Index layer = m_graph.firstLayer[container]; layer < m_graph.lastLayer(container); ++layer)
        count += after(layer);
    return count;
}

}  // namespace tessera_draw::placing
