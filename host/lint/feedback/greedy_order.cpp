#include <algorithm>
#include <limits>

#include "host/lint/feedback/node_order.h"

namespace tessera_host {
namespace {

using Index = std::size_t;

constexpr Index none = std::numeric_limits<Index>::max();

// Nodes by what they are worth at the moment: a list for sinks, one for sources, one for each surplus of
// leaving over entering arcs.
class GreedyOrder {
  public:
    explicit GreedyOrder(const ArcGraph& graph)
        : m_graph(graph),
          m_leaving(graph.nodeCount()),
          m_entering(graph.nodeCount()),
          m_list(graph.nodeCount(), none),
          m_links(graph.nodeCount()) {
        for (Index node = 0; node < graph.nodeCount(); ++node) {
            m_leaving[node] = graph.leaving(node).size();
            m_entering[node] = graph.entering(node).size();
            m_range = std::max({m_range, m_leaving[node], m_entering[node]});
        }
        m_lists.resize(2 * m_range + 1 + firstSurplus);
        for (Index node = 0; node < graph.nodeCount(); ++node)
            enlist(node);
    }

    std::vector<Index> run(const CancelToken& token) {
        const Index count = m_graph.nodeCount();
        std::vector<Index> order(count);
        Index begin = 0;
        Index end = count;
        while (begin < end) {
            if (token.isCancelled()) return {};
            const Index list = bestList();
            const Index node = m_lists[list].first;
            order[list == sinks ? --end : begin++] = node;
            remove(node, token);
        }
        return order;
    }

  private:
    static constexpr Index sinks = 0;
    static constexpr Index sources = 1;
    static constexpr Index firstSurplus = 2;

    struct List {
        Index first = none;
        Index last = none;
    };
    struct Neighbours {
        Index before = none;
        Index after = none;
    };

    [[nodiscard]] Index listOf(Index node) const {
        if (m_leaving[node] == 0) return sinks;
        if (m_entering[node] == 0) return sources;
        return firstSurplus + m_range + m_leaving[node] - m_entering[node];
    }

    [[nodiscard]] Index bestList() {
        if (m_lists[sinks].first != none) return sinks;
        if (m_lists[sources].first != none) return sources;
        while (m_lists[m_highest].first == none)
            --m_highest;
        return m_highest;
    }

    void enlist(Index node) {
        const Index index = listOf(node);
        m_list[node] = index;
        m_highest = std::max(m_highest, index);
        List& list = m_lists[index];
        m_links[node] = {list.last, none};
        (list.last == none ? list.first : m_links[list.last].after) = node;
        list.last = node;
    }

    void delist(Index node) {
        const auto [before, after] = m_links[node];
        List& list = m_lists[m_list[node]];
        (before == none ? list.first : m_links[before].after) = after;
        (after == none ? list.last : m_links[after].before) = before;
        m_list[node] = none;
    }

    void remove(Index node, const CancelToken& token) {
        delist(node);
        for (const Index arc : m_graph.leaving(node))
            if (!token.isCancelled()) lessen(m_entering, m_graph[arc].to);
        for (const Index arc : m_graph.entering(node))
            if (!token.isCancelled()) lessen(m_leaving, m_graph[arc].from);
    }

    void lessen(std::vector<Index>& counts, Index node) {
        if (m_list[node] == none) return;  // removed before
        delist(node);
        --counts[node];
        enlist(node);
    }

    const ArcGraph& m_graph;
    std::vector<Index> m_leaving;  // to and from nodes that are not removed
    std::vector<Index> m_entering;
    std::vector<Index> m_list;  // of each node; none when it is removed
    std::vector<Neighbours> m_links;
    std::vector<List> m_lists;
    Index m_range = 0;
    Index m_highest = firstSurplus;  // no list above holds a node
};

}  // namespace

std::vector<std::size_t> greedyOrder(const ArcGraph& graph, const CancelToken& token) {
    return GreedyOrder(graph).run(token);
}

}  // namespace tessera_host
