#include "host/lint/cycles/cycle_finder.h"

#include <algorithm>
#include <utility>

#include "host/lint/cycles/components.h"
#include "host/lint/cycles/group_edges.h"
#include "host/lint/feedback/feedback_arcs.h"

namespace tessera_host {
namespace {

using tessera_support::CancelToken;
using Index = std::size_t;

// For each node one without incoming links from which links lead to it, or none. Layering starts at those.
std::vector<Index> originsOf(Index nodeCount, const GroupEdges& edges, const CancelToken& token) {
    std::vector<bool> hasIncoming(nodeCount);
    for (Index e = 0; e < edges.size() && !token.isCancelled(); ++e)
        hasIncoming[edges[e].to] = true;
    std::vector<Index> origin(nodeCount, noIndex);
    std::vector<Index> reached;
    for (Index node = 1; node < nodeCount; ++node) {
        if (hasIncoming[node]) continue;
        origin[node] = node;
        reached.push_back(node);
    }
    // Breadth first from all origins at once: every node and edge is visited once.
    for (Index next = 0; next < reached.size() && !token.isCancelled(); ++next) {
        const Index from = reached[next];
        for (Index e = edges.begin(from); e < edges.end(from); ++e) {
            if (origin[edges[e].to] != noIndex) continue;
            origin[edges[e].to] = origin[from];
            reached.push_back(edges[e].to);
        }
    }
    return origin;
}

class CycleFinder {
  public:
    CycleFinder(const DocumentStructure& structure, const CancelToken& token)
        : m_structure(structure),
          m_token(token),
          m_edges(structure, token),
          m_componentOf(componentsOf(structure.nodes().size(), m_edges, token)) {}

    CyclicLinks find() {
        if (m_token.isCancelled()) return {};  // not every node has its component
        sortEdges();
        if (m_onCycles.empty() && m_loops.empty()) return {};
        m_origins = originsOf(m_structure.nodes().size(), m_edges, m_token);
        for (const GroupEdge& loop : m_loops)
            m_out.loops.push_back({loop.link, loop.from, m_origins[loop.from]});
        addComponents();
        addNodes();
        addArcs();
        return std::move(m_out);
    }

  private:
    // Keeps the edges inside components, in the order of the links.
    void sortEdges() {
        for (Index e = 0; e < m_edges.size() && !m_token.isCancelled(); ++e) {
            const GroupEdge& edge = m_edges[e];
            if (edge.from == edge.to)
                m_loops.push_back(edge);
            else if (m_componentOf[edge.from] == m_componentOf[edge.to])
                m_onCycles.push_back(edge);
        }
        const auto byLink = [](const GroupEdge& a, const GroupEdge& b) { return a.link < b.link; };
        std::sort(m_loops.begin(), m_loops.end(), byLink);
        std::sort(m_onCycles.begin(), m_onCycles.end(), byLink);
    }

    // Only components that have an edge; all other nodes are components by themselves.
    void addComponents() {
        m_place.assign(m_structure.nodes().size(), noIndex);
        for (const GroupEdge& edge : m_onCycles) {
            Index& place = m_place[m_componentOf[edge.from]];
            if (place != noIndex) continue;
            place = m_out.components.size();
            CyclicComponent& component = m_out.components.emplace_back();
            component.group = m_structure.nodes()[edge.from].parent;
            component.origin = m_origins[edge.from];
        }
    }

    // In the order of the document, so that the first node wins among equals.
    void addNodes() {
        m_number.resize(m_structure.nodes().size());
        for (Index node = 1; node < m_number.size() && !m_token.isCancelled(); ++node) {
            if (placeOf(node) == noIndex) continue;
            auto& nodes = m_out.components[placeOf(node)].nodes;
            m_number[node] = nodes.size();
            nodes.push_back(node);
        }
    }

    void addArcs() {
        std::vector<std::vector<Arc>> arcs(m_out.components.size());
        for (const GroupEdge& edge : m_onCycles) {
            const Index place = placeOf(edge.from);
            m_out.components[place].links.push_back(edge.link);
            arcs[place].push_back({m_number[edge.from], m_number[edge.to]});
        }
        for (Index i = 0; i < arcs.size() && !m_token.isCancelled(); ++i)
            m_out.components[i].arcs = ArcGraph(m_out.components[i].nodes.size(), std::move(arcs[i]));
    }

    [[nodiscard]] Index placeOf(Index node) const { return m_place[m_componentOf[node]]; }

    const DocumentStructure& m_structure;
    const CancelToken& m_token;
    const GroupEdges m_edges;
    const std::vector<Index> m_componentOf;
    std::vector<GroupEdge> m_onCycles;
    std::vector<GroupEdge> m_loops;
    std::vector<Index> m_origins;
    std::vector<Index> m_place;   // of each component in the result; noIndex: it has no cycle
    std::vector<Index> m_number;  // of each node in its component
    CyclicLinks m_out;
};

}  // namespace

CyclicLinks findCyclicLinks(const DocumentStructure& structure, const CancelToken& token) {
    return CycleFinder(structure, token).find();
}

std::vector<std::size_t> linksToReverse(const CyclicLinks& cyclic, const CancelToken& token) {
    std::vector<const ArcGraph*> graphs;
    graphs.reserve(cyclic.components.size());
    for (const CyclicComponent& component : cyclic.components)
        graphs.push_back(&component.arcs);
    const auto arcs = feedbackArcs(graphs, token);
    std::vector<Index> links;
    for (Index i = 0; i < arcs.size(); ++i)
        for (const Index arc : arcs[i])
            links.push_back(cyclic.components[i].links[arc]);
    std::sort(links.begin(), links.end());
    return links;
}

}  // namespace tessera_host
