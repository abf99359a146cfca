#include "draw/placement/layered_graph.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tessera_draw::placing {
namespace {

// An end of a chain before there are edges.
struct End {
    Index vertex = nothing;
    Index port = nothing;
    Index label = nothing;
};

// The part of a route segment inside one container, before its layers are known.
struct RawChain {
    Index container = 0;
    End from;
    End to;
    bool isTurn = false;  // from a label to a dummy vertex in the same layer, where the next chain begins
};

class LayeredGraphBuilder {
  public:
    LayeredGraphBuilder(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                        const std::vector<RouteSegment>& routeSegments, const Layers& layers,
                        const EndLabels& endLabels)
        : m_boxes(boxes),
          m_nesting(nesting),
          m_routeSegments(routeSegments),
          m_layers(layers),
          m_endLabels(endLabels) {}

    LayeredGraph build() {
        m_graph.boxCount = static_cast<Index>(m_boxes.size());
        for (std::size_t i = 0; i < m_routeSegments.size(); ++i)
            addChains(m_routeSegments[i], i > 0 && turnsBack(m_routeSegments[i - 1], m_routeSegments[i]));
        m_graph.firstDummyVertex = m_graph.vertexOf(static_cast<Index>(m_graph.hierarchicalPorts.size()));
        placeInLayers();
        findFarChains();
        for (std::size_t i = 0; i < m_raw.size(); ++i) {
            if (m_raw[i].isTurn)
                m_raw[i].to.vertex = m_raw[i + 1].from.vertex =
                    newDummyIn(m_graph.layer[m_raw[i].from.vertex]);
            addEdges(m_raw[i], m_isFar[i] != 0);
        }
        findGrids();
        fillLayers();
        linkEdges();
        markLines();
        setHeights();
        return std::move(m_graph);
    }

  private:
    // Whether the line would leave a label on its left side, where it enters it.
    [[nodiscard]] bool turnsBack(const RouteSegment& to, const RouteSegment& from) const {
        const Index label = from.from;
        const bool isInLabel = to.line == from.line && to.to == label && m_boxes[label].isLabel &&
                               !to.isDirect && !from.isDirect && to.toMember == label &&
                               from.fromMember == label;
        if (!isInLabel || to.fromMember == nothing || from.toMember == nothing) return false;
        return m_layers.ofBox[to.fromMember] < m_layers.ofBox[label] &&
               m_layers.ofBox[from.toMember] < m_layers.ofBox[label];
    }

    // A line that ends at a container gets a hierarchical port too, because it needs a position on that
    // border as lines that cross it do.
    void addChains(const RouteSegment& routeSegment, bool turns) {
        const auto begin = static_cast<Index>(m_raw.size());
        if (!routeSegment.isDirect) {
            const bool isInside = routeSegment.fromMember == nothing || routeSegment.toMember == nothing;
            const Index fromLayer = isInside ? 0 : m_layers.ofBox[routeSegment.fromMember];
            const Index toLayer = isInside ? 1 : m_layers.ofBox[routeSegment.toMember];
            RawChain middle;
            middle.container = routeSegment.container;
            middle.from = climb({routeSegment.from, nothing, routeSegment.fromLabel}, routeSegment.fromMember,
                                fromLayer <= toLayer, false);
            if (turns) m_raw.push_back({routeSegment.container, middle.from, {}, true});
            const auto outside = static_cast<std::ptrdiff_t>(m_raw.size());
            middle.to = climb({routeSegment.to, nothing, routeSegment.toLabel}, routeSegment.toMember,
                              fromLayer >= toLayer, true);
            m_raw.push_back(middle);
            std::reverse(m_raw.begin() + outside, m_raw.end());
        }
        m_graph.ofRouteSegment.push_back({begin, static_cast<Index>(m_raw.size())});
    }

    // Adds the chains from a box up to the member of the route segment's container that holds it, one for each
    // border on the way. Returns where the chain in that container ends.
    End climb(End end, Index member, bool isAtEnd, bool isTowards) {
        if (member == nothing) {
            const Index port = newHierarchicalPort(end.vertex, isTowards);
            m_graph.hierarchicalPorts[port].label = end.label;
            return {m_graph.vertexOf(port), nothing, end.label};
        }
        if (m_nesting.containerOf[end.vertex] != nothing) {
            end.port = newHierarchicalPort(end.vertex, isAtEnd);
            m_graph.hierarchicalPorts[end.port].label = end.label;
        }
        while (end.vertex != member) {
            const Index around = m_nesting.tree.parent(end.vertex);
            const Index port = newHierarchicalPort(around, isAtEnd);
            const End border{m_graph.vertexOf(port), nothing, nothing};
            m_raw.push_back(
                {m_nesting.containerOf[around], isTowards ? border : end, isTowards ? end : border});
            end = {around, port, nothing};
        }
        return end;
    }

    Index newHierarchicalPort(Index box, bool isAtEnd) {
        m_graph.hierarchicalPorts.push_back({box, isAtEnd});
        return static_cast<Index>(m_graph.hierarchicalPorts.size()) - 1;
    }

    // Boxes and hierarchical ports; dummy vertices follow with their edges.
    void placeInLayers() {
        m_graph.firstLayer.push_back(0);
        for (const Index count : m_layers.inContainer)
            // Two more for the hierarchical ports, before and after the boxes.
            m_graph.firstLayer.push_back(m_graph.firstLayer.back() + count + 2);
        m_graph.layer.resize(m_graph.firstDummyVertex);
        for (Index box = 0; box < m_graph.boxCount; ++box)
            if (m_endLabels.isOne[box] == 0)
                m_graph.layer[box] =
                    m_graph.firstLayer[m_nesting.containerAround(box)] + 1 + m_layers.ofBox[box];
        for (Index i = 0; i < m_graph.hierarchicalPorts.size(); ++i) {
            const Index container = m_nesting.containerOf[m_graph.hierarchicalPorts[i].box];
            m_graph.layer[m_graph.vertexOf(i)] = m_graph.hierarchicalPorts[i].isAtEnd
                                                     ? m_graph.lastLayer(container)
                                                     : m_graph.firstLayer[container];
        }
    }

    [[nodiscard]] Index spanOf(const RawChain& chain) const {
        if (chain.isTurn) return 0;
        const Index a = m_graph.layer[chain.from.vertex];
        const Index b = m_graph.layer[chain.to.vertex];
        return a < b ? b - a : a - b;
    }

    // There can be as many dummy vertices as lines times layers. Above a limit that is linear in the input,
    // the longest chains are routed through a lane outside of all layers.
    void findFarChains() {
        m_isFar.assign(m_raw.size(), 0);
        const std::size_t limit = 8 * (m_raw.size() + m_boxes.size()) + 200'000;
        std::size_t sum = 0;
        for (const RawChain& chain : m_raw)
            sum += spanOf(chain);
        if (sum <= limit) return;
        std::vector<std::pair<Index, Index>> bySpan;
        bySpan.reserve(m_raw.size());
        for (Index i = 0; i < m_raw.size(); ++i)
            bySpan.emplace_back(spanOf(m_raw[i]), i);
        std::sort(bySpan.begin(), bySpan.end());
        sum = 0;
        for (const auto& [span, chain] : bySpan) {
            sum += span;
            const bool isAfterTurn = chain > 0 && m_raw[chain - 1].isTurn;
            m_isFar[chain] = sum > limit && span > 1 && !isAfterTurn ? 1 : 0;
        }
    }

    // Edges run from lower to higher layers, also those of a chain that runs back. A dummy vertex stands in
    // each layer between.
    void addEdges(const RawChain& raw, bool isFar) {
        EdgeChain chain;
        chain.container = raw.container;
        chain.firstEdge = static_cast<Index>(m_graph.edges.size());
        chain.isReversed = m_graph.layer[raw.from.vertex] > m_graph.layer[raw.to.vertex];
        const End& tail = chain.isReversed ? raw.to : raw.from;
        const End& head = chain.isReversed ? raw.from : raw.to;
        Edge edge;
        edge.tail = tail.vertex;
        edge.tailPort = tail.port;
        edge.tailLabel = tail.label;
        const Index last = m_graph.layer[head.vertex];
        if (isFar) {
            edge.kind = Edge::Kind::toLane;
            m_graph.edges.push_back(std::exchange(edge, {}));
            edge.kind = Edge::Kind::fromLane;
        }
        for (Index next = m_graph.layer[tail.vertex] + 1; !isFar && next < last; ++next) {
            edge.head = newDummyIn(next);
            m_graph.edges.push_back(edge);
            edge = {};
            edge.tail = m_graph.edges.back().head;
        }
        edge.head = head.vertex;
        edge.headPort = head.port;
        edge.headLabel = head.label;
        if (m_graph.layer[tail.vertex] == last) edge.kind = Edge::Kind::loop;
        m_graph.edges.push_back(edge);
        chain.edgeCount = static_cast<Index>(m_graph.edges.size()) - chain.firstEdge;
        m_graph.chains.push_back(chain);
    }

    Index newDummyIn(Index layer) {
        m_graph.layer.push_back(layer);
        return m_graph.vertexCount() - 1;
    }

    // Boxes without edges, and many of them in one layer, would make a column higher than all others.
    void findGrids() {
        std::vector<char> isTouched = m_endLabels.isOne;  // which are in no layer, and so in no grid
        for (const Edge& edge : m_graph.edges)
            for (const Index end : {edge.tail, edge.head})
                if (end < m_graph.boxCount) isTouched[end] = 1;
        m_graph.grids =
            isolatedGridsOf(m_boxes, m_nesting, isTouched, m_graph.layer, m_graph.firstLayer.back());
    }

    // Isolated grids come after the boxes that have lines.
    void fillLayers() {
        std::vector<Index> vertices;
        std::vector<Index> leaders;
        vertices.reserve(m_graph.layer.size());
        for (Index vertex = 0; vertex < m_graph.vertexCount(); ++vertex) {
            if (vertex < m_graph.boxCount && m_endLabels.isOne[vertex] != 0) continue;
            if (vertex >= m_graph.boxCount || m_graph.grids.ofBox[vertex] == nothing)
                vertices.push_back(vertex);
            else if (m_graph.grids.isInLayer(vertex))
                leaders.push_back(vertex);
        }
        vertices.insert(vertices.end(), leaders.begin(), leaders.end());
        m_graph.layerBegin.assign(m_graph.firstLayer.back() + 1, 0);
        for (const Index vertex : vertices)
            ++m_graph.layerBegin[m_graph.layer[vertex] + 1];
        std::partial_sum(m_graph.layerBegin.begin(), m_graph.layerBegin.end(), m_graph.layerBegin.begin());
        std::vector<Index> next(m_graph.layerBegin.begin(), m_graph.layerBegin.end() - 1);
        m_graph.order.resize(vertices.size());
        m_graph.place.resize(m_graph.layer.size(), 0);
        for (const Index vertex : vertices) {
            const Index layer = m_graph.layer[vertex];
            m_graph.place[vertex] = next[layer] - m_graph.layerBegin[layer];
            m_graph.order[next[layer]++] = vertex;
        }
    }

    // Counting sorts: the edges of each vertex, in the order of the edges.
    void linkEdges() {
        m_graph.inBegin.assign(m_graph.layer.size() + 1, 0);
        m_graph.outBegin.assign(m_graph.layer.size() + 1, 0);
        std::size_t count = 0;
        for (const Edge& edge : m_graph.edges) {
            if (edge.kind != Edge::Kind::plain) continue;
            ++m_graph.outBegin[edge.tail + 1];
            ++m_graph.inBegin[edge.head + 1];
            ++count;
        }
        std::partial_sum(m_graph.inBegin.begin(), m_graph.inBegin.end(), m_graph.inBegin.begin());
        std::partial_sum(m_graph.outBegin.begin(), m_graph.outBegin.end(), m_graph.outBegin.begin());
        m_graph.inEdges.resize(count);
        m_graph.inTails.resize(count);
        m_graph.outEdges.resize(count);
        m_graph.outHeads.resize(count);
        std::vector<Index> nextIn(m_graph.inBegin.begin(), m_graph.inBegin.end() - 1);
        std::vector<Index> nextOut(m_graph.outBegin.begin(), m_graph.outBegin.end() - 1);
        for (Index i = 0; i < m_graph.edges.size(); ++i) {
            const Edge& edge = m_graph.edges[i];
            if (edge.kind != Edge::Kind::plain) continue;
            m_graph.outHeads[nextOut[edge.tail]] = {edge.head, edge.headPort};
            m_graph.outEdges[nextOut[edge.tail]++] = i;
            m_graph.inTails[nextIn[edge.head]] = {edge.tail, edge.tailPort};
            m_graph.inEdges[nextIn[edge.head]++] = i;
        }
    }

    // A label through which a single line passes is kept straight with it, as its other points are.
    void markLines() {
        m_graph.isOnLine.assign(m_graph.layer.size(), 1);
        for (Index box = 0; box < m_graph.boxCount; ++box) {
            const bool isPassed = m_graph.inBegin[box + 1] - m_graph.inBegin[box] <= 1 &&
                                  m_graph.outBegin[box + 1] - m_graph.outBegin[box] <= 1;
            m_graph.isOnLine[box] = m_boxes[box].isLabel && isPassed ? 1 : 0;
        }
    }

    // Hierarchical ports are as high as the end labels beside them. All other points have no height, and boxes get
    // theirs with the geometry.
    void setHeights() {
        m_graph.height.assign(m_graph.layer.size(), 0);
        m_graph.top.assign(m_graph.layer.size(), 0);
        m_graph.inset.assign(m_graph.boxCount, 0);
        for (Index i = 0; i < m_graph.hierarchicalPorts.size(); ++i) {
            const Index label = m_graph.hierarchicalPorts[i].label;
            if (label != nothing) m_graph.height[m_graph.vertexOf(i)] = m_boxes[label].size.height;
        }
        for (Edge& edge : m_graph.edges) {
            if (edge.tail != nothing && m_graph.isPort(edge.tail))
                edge.tailOffset = m_graph.height[edge.tail] / 2;
            if (edge.head != nothing && m_graph.isPort(edge.head))
                edge.headOffset = m_graph.height[edge.head] / 2;
        }
    }

    const std::vector<BoxToPlace>& m_boxes;
    const Nesting& m_nesting;
    const std::vector<RouteSegment>& m_routeSegments;
    const Layers& m_layers;
    const EndLabels& m_endLabels;
    std::vector<RawChain> m_raw;
    std::vector<char> m_isFar;
    LayeredGraph m_graph;
};

}  // namespace

LayeredGraph layeredGraphOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                            const std::vector<RouteSegment>& routeSegments, const Layers& layers,
                            const EndLabels& endLabels) {
    return LayeredGraphBuilder(boxes, nesting, routeSegments, layers, endLabels).build();
}

}  // namespace tessera_draw::placing
