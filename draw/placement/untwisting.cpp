#include "draw/placement/untwisting.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessera_draw::placing {
namespace {

constexpr int passes = 4;
constexpr Index reach = 8;       // how many vertices a line is led past
constexpr Index mostEdges = 16;  // of each of them

// Whether an end of one edge is below or above that of another: 1, -1, or 0 for neither.
using Side = int;

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
        m_ends.resize(graph.vertexCount());
        m_isFree.resize(graph.vertexCount(), 0);
        for (Index vertex = 0; vertex < graph.vertexCount(); ++vertex)
            setEnds(vertex);
    }

    // Returns whether anything has changed.
    bool run() {
        bool hasChanged = false;
        for (Index layer = 0; layer < m_graph.firstLayer.back(); ++layer)
            for (Index i = 1; i < m_graph.sizeOf(layer); ++i) {
                if (!isFree(m_graph.at(layer, i))) continue;
                for (Index k = i - std::min(i, reach); k < i; ++k)
                    if (untwistFrom(m_graph.at(layer, k), m_graph.at(layer, i))) hasChanged = true;
            }
        return hasChanged;
    }

  private:
    // The same layer's points of two lines.
    struct Pair {
        Index upper = 0;
        Index lower = 0;
    };

    // The edge outside of the container whose port this is; `nothing` for all else.
    [[nodiscard]] Index outsideOf(Index vertex, bool isAtEnd) const {
        if (!m_graph.isPort(vertex)) return nothing;
        const Index port = vertex - m_graph.boxCount;
        return m_graph.hierarchicalPorts[port].isAtEnd == isAtEnd ? m_outside[port] : nothing;
    }

    // Calls visit(EdgeEnd) for the far end of each edge on that side.
    template <typename Visit>
    void forFarEnds(Index vertex, bool isAfter, Visit visit) const {
        if (const Index outside = outsideOf(vertex, isAfter); outside != nothing) {
            const Edge& edge = m_graph.edges[outside];
            visit(isAfter ? EdgeEnd{edge.head, edge.headPort} : EdgeEnd{edge.tail, edge.tailPort});
        }
        const auto& begin = isAfter ? m_graph.outBegin : m_graph.inBegin;
        const auto& ends = isAfter ? m_graph.outHeads : m_graph.inTails;
        for (Index i = begin[vertex]; i < begin[vertex + 1]; ++i)
            visit(ends[i]);
    }
    [[nodiscard]] Index edgeCount(Index vertex, bool isAfter) const {
        const auto& begin = isAfter ? m_graph.outBegin : m_graph.inBegin;
        return begin[vertex + 1] - begin[vertex] + (outsideOf(vertex, isAfter) != nothing ? 1 : 0);
    }

    void setEnds(Index vertex) {
        if (m_graph.isOnLine[vertex] == 0 || edgeCount(vertex, false) != 1 || edgeCount(vertex, true) != 1)
            return;
        for (const bool isAfter : {false, true})
            forFarEnds(vertex, isAfter, [&](const EdgeEnd& end) { m_ends[vertex][isAfter ? 1 : 0] = end; });
        m_isFree[vertex] = 1;
    }

    // Whether the vertex is on one line, which goes on at both sides and can be led elsewhere.
    [[nodiscard]] bool isFree(Index vertex) const { return m_isFree[vertex] != 0; }

    // Of a free vertex.
    [[nodiscard]] const EdgeEnd& next(Index vertex, bool isAfter) const {
        return m_ends[vertex][isAfter ? 1 : 0];
    }

    [[nodiscard]] Index pointOf(const EdgeEnd& end) const {
        return end.port == nothing ? end.vertex : m_graph.vertexOf(end.port);
    }

    // Of `a`, seen from `b`, both of one layer.
    [[nodiscard]] Side sideOf(const EdgeEnd& a, const EdgeEnd& b) const {
        Index placeA = m_graph.place[a.vertex];
        Index placeB = m_graph.place[b.vertex];
        if (a.vertex == b.vertex) {
            placeA = m_graph.portPlace(a.port);
            placeB = m_graph.portPlace(b.port);
        }
        return placeA == placeB ? 0 : placeA > placeB ? 1 : -1;
    }

    bool untwistFrom(Index upper, Index lower) {
        if (!isFree(upper) || !isFree(lower) || sideOf(next(upper, false), next(lower, false)) <= 0)
            return false;
        m_run.clear();
        while (true) {
            m_run.push_back({upper, lower});
            if (sideOf(next(upper, true), next(lower, true)) > 0) break;
            upper = pointOf(next(upper, true));
            lower = pointOf(next(lower, true));
            const bool goesOn =
                m_graph.layer[upper] == m_graph.layer[lower] && m_graph.place[upper] < m_graph.place[lower] &&
                m_graph.place[lower] - m_graph.place[upper] <= reach && isFree(upper) && isFree(lower);
            if (!goesOn) return false;
        }
        for (const bool movesUp : {true, false}) {
            if (changeIfMoved(movesUp) >= 0) continue;
            move(movesUp);
            return true;
        }
        return false;
    }

    // Whether it is one of those that the moving point of this pair would pass.
    [[nodiscard]] bool isPassed(Index vertex, const Pair& pair, bool movesUp) const {
        return m_graph.layer[vertex] == m_graph.layer[pair.upper] &&
               vertex != (movesUp ? pair.lower : pair.upper) &&
               m_graph.place[vertex] >= m_graph.place[pair.upper] &&
               m_graph.place[vertex] <= m_graph.place[pair.lower];
    }

    // The change in crossings when the lower points of the run move up past the upper ones, or the upper ones down.
    [[nodiscard]] int changeIfMoved(bool movesUp) const {
        int sum = 0;
        for (std::size_t i = 0; i < m_run.size(); ++i) {
            const Index layer = m_graph.layer[m_run[i].upper];
            for (Index k = m_graph.place[m_run[i].upper]; k <= m_graph.place[m_run[i].lower]; ++k) {
                const Index passed = m_graph.at(layer, k);
                if (!isPassed(passed, m_run[i], movesUp)) continue;
                if (std::max(edgeCount(passed, false), edgeCount(passed, true)) > mostEdges) return 1;
                sum += changeBeside(passed, i, movesUp, false) + changeBeside(passed, i, movesUp, true);
            }
        }
        return sum;
    }

    // The part of that at the edges before or after one vertex that is passed at one point of the run.
    [[nodiscard]] int changeBeside(Index passed, std::size_t point, bool movesUp, bool isAfter) const {
        const Pair& pair = m_run[point];
        const EdgeEnd& own = next(movesUp ? pair.lower : pair.upper, isAfter);
        const Side side = movesUp ? 1 : -1;  // of the point that moves
        const bool isLast = isAfter ? point + 1 == m_run.size() : point == 0;
        int sum = 0;
        forFarEnds(passed, isAfter, [&](const EdgeEnd& other) {
            // Where the far end is passed as well, nothing changes.
            if (isLast || !isPassed(pointOf(other), m_run[isAfter ? point + 1 : point - 1], movesUp))
                sum += side * sideOf(own, other);
        });
        return sum;
    }

    void move(bool movesUp) {
        for (const auto& [upper, lower] : m_run) {
            const auto layer = m_graph.order.begin() + m_graph.layerBegin[m_graph.layer[upper]];
            const auto begin = layer + m_graph.place[upper];
            const auto end = layer + m_graph.place[lower] + 1;
            std::rotate(begin, movesUp ? end - 1 : begin + 1, end);
            for (auto at = begin; at != end; ++at)
                m_graph.place[*at] = static_cast<Index>(at - layer);
        }
    }

    LayeredGraph& m_graph;
    std::vector<Index> m_outside;  // by hierarchical port: the edge
    std::vector<char> m_isFree;    // by vertex
    std::vector<std::array<EdgeEnd, 2>>
        m_ends;               // by free vertex: the far ends of its edges, before and after it
    std::vector<Pair> m_run;  // by layer
};

}  // namespace

void untwist(LayeredGraph& graph) {
    Untwisting untwisting(graph);
    for (int pass = 0; pass < passes && untwisting.run(); ++pass) {
    }
}

}  // namespace tessera_draw::placing
