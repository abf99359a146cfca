#include "draw/placement/untwisting.h"

#include <utility>

namespace tessera_draw::placing {
namespace {

constexpr int passes = 4;

class Untwisting {
  public:
    explicit Untwisting(LayeredGraph& graph)
        : m_graph(graph), m_outside(graph.hierarchicalPorts.size(), nothing) {
        for (Index i = 0; i < graph.edges.size(); ++i) {
            const Edge& edge = graph.edges[i];
            if (edge.kind != Edge::Kind::plain) continue;
            if (edge.tailPort != nothing) m_outside[edge.tailPort] = i;
            if (edge.headPort != nothing) m_outside[edge.headPort] = i;
        }
    }

    // Returns whether anything has changed.
    bool run() {
        bool hasChanged = false;
        for (Index layer = 0; layer < m_graph.firstLayer.back(); ++layer)
            for (Index i = 0; i + 1 < m_graph.sizeOf(layer); ++i)
                hasChanged |= untwistFrom(m_graph.at(layer, i), m_graph.at(layer, i + 1));
        return hasChanged;
    }

  private:
    // The edge outside of the container whose port this is; `nothing` for all else.
    [[nodiscard]] Index outsideOf(Index vertex, bool isAtEnd) const {
        if (!m_graph.isPort(vertex)) return nothing;
        const Index port = vertex - m_graph.boxCount;
        return m_graph.hierarchicalPorts[port].isAtEnd == isAtEnd ? m_outside[port] : nothing;
    }

    // Whether the vertex is on one line, which goes on at both sides and can be led elsewhere.
    [[nodiscard]] bool isFree(Index vertex) const {
        if (vertex < m_graph.boxCount && m_graph.isOnLine[vertex] == 0) return false;
        const Index in = m_graph.inBegin[vertex + 1] - m_graph.inBegin[vertex];
        const Index out = m_graph.outBegin[vertex + 1] - m_graph.outBegin[vertex];
        return in + (outsideOf(vertex, false) != nothing ? 1 : 0) == 1 &&
               out + (outsideOf(vertex, true) != nothing ? 1 : 0) == 1;
    }

    [[nodiscard]] EdgeEnd before(Index vertex) const {
        const Index outside = outsideOf(vertex, false);
        if (outside == nothing) return m_graph.inTails[m_graph.inBegin[vertex]];
        return {m_graph.edges[outside].tail, m_graph.edges[outside].tailPort};
    }
    [[nodiscard]] EdgeEnd after(Index vertex) const {
        const Index outside = outsideOf(vertex, true);
        if (outside == nothing) return m_graph.outHeads[m_graph.outBegin[vertex]];
        return {m_graph.edges[outside].head, m_graph.edges[outside].headPort};
    }

    [[nodiscard]] Index pointOf(const EdgeEnd& end) const {
        return end.port == nothing ? end.vertex : m_graph.vertexOf(end.port);
    }

    // Whether `a` is below `b`, both of one layer.
    [[nodiscard]] bool isBelow(const EdgeEnd& a, const EdgeEnd& b) const {
        if (a.vertex != b.vertex) return m_graph.place[a.vertex] > m_graph.place[b.vertex];
        return a.port != nothing && b.port != nothing &&
               m_graph.portPlace(a.port) > m_graph.portPlace(b.port);
    }

    bool untwistFrom(Index upper, Index lower) {
        if (!isFree(upper) || !isFree(lower) || !isBelow(before(upper), before(lower))) return false;
        m_run.clear();
        while (true) {
            m_run.emplace_back(upper, lower);
            if (isBelow(after(upper), after(lower))) break;
            upper = pointOf(after(upper));
            lower = pointOf(after(lower));
            const bool goesOn = m_graph.layer[upper] == m_graph.layer[lower] &&
                                m_graph.place[upper] + 1 == m_graph.place[lower] && isFree(upper) &&
                                isFree(lower);
            if (!goesOn) return false;
        }
        for (const auto& [a, b] : m_run) {
            std::swap(m_graph.place[a], m_graph.place[b]);
            const Index begin = m_graph.layerBegin[m_graph.layer[a]];
            m_graph.order[begin + m_graph.place[a]] = a;
            m_graph.order[begin + m_graph.place[b]] = b;
        }
        return true;
    }

    LayeredGraph& m_graph;
    std::vector<Index> m_outside;                // by hierarchical port: the edge
    std::vector<std::pair<Index, Index>> m_run;  // the upper and the lower one, by layer
};

}  // namespace

void untwist(LayeredGraph& graph) {
    Untwisting untwisting(graph);
    for (int pass = 0; pass < passes && untwisting.run(); ++pass) {
    }
}

}  // namespace tessera_draw::placing
