#include "host/check/cycles.h"

#include <algorithm>
#include <limits>

namespace tessera_host {
namespace {

using Index = std::size_t;
constexpr Index none = std::numeric_limits<Index>::max();

// Finds the ancestors of two nodes that stand side by side, in logarithmic time: every node knows its parent
// and one ancestor further away, at distances that grow like the digits of a skew-binary number.
class Nesting {
  public:
    explicit Nesting(const DeclaredGraph& graph)
        : m_graph(graph), m_depth(graph.nodes.size()), m_jump(graph.nodes.size()) {
        for (Index i = 1; i < graph.nodes.size(); ++i) {
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

struct Edge {
    Index from;
    Index to;
    Index link;
};

// Outgoing edges by node, in the order of the links.
class Edges {
  public:
    explicit Edges(const DeclaredGraph& graph) : m_first(graph.nodes.size() + 1) {
        const Nesting nesting(graph);
        for (Index i = 0; i < graph.links.size(); ++i) {
            const auto& link = graph.links[i];
            if (link.from == 0 || link.to == 0) continue;
            const auto [from, to] = nesting.sideBySide(link.from, link.to);
            m_edges.push_back({from, to, i});
        }
        std::stable_sort(m_edges.begin(), m_edges.end(),
                         [](const Edge& a, const Edge& b) { return a.from < b.from; });
        for (const Edge& edge : m_edges)
            ++m_first[edge.from + 1];
        for (Index i = 1; i < m_first.size(); ++i)
            m_first[i] += m_first[i - 1];
    }

    const std::vector<Edge>& all() const { return m_edges; }
    Index begin(Index node) const { return m_first[node]; }
    Index end(Index node) const { return m_first[node + 1]; }
    const Edge& operator[](Index i) const { return m_edges[i]; }

  private:
    std::vector<Edge> m_edges;
    std::vector<Index> m_first;
};

// Numbers the strongly connected components (Tarjan, with a stack of its own).
std::vector<Index> componentsOf(std::size_t nodeCount, const Edges& edges) {
    struct Open {
        Index node;
        Index edge;
    };
    std::vector<Index> component(nodeCount, none), order(nodeCount, none), low(nodeCount);
    std::vector<Index> waiting;
    std::vector<Open> open;
    Index nextOrder = 0;
    Index nextComponent = 0;
    const auto enter = [&](Index node) {
        order[node] = low[node] = nextOrder++;
        waiting.push_back(node);
        open.push_back({node, edges.begin(node)});
    };
    for (Index root = 0; root < nodeCount; ++root) {
        if (order[root] != none) continue;
        enter(root);
        while (!open.empty()) {
            const Index node = open.back().node;
            if (open.back().edge < edges.end(node)) {
                const Index to = edges[open.back().edge++].to;
                if (order[to] == none)
                    enter(to);
                else if (component[to] == none)
                    low[node] = std::min(low[node], order[to]);
                continue;
            }
            open.pop_back();
            if (!open.empty()) low[open.back().node] = std::min(low[open.back().node], low[node]);
            if (low[node] != order[node]) continue;
            for (Index member = none; member != node; waiting.pop_back())
                component[member = waiting.back()] = nextComponent;
            ++nextComponent;
        }
    }
    return component;
}

// The nodes of a shortest way from `start` to `goal` inside their component, both included.
std::vector<Index> wayBetween(Index start, Index goal, const Edges& edges,
                              const std::vector<Index>& component, std::vector<Index>& cameFrom) {
    std::vector<Index> reached{start};
    cameFrom[start] = start;
    for (Index next = 0; next < reached.size() && cameFrom[goal] == none; ++next)
        for (Index e = edges.begin(reached[next]); e < edges.end(reached[next]); ++e) {
            const Index to = edges[e].to;
            if (component[to] != component[start] || cameFrom[to] != none) continue;
            cameFrom[to] = reached[next];
            reached.push_back(to);
        }
    std::vector<Index> way{goal};
    while (way.back() != start)
        way.push_back(cameFrom[way.back()]);
    std::reverse(way.begin(), way.end());
    return way;
}

std::string describe(const DeclaredGraph& graph, const Edge& closing, const std::vector<Index>& way) {
    constexpr std::size_t maxNamed = 8;
    const Index group = graph.nodes[closing.from].parent;
    std::string text = group == 0 ? "cycle at the top level: "
                                  : "cycle inside group \"" + std::string(graph.nodes[group].id) + "\": ";
    text.append(graph.nodes[closing.from].id);
    for (std::size_t i = 0; i < way.size(); ++i) {
        if (way.size() > maxNamed && i == maxNamed - 1) {
            text += " -> (" + std::to_string(way.size() - maxNamed) + " more)";
            i = way.size() - 1;
        }
        text.append(" -> ").append(graph.nodes[way[i]].id);
    }
    return text + "; it drives its nodes down to the deepest layer";
}

}  // namespace

void checkCycles(const DeclaredGraph& graph, Findings& findings) {
    const Edges edges(graph);
    const std::vector<Index> component = componentsOf(graph.nodes.size(), edges);
    std::vector<Index> closing(graph.nodes.size(), none);  // by component: its first link's edge
    for (Index e = 0; e < edges.all().size(); ++e) {
        const Edge& edge = edges[e];
        if (component[edge.from] != component[edge.to]) continue;
        Index& best = closing[component[edge.from]];
        if (best == none || edge.link < edges[best].link) best = e;
    }
    std::vector<Index> cameFrom(graph.nodes.size(), none);
    for (const Index e : closing) {
        if (e == none) continue;
        const Edge& edge = edges[e];
        const auto way = wayBetween(edge.to, edge.from, edges, component, cameFrom);
        findings.error(graph.links[edge.link].position, describe(graph, edge, way));
    }
}

}  // namespace tessera_host
