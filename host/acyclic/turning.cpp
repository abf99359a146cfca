#include "host/acyclic/turning.h"

#include <algorithm>

#include "host/acyclic/feedback_arcs.h"
#include "host/check/components.h"
#include "host/check/group_edges.h"

namespace tessera_host {
namespace {

using Index = std::size_t;

// Those between different nodes of one component, in the order of the links; the others of a component are
// loops.
std::vector<GroupEdge> edgesOnCycles(const GroupEdges& edges, const std::vector<Index>& component,
                                     std::vector<Index>& loops, Watch& watch) {
    std::vector<GroupEdge> onCycles;
    for (Index e = 0; e < edges.size() && !watch.mustStop(); ++e) {
        const GroupEdge& edge = edges[e];
        if (edge.from == edge.to)
            loops.push_back(edge.link);
        else if (component[edge.from] == component[edge.to])
            onCycles.push_back(edge);
    }
    std::sort(loops.begin(), loops.end());
    std::sort(onCycles.begin(), onCycles.end(),
              [](const GroupEdge& a, const GroupEdge& b) { return a.link < b.link; });
    return onCycles;
}

}  // namespace

CyclicLinks findCyclicLinks(const DeclaredGraph& graph, Watch& watch) {
    CyclicLinks cyclic;
    const GroupEdges edges(graph, watch);
    const std::vector<Index> component = componentsOf(graph.nodes.size(), edges, watch);
    if (watch.mustStopNow()) return cyclic;  // not every node has its component
    const std::vector<GroupEdge> onCycles = edgesOnCycles(edges, component, cyclic.loops, watch);
    std::vector<Index> tangleOf(graph.nodes.size(), noIndex);  // by component
    for (const GroupEdge& edge : onCycles) {
        Index& tangle = tangleOf[component[edge.from]];
        if (tangle == noIndex) {
            tangle = cyclic.tangles.size();
            cyclic.tangles.emplace_back().group = graph.nodes[edge.from].parent;
        }
    }
    // Nodes in the document's order: of equals the first comes first.
    std::vector<Index> number(graph.nodes.size());  // in its tangle
    for (Index node = 1; node < graph.nodes.size() && !watch.mustStop(); ++node) {
        if (tangleOf[component[node]] == noIndex) continue;
        auto& nodes = cyclic.tangles[tangleOf[component[node]]].nodes;
        number[node] = nodes.size();
        nodes.push_back(node);
    }
    std::vector<std::vector<Arc>> arcs(cyclic.tangles.size());
    for (const GroupEdge& edge : onCycles) {
        const Index tangle = tangleOf[component[edge.from]];
        cyclic.tangles[tangle].links.push_back(edge.link);
        arcs[tangle].push_back({number[edge.from], number[edge.to]});
    }
    for (Index i = 0; i < arcs.size() && !watch.mustStop(); ++i)
        cyclic.tangles[i].arcs = ArcGraph(cyclic.tangles[i].nodes.size(), std::move(arcs[i]));
    return cyclic;
}

std::vector<std::size_t> linksToTurn(const CyclicLinks& cyclic, Watch& watch) {
    std::vector<const ArcGraph*> graphs;
    graphs.reserve(cyclic.tangles.size());
    for (const Tangle& tangle : cyclic.tangles)
        graphs.push_back(&tangle.arcs);
    const auto arcs = feedbackArcs(graphs, watch);
    std::vector<Index> links;
    for (Index i = 0; i < arcs.size(); ++i)
        for (const Index arc : arcs[i])
            links.push_back(cyclic.tangles[i].links[arc]);
    std::sort(links.begin(), links.end());
    return links;
}

}  // namespace tessera_host
