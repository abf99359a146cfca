#include <algorithm>
#include <cmath>

#include "draw/placement/block_graph.h"

namespace tessera_draw::placing {
namespace {

// Vertices of one layer that touch, as one that wishes the mean of their wishes.
struct Block {
    Index first = 0;
    double wish = 0;  // of the first one's top
    double weight = 0;
};

class KeptTops {
  public:
    KeptTops(const BlockGraph& blockGraph, const LayeredGraph& graph, double highest)
        : m_blockGraph(blockGraph), m_graph(graph), m_highest(highest), m_tops(blockGraph.size(), 0) {}

    std::vector<double> run() {
        findWishes();
        for (Index layer = 0; layer < m_blockGraph.layers(); ++layer)
            settle(m_blockGraph.layerBegin[layer], m_blockGraph.layerBegin[layer + 1]);
        return std::move(m_tops);
    }

  private:
    [[nodiscard]] bool isKept(Index i) const {
        const Index vertex = m_blockGraph.vertex[i];
        return vertex != nothing && !std::isnan(m_graph.kept.top[vertex]);
    }

    // New vertices of which nothing is known follow those before them.
    void findWishes() {
        for (Index i = 0; i < m_blockGraph.size(); ++i) {
            const Index vertex = m_blockGraph.vertex[i];
            const double before =
                m_blockGraph.isFirst[i] != 0 ? m_highest : m_tops[i - 1] + m_blockGraph.step(i - 1);
            if (isKept(i))
                m_tops[i] = m_graph.kept.top[vertex];
            else if (vertex == nothing || std::isnan(m_graph.kept.middle[vertex]))
                m_tops[i] = before;
            else
                m_tops[i] = m_graph.kept.middle[vertex] - m_blockGraph.height[i] / 2;
        }
    }

    // Moves what is too close apart, with the least sum of squares: in both directions, new ones before others. Nothing
    // moves above what was the top, as everything else would have to move down then.
    void settle(Index begin, Index end) {
        constexpr double weightOfNew = 0.01;
        constexpr double rounding = 1e-9;
        m_blocks.clear();
        double offset = 0;
        m_offsets.assign(end - begin, 0);
        for (Index i = begin; i < end; ++i) {
            m_offsets[i - begin] = offset;
            m_blocks.push_back({i, m_tops[i] - offset, isKept(i) ? 1 : weightOfNew});
            while (m_blocks.size() > 1 &&
                   m_blocks[m_blocks.size() - 2].wish > m_blocks.back().wish + rounding) {
                const Block last = m_blocks.back();
                m_blocks.pop_back();
                Block& joined = m_blocks.back();
                joined.wish =
                    (joined.wish * joined.weight + last.wish * last.weight) / (joined.weight + last.weight);
                joined.weight += last.weight;
            }
            offset += m_blockGraph.step(i);
        }
        for (std::size_t k = 0; k < m_blocks.size(); ++k) {
            const Index next = k + 1 < m_blocks.size() ? m_blocks[k + 1].first : end;
            // What nothing pushes keeps its place to the last digit.
            if (next == m_blocks[k].first + 1 &&
                m_tops[m_blocks[k].first] >= m_highest + m_offsets[m_blocks[k].first - begin])
                continue;
            for (Index i = m_blocks[k].first; i < next; ++i)
                m_tops[i] = std::max(m_blocks[k].wish, m_highest) + m_offsets[i - begin];
        }
    }

    const BlockGraph& m_blockGraph;
    const LayeredGraph& m_graph;
    const double m_highest;
    std::vector<double> m_tops;
    std::vector<Block> m_blocks;
    std::vector<double> m_offsets;
};

}  // namespace

std::vector<double> keptTops(const BlockGraph& blockGraph, const LayeredGraph& graph, double contentTop) {
    return KeptTops(blockGraph, graph, contentTop).run();
}

std::vector<char> keptVertices(const BlockGraph& blockGraph, const LayeredGraph& graph) {
    std::vector<char> isKept(blockGraph.size(), 0);
    if (graph.kept.top.empty()) return isKept;
    for (Index i = 0; i < blockGraph.size(); ++i) {
        const Index vertex = blockGraph.vertex[i];
        isKept[i] = vertex != nothing && !std::isnan(graph.kept.top[vertex]) ? 1 : 0;
    }
    return isKept;
}

}  // namespace tessera_draw::placing
