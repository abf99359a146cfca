#include <algorithm>
#include <array>
#include <span>

#include "host/lint/feedback/node_order.h"

namespace tessera_host {
namespace {

using Index = std::size_t;

// Steps per node and arc of the graph, on average.
constexpr Index patience = 40;

// A topological order of the arcs that run forwards, which takes up one arc after the other where that closes
// no cycle, by the method of Pearce and Kelly.
class GrowingOrder {
  public:
    GrowingOrder(const ArcGraph& graph, const std::vector<Index>& order, const CancelToken& token)
        : m_graph(graph),
          m_place(order.size()),
          m_isReversed(graph.arcCount()),
          m_reached{std::vector<Index>(order.size()), std::vector<Index>(order.size())},
          m_steps(patience * (graph.nodeCount() + graph.arcCount())),
          m_token(token) {
        for (Index i = 0; i < order.size(); ++i)
            m_place[order[i]] = i;
        for (Index arc = 0; arc < graph.arcCount(); ++arc)
            m_isReversed[arc] = m_place[graph[arc].to] < m_place[graph[arc].from];
    }

    std::vector<Index> run() {
        for (Index arc = 0; arc < m_graph.arcCount() && m_steps > 0 && !m_token.isCancelled(); ++arc)
            if (m_isReversed[arc]) tryRestoring(arc);
        std::vector<Index> order(m_place.size());
        for (Index node = 0; node < order.size(); ++node)
            order[m_place[node]] = node;
        return order;
    }

  private:
    // Which way a search goes along the arcs.
    enum Way : Index { forwards, backwards };

    // Nodes that a search has reached; those before `next` have been left again.
    struct Search {
        std::vector<Index> nodes;
        Index next = 0;

        [[nodiscard]] bool isOver() const { return next == nodes.size(); }
        void begin(Index node) {
            nodes.assign(1, node);
            next = 0;
        }
    };

    // Both ends are searched from by turns, so that a short way between them, or a small end, is soon known.
    void tryRestoring(Index arc) {
        const auto [from, to] = m_graph[arc];
        ++m_round;
        begin(forwards, to);
        begin(backwards, from);
        m_first = m_place[to];
        m_last = m_place[from];
        while (!m_search[forwards].isOver() && !m_search[backwards].isOver())
            if (!advance(forwards) || !advance(backwards)) return;
        for (const Way way : {forwards, backwards})  // what has to move is now known from one end only
            while (!m_search[way].isOver())
                if (!advance(way)) return;
        moveApart();
        m_isReversed[arc] = false;
    }

    void begin(Way way, Index node) {
        m_search[way].begin(node);
        m_reached[way][node] = m_round;
    }

    // Leaves one node. False when the searches have met, or there are no steps left.
    bool advance(Way way) {
        Search& search = m_search[way];
        if (search.isOver()) return true;
        const Index node = search.nodes[search.next++];
        const std::span<const Index> arcs = way == forwards ? m_graph.leaving(node) : m_graph.entering(node);
        for (const Index arc : arcs) {
            if (m_steps == 0 || m_token.isCancelled()) return false;
            --m_steps;
            const Index other = way == forwards ? m_graph[arc].to : m_graph[arc].from;
            if (m_isReversed[arc] || m_place[other] < m_first || m_place[other] > m_last) continue;
            if (m_reached[way == forwards ? backwards : forwards][other] == m_round) return false;
            if (m_reached[way][other] == m_round) continue;
            m_reached[way][other] = m_round;
            search.nodes.push_back(other);
        }
        return true;
    }

    // Gives the places of all reached nodes to those that lead to the arc first, then to those after it.
    void moveApart() {
        std::vector<Index> nodes;
        m_places.clear();
        for (const Way way : {backwards, forwards}) {
            auto& reached = m_search[way].nodes;
            std::sort(reached.begin(), reached.end(),
                      [&](Index a, Index b) { return m_place[a] < m_place[b]; });
            nodes.insert(nodes.end(), reached.begin(), reached.end());
        }
        for (const Index node : nodes)
            m_places.push_back(m_place[node]);
        std::sort(m_places.begin(), m_places.end());
        for (Index i = 0; i < nodes.size(); ++i)
            m_place[nodes[i]] = m_places[i];
    }

    const ArcGraph& m_graph;
    std::vector<Index> m_place;
    std::vector<bool> m_isReversed;
    std::array<Search, 2> m_search;
    std::array<std::vector<Index>, 2> m_reached;  // in which round last
    Index m_round = 0;
    Index m_first = 0;  // places outside of which no search goes
    Index m_last = 0;
    std::vector<Index> m_places;
    Index m_steps;
    const CancelToken& m_token;
};

}  // namespace

std::vector<std::size_t> minimalOrder(const ArcGraph& graph, const std::vector<std::size_t>& order,
                                      const CancelToken& token) {
    return GrowingOrder(graph, order, token).run();
}

}  // namespace tessera_host
