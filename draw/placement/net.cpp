#include "draw/placement/net.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tessera_draw::placing {
namespace {

// An end of a piece before there are edges.
struct End {
    Index vertex = nothing;
    Index port = nothing;
};

struct RawPiece {
    Index container = 0;
    End from;
    End to;
};

class NetBuilder {
  public:
    NetBuilder(const std::vector<BoxToPlace>& boxes, const Nesting& nesting, const std::vector<Hop>& hops,
               const Layers& layers)
        : m_boxes(boxes), m_nesting(nesting), m_hops(hops), m_layers(layers) {}

    Net build() {
        m_net.boxCount = static_cast<Index>(m_boxes.size());
        for (const Hop& hop : m_hops)
            addPieces(hop);
        m_net.firstWaypoint = m_net.vertexOf(static_cast<Index>(m_net.borderPoints.size()));
        placeInLayers();
        findFarPieces();
        for (std::size_t i = 0; i < m_raw.size(); ++i)
            addEdges(m_raw[i], m_isFar[i] != 0);
        findBundles();
        fillLayers();
        linkEdges();
        markLines();
        return std::move(m_net);
    }

  private:
    // A line that ends at a container gets a border point of it too: it needs a place there as others do.
    void addPieces(const Hop& hop) {
        const auto begin = static_cast<Index>(m_raw.size());
        if (!hop.isDirect) {
            const bool isInside = hop.fromMember == nothing || hop.toMember == nothing;
            const Index fromLayer = isInside ? 0 : m_layers.ofBox[hop.fromMember];
            const Index toLayer = isInside ? 1 : m_layers.ofBox[hop.toMember];
            RawPiece middle;
            middle.container = hop.container;
            middle.from = climb(hop.from, hop.fromMember, fromLayer <= toLayer, false);
            const auto outside = static_cast<std::ptrdiff_t>(m_raw.size());
            middle.to = climb(hop.to, hop.toMember, fromLayer >= toLayer, true);
            m_raw.push_back(middle);
            std::reverse(m_raw.begin() + outside, m_raw.end());
        }
        m_net.ofHop.push_back({begin, static_cast<Index>(m_raw.size())});
    }

    End climb(Index box, Index member, bool isAtEnd, bool isTowards) {
        if (member == nothing) return {borderPoint(box, isTowards), nothing};
        End end{box, nothing};
        if (m_nesting.containerOf[box] != nothing) end.port = newBorderPoint(box, isAtEnd);
        while (end.vertex != member) {
            const Index around = m_nesting.parent[end.vertex];
            const Index port = newBorderPoint(around, isAtEnd);
            const End border{m_net.vertexOf(port), nothing};
            m_raw.push_back(
                {m_nesting.containerOf[around], isTowards ? border : end, isTowards ? end : border});
            end = {around, port};
        }
        return end;
    }

    Index newBorderPoint(Index box, bool isAtEnd) {
        m_net.borderPoints.push_back({box, isAtEnd});
        return static_cast<Index>(m_net.borderPoints.size()) - 1;
    }
    Index borderPoint(Index box, bool isAtEnd) { return m_net.vertexOf(newBorderPoint(box, isAtEnd)); }

    // Boxes and border points; waypoints follow with their edges.
    void placeInLayers() {
        m_net.firstLayer.push_back(0);
        for (const Index count : m_layers.inContainer)
            m_net.firstLayer.push_back(m_net.firstLayer.back() + count + 2);
        m_net.layer.resize(m_net.firstWaypoint);
        for (Index box = 0; box < m_net.boxCount; ++box)
            m_net.layer[box] = m_net.firstLayer[m_nesting.containerAround(box)] + 1 + m_layers.ofBox[box];
        for (Index i = 0; i < m_net.borderPoints.size(); ++i) {
            const Index container = m_nesting.containerOf[m_net.borderPoints[i].box];
            m_net.layer[m_net.vertexOf(i)] =
                m_net.borderPoints[i].isAtEnd ? m_net.lastLayer(container) : m_net.firstLayer[container];
        }
    }

    [[nodiscard]] Index spanOf(const RawPiece& piece) const {
        const Index a = m_net.layer[piece.from.vertex];
        const Index b = m_net.layer[piece.to.vertex];
        return a < b ? b - a : a - b;
    }

    // Waypoints are as many as lines times layers. Where that is too much the longest pieces take a lane
    // outside of all layers.
    void findFarPieces() {
        m_isFar.assign(m_raw.size(), 0);
        const std::size_t limit = 8 * (m_raw.size() + m_boxes.size()) + 200'000;
        std::size_t sum = 0;
        for (const RawPiece& piece : m_raw)
            sum += spanOf(piece);
        if (sum <= limit) return;
        std::vector<std::pair<Index, Index>> bySpan;
        bySpan.reserve(m_raw.size());
        for (Index i = 0; i < m_raw.size(); ++i)
            bySpan.emplace_back(spanOf(m_raw[i]), i);
        std::sort(bySpan.begin(), bySpan.end());
        sum = 0;
        for (const auto& [span, piece] : bySpan) {
            sum += span;
            m_isFar[piece] = sum > limit && span > 1 ? 1 : 0;
        }
    }

    void addEdges(const RawPiece& raw, bool isFar) {
        Piece piece;
        piece.container = raw.container;
        piece.firstEdge = static_cast<Index>(m_net.edges.size());
        piece.isReversed = m_net.layer[raw.from.vertex] > m_net.layer[raw.to.vertex];
        const End& tail = piece.isReversed ? raw.to : raw.from;
        const End& head = piece.isReversed ? raw.from : raw.to;
        Edge edge;
        edge.tail = tail.vertex;
        edge.tailPort = tail.port;
        const Index last = m_net.layer[head.vertex];
        if (isFar) {
            edge.kind = Edge::Kind::toLane;
            m_net.edges.push_back(std::exchange(edge, {}));
            edge.kind = Edge::Kind::fromLane;
        }
        for (Index next = m_net.layer[tail.vertex] + 1; !isFar && next < last; ++next) {
            edge.head = m_net.vertexCount();
            m_net.layer.push_back(next);
            m_net.edges.push_back(edge);
            edge = {};
            edge.tail = m_net.edges.back().head;
        }
        edge.head = head.vertex;
        edge.headPort = head.port;
        if (m_net.layer[tail.vertex] == last) edge.kind = Edge::Kind::loop;
        m_net.edges.push_back(edge);
        piece.edgeCount = static_cast<Index>(m_net.edges.size()) - piece.firstEdge;
        m_net.pieces.push_back(piece);
    }

    void findBundles() {
        std::vector<char> isTouched(m_boxes.size(), 0);
        for (const Edge& edge : m_net.edges)
            for (const Index end : {edge.tail, edge.head})
                if (end < m_net.boxCount) isTouched[end] = 1;
        m_net.bundles = bundlesOf(m_boxes, m_nesting, isTouched, m_net.layer, m_net.firstLayer.back());
    }

    // Bundles stand behind what has lines.
    void fillLayers() {
        std::vector<Index> vertices;
        std::vector<Index> leaders;
        vertices.reserve(m_net.layer.size());
        for (Index vertex = 0; vertex < m_net.vertexCount(); ++vertex) {
            if (vertex >= m_net.boxCount || m_net.bundles.ofBox[vertex] == nothing)
                vertices.push_back(vertex);
            else if (m_net.bundles.isInLayer(vertex))
                leaders.push_back(vertex);
        }
        vertices.insert(vertices.end(), leaders.begin(), leaders.end());
        m_net.layerBegin.assign(m_net.firstLayer.back() + 1, 0);
        for (const Index vertex : vertices)
            ++m_net.layerBegin[m_net.layer[vertex] + 1];
        std::partial_sum(m_net.layerBegin.begin(), m_net.layerBegin.end(), m_net.layerBegin.begin());
        std::vector<Index> next(m_net.layerBegin.begin(), m_net.layerBegin.end() - 1);
        m_net.order.resize(vertices.size());
        m_net.place.resize(m_net.layer.size(), 0);
        for (const Index vertex : vertices) {
            const Index layer = m_net.layer[vertex];
            m_net.place[vertex] = next[layer] - m_net.layerBegin[layer];
            m_net.order[next[layer]++] = vertex;
        }
    }

    void linkEdges() {
        m_net.inBegin.assign(m_net.layer.size() + 1, 0);
        m_net.outBegin.assign(m_net.layer.size() + 1, 0);
        std::size_t count = 0;
        for (const Edge& edge : m_net.edges) {
            if (edge.kind != Edge::Kind::plain) continue;
            ++m_net.outBegin[edge.tail + 1];
            ++m_net.inBegin[edge.head + 1];
            ++count;
        }
        std::partial_sum(m_net.inBegin.begin(), m_net.inBegin.end(), m_net.inBegin.begin());
        std::partial_sum(m_net.outBegin.begin(), m_net.outBegin.end(), m_net.outBegin.begin());
        m_net.inEdges.resize(count);
        m_net.outEdges.resize(count);
        std::vector<Index> nextIn(m_net.inBegin.begin(), m_net.inBegin.end() - 1);
        std::vector<Index> nextOut(m_net.outBegin.begin(), m_net.outBegin.end() - 1);
        for (Index i = 0; i < m_net.edges.size(); ++i) {
            const Edge& edge = m_net.edges[i];
            if (edge.kind != Edge::Kind::plain) continue;
            m_net.outEdges[nextOut[edge.tail]++] = i;
            m_net.inEdges[nextIn[edge.head]++] = i;
        }
    }

    void markLines() {
        m_net.isOnLine.assign(m_net.layer.size(), 1);
        for (Index box = 0; box < m_net.boxCount; ++box) {
            const bool isPassed = m_net.inBegin[box + 1] - m_net.inBegin[box] <= 1 &&
                                  m_net.outBegin[box + 1] - m_net.outBegin[box] <= 1;
            m_net.isOnLine[box] = m_boxes[box].isLabel && isPassed ? 1 : 0;
        }
        m_net.height.assign(m_net.layer.size(), 0);
        m_net.top.assign(m_net.layer.size(), 0);
    }

    const std::vector<BoxToPlace>& m_boxes;
    const Nesting& m_nesting;
    const std::vector<Hop>& m_hops;
    const Layers& m_layers;
    std::vector<RawPiece> m_raw;
    std::vector<char> m_isFar;
    Net m_net;
};

}  // namespace

Net netOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting, const std::vector<Hop>& hops,
          const Layers& layers) {
    return NetBuilder(boxes, nesting, hops, layers).build();
}

}  // namespace tessera_draw::placing
