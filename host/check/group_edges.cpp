#include "host/check/group_edges.h"

#include <utility>

namespace tessera_host {
namespace {

using Index = std::size_t;

// Finds the ancestors of two nodes that stand side by side, in logarithmic time: every node knows its parent
// and one ancestor further away, at distances that grow like the digits of a skew-binary number.
class Nesting {
  public:
    Nesting(const DeclaredGraph& graph, Watch& watch)
        : m_graph(graph), m_depth(graph.nodes.size()), m_jump(graph.nodes.size()) {
        for (Index i = 1; i < graph.nodes.size() && !watch.mustStop(); ++i) {
            const Index parent = graph.nodes[i].parent;
            const Index near = m_jump[parent];
            const Index far = m_jump[near];
            m_depth[i] = m_depth[parent] + 1;
            m_jump[i] = m_depth[parent] - m_depth[near] == m_depth[near] - m_depth[far] ? far : parent;
        }
    }

    std::pair<Index, Index> sideBySide(Index a, Index b) const {
        a = liftTo(a, m_depth[b]);
        b = liftTo(b, m_depth[a]);
        while (parent(a) != parent(b)) {
            const bool far = m_jump[a] != m_jump[b];
            a = far ? m_jump[a] : parent(a);
            b = far ? m_jump[b] : parent(b);
        }
        return {a, b};
    }

  private:
    Index parent(Index node) const { return m_graph.nodes[node].parent; }
    Index liftTo(Index node, std::size_t depth) const {
        while (m_depth[node] > depth)
            node = m_depth[m_jump[node]] >= depth ? m_jump[node] : parent(node);
        return node;
    }

    const DeclaredGraph& m_graph;
    std::vector<std::size_t> m_depth;
    std::vector<Index> m_jump;
};

}  // namespace

GroupEdges::GroupEdges(const DeclaredGraph& graph, Watch& watch) : m_first(graph.nodes.size() + 1) {
    const Nesting nesting(graph, watch);
    std::vector<GroupEdge> inDocumentOrder;
    for (Index i = 0; i < graph.links.size() && !watch.mustStop(); ++i) {
        const auto& link = graph.links[i];
        if (link.from == 0 || link.to == 0) continue;
        const auto [from, to] = nesting.sideBySide(link.from, link.to);
        if (graph.nodes[from].isReplaced || graph.nodes[to].isReplaced) continue;
        inDocumentOrder.push_back({from, to, i});
        ++m_first[from + 1];
    }
    for (Index i = 1; i < m_first.size(); ++i)
        m_first[i] += m_first[i - 1];
    m_edges.resize(inDocumentOrder.size());
    std::vector<Index> next(m_first);
    for (const GroupEdge& edge : inDocumentOrder)
        m_edges[next[edge.from]++] = edge;
}

}  // namespace tessera_host
