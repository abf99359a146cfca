#include "draw/placement/block_graph.h"

#include <algorithm>

namespace tessera_draw::placing {
namespace {

// Between the lower side of `a` and the upper side of `b`, which follows it in the layer.
double distance(const LayeredGraph& graph, Index a, Index b, const Spacing& spacing) {
    const bool isPointA = a >= graph.boxCount;
    const bool isPointB = b >= graph.boxCount;
    // Ports and dummy vertices are points of lines, which may be closer together than boxes.
    if (isPointA || isPointB) return spacing.betweenLines;
    if (graph.isOnLine[a] != 0 && graph.isOnLine[b] != 0) return spacing.betweenBoxes / 2;
    return spacing.betweenBoxes;
}

// Long lines should be straight before short ones; the factors are those that are usual in the literature.
double weightOf(bool isOnLineA, bool isOnLineB) {
    if (isOnLineA && isOnLineB) return 8;
    return isOnLineA || isOnLineB ? 2 : 1;
}

class BlockGraphFiller {
  public:
    BlockGraphFiller(BlockGraph& blockGraph, const LayeredGraph& graph, Index container,
                     const std::vector<char>& isRowEnd)
        : m_blockGraph(blockGraph),
          m_graph(graph),
          m_isRowEnd(isRowEnd),
          m_begin(graph.layerBegin[graph.firstLayer[container]]),
          m_shift(blockGraph.size()) {}

    // From top to bottom, so that the medians are in the middle.
    void addAdjacencies(Index vertex) {
        const auto inBegin = static_cast<std::ptrdiff_t>(m_blockGraph.in.size());
        const auto outBegin = static_cast<std::ptrdiff_t>(m_blockGraph.out.size());
        const Index layer = m_graph.layer[vertex];
        const bool isRowBegin = m_isRowEnd[layer == 0 ? 0 : layer - 1] != 0;
        for (Index k = m_graph.inBegin[vertex]; !isRowBegin && k < m_graph.inBegin[vertex + 1]; ++k) {
            const Edge& edge = m_graph.edges[m_graph.inEdges[k]];
            m_blockGraph.in.push_back(adjacency(edge.tail, vertex, edge.headOffset, edge.tailOffset));
        }
        for (Index k = m_graph.outBegin[vertex]; m_isRowEnd[layer] == 0 && k < m_graph.outBegin[vertex + 1];
             ++k) {
            const Edge& edge = m_graph.edges[m_graph.outEdges[k]];
            m_blockGraph.out.push_back(adjacency(edge.head, vertex, edge.tailOffset, edge.headOffset));
        }
        const auto fromTop = [](const Adjacency& a, const Adjacency& b) {
            if (a.other != b.other) return a.other < b.other;
            return a.otherOffset != b.otherOffset ? a.otherOffset < b.otherOffset : a.ownOffset < b.ownOffset;
        };
        std::sort(m_blockGraph.in.begin() + inBegin, m_blockGraph.in.end(), fromTop);
        std::sort(m_blockGraph.out.begin() + outBegin, m_blockGraph.out.end(), fromTop);
    }

  private:
    [[nodiscard]] Adjacency adjacency(Index other, Index own, double ownOffset, double otherOffset) const {
        const bool isOtherOnLine = m_graph.isOnLine[other] != 0;
        const bool isOwnOnLine = m_graph.isOnLine[own] != 0;
        Adjacency adjacency;
        adjacency.other = m_shift + m_graph.layerBegin[m_graph.layer[other]] + m_graph.place[other] - m_begin;
        adjacency.ownOffset = ownOffset;
        adjacency.otherOffset = otherOffset;
        adjacency.weight = weightOf(isOwnOnLine, isOtherOnLine);
        adjacency.isInner = isOwnOnLine && isOtherOnLine;
        return adjacency;
    }

    BlockGraph& m_blockGraph;
    const LayeredGraph& m_graph;
    const std::vector<char>& m_isRowEnd;
    Index m_begin;
    // 1 when the title's vertex comes first, else 0.
    Index m_shift;
};

// A vertex without edges that keeps the space of a container's title at the top of the first layer.
void addHeader(BlockGraph& blockGraph, double height, const Spacing& spacing) {
    blockGraph.vertex.push_back(nothing);
    blockGraph.height.push_back(height);
    blockGraph.gapBelow.push_back(spacing.betweenLines);
    blockGraph.isFirst.push_back(1);
    blockGraph.isLast.push_back(0);
    blockGraph.isOnLine.push_back(0);
    blockGraph.inBegin.push_back(0);
    blockGraph.outBegin.push_back(0);
}

}  // namespace

void fillBlockGraph(BlockGraph& blockGraph, const LayeredGraph& graph, Index container, double header,
                    const std::vector<char>& isRowEnd, const Spacing& spacing) {
    blockGraph = {};
    if (header > 0) addHeader(blockGraph, header, spacing);
    const Index shift = blockGraph.size();
    const Index first = graph.firstLayer[container];
    const Index last = graph.lastLayer(container);
    const Index begin = graph.layerBegin[first];
    BlockGraphFiller filler(blockGraph, graph, container, isRowEnd);
    for (Index layer = first; layer <= last; ++layer) {
        blockGraph.layerBegin.push_back(layer == first ? 0 : shift + graph.layerBegin[layer] - begin);
        for (Index i = graph.layerBegin[layer]; i < graph.layerBegin[layer + 1]; ++i) {
            const Index vertex = graph.order[i];
            const bool isLast = i + 1 == graph.layerBegin[layer + 1];
            blockGraph.vertex.push_back(vertex);
            blockGraph.height.push_back(graph.height[vertex]);
            blockGraph.isLast.push_back(isLast ? 1 : 0);
            blockGraph.isFirst.push_back(blockGraph.size() == blockGraph.layerBegin.back() + 1 ? 1 : 0);
            blockGraph.isOnLine.push_back(graph.isOnLine[vertex]);
            blockGraph.gapBelow.push_back(isLast ? 0 : distance(graph, vertex, graph.order[i + 1], spacing));
            blockGraph.inBegin.push_back(static_cast<Index>(blockGraph.in.size()));
            blockGraph.outBegin.push_back(static_cast<Index>(blockGraph.out.size()));
            filler.addAdjacencies(vertex);
        }
    }
    blockGraph.layerBegin.push_back(shift + graph.layerBegin[last + 1] - begin);
    blockGraph.inBegin.push_back(static_cast<Index>(blockGraph.in.size()));
    blockGraph.outBegin.push_back(static_cast<Index>(blockGraph.out.size()));
}

}  // namespace tessera_draw::placing
