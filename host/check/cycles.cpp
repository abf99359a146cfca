#include "host/check/cycles.h"

#include <algorithm>
#include <string>
#include <vector>

#include "host/check/components.h"
#include "host/check/group_edges.h"
#include "host/document/text.h"

namespace tessera_host {
namespace {

using Index = std::size_t;

// Nodes that links connect in circles.
struct Tangle {
    Index firstEdge = noIndex;  // the one whose link comes first; none: there is no circle
    Index nodes = 0;
    Index links = 0;
};

std::vector<Tangle> tanglesOf(const std::vector<Index>& component, const GroupEdges& edges, Watch& watch) {
    std::vector<Tangle> tangles(component.size());
    for (const Index each : component)
        ++tangles[each].nodes;
    for (Index e = 0; e < edges.size() && !watch.mustStop(); ++e) {
        if (component[edges[e].from] != component[edges[e].to]) continue;
        Tangle& tangle = tangles[component[edges[e].from]];
        ++tangle.links;
        if (tangle.firstEdge == noIndex || edges[e].link < edges[tangle.firstEdge].link) tangle.firstEdge = e;
    }
    return tangles;
}

// For each node one without incoming links from which links lead to it, or none. Layering begins at those.
std::vector<Index> originsOf(std::size_t nodeCount, const GroupEdges& edges, Watch& watch) {
    std::vector<bool> hasIncoming(nodeCount);
    for (Index e = 0; e < edges.size() && !watch.mustStop(); ++e)
        hasIncoming[edges[e].to] = true;
    std::vector<Index> origin(nodeCount, noIndex);
    std::vector<Index> reached;
    for (Index node = 1; node < nodeCount; ++node) {
        if (hasIncoming[node]) continue;
        origin[node] = node;
        reached.push_back(node);
    }
    for (Index next = 0; next < reached.size(); ++next) {
        const Index from = reached[next];
        for (Index e = edges.begin(from); e < edges.end(from); ++e) {
            if (watch.mustStop()) return origin;
            if (origin[edges[e].to] != noIndex) continue;
            origin[edges[e].to] = origin[from];
            reached.push_back(edges[e].to);
        }
    }
    return origin;
}

// The nodes of a shortest way from `start` to `goal` inside their component, both included. `cameFrom` is for
// all components together.
std::vector<Index> wayBetween(Index start, Index goal, const GroupEdges& edges,
                              const std::vector<Index>& component, std::vector<Index>& cameFrom,
                              Watch& watch) {
    std::vector<Index> reached{start};
    cameFrom[start] = start;
    for (Index next = 0; next < reached.size() && cameFrom[goal] == noIndex; ++next)
        for (Index e = edges.begin(reached[next]); e < edges.end(reached[next]); ++e) {
            if (watch.mustStop()) return {};
            const Index to = edges[e].to;
            if (component[to] != component[start] || cameFrom[to] != noIndex) continue;
            cameFrom[to] = reached[next];
            reached.push_back(to);
        }
    std::vector<Index> way{goal};
    while (way.back() != start)
        way.push_back(cameFrom[way.back()]);
    std::reverse(way.begin(), way.end());
    return way;
}

// An id between arrows, without quotation marks where it can be told from them.
std::string step(std::string_view id) {
    const std::string text = oneLine(id);
    return text.empty() || text.find_first_of(" \"") != std::string::npos ? quoted(id) : text;
}

std::string describeWay(const DeclaredGraph& graph, const GroupEdge& closing, const std::vector<Index>& way) {
    constexpr std::size_t maxNamed = 8;
    const Index group = graph.nodes[closing.from].parent;
    std::string text = group == 0 ? "cycle at the top level: "
                                  : "cycle inside group " + quoted(graph.nodes[group].id) + ": ";
    text += step(graph.nodes[closing.from].id);
    for (std::size_t i = 0; i < way.size(); ++i) {
        if (way.size() > maxNamed && i == maxNamed - 1) {
            text += " -> (" + std::to_string(way.size() - maxNamed) + " more)";
            i = way.size() - 1;
        }
        text += " -> " + step(graph.nodes[way[i]].id);
    }
    return text;
}

std::string counted(Index count, const char* what) {
    return std::to_string(count) + " more " + what + (count == 1 ? "" : "s");
}

std::string describeRest(Index nodes, Index links) {
    if (links == 0) return {};  // further nodes would have links
    return "; cycles connected with it hold " + (nodes == 0 ? "" : counted(nodes, "node") + " and ") +
           counted(links, "link");
}

std::string describeEffect(const DeclaredGraph& graph, Index origin) {
    if (origin == noIndex) return "; no node without incoming links leads to it, so its nodes get no layer";
    return "; " + quoted(graph.nodes[origin].id) +
           ", which has no incoming links, leads to it, so the layering breaks off here";
}

}  // namespace

void checkCycles(const DeclaredGraph& graph, Findings& findings, Watch& watch) {
    const std::size_t count = graph.nodes.size();
    const GroupEdges edges(graph, watch);
    const std::vector<Index> component = componentsOf(count, edges, watch);
    if (watch.mustStopNow()) return;  // not every node has its component
    const std::vector<Tangle> tangles = tanglesOf(component, edges, watch);
    const std::vector<Index> origins = originsOf(count, edges, watch);
    std::vector<Index> cameFrom(count, noIndex);
    for (const Tangle& tangle : tangles) {
        if (watch.mustStop()) return;
        if (tangle.firstEdge == noIndex) continue;
        const GroupEdge& edge = edges[tangle.firstEdge];
        const auto way = wayBetween(edge.to, edge.from, edges, component, cameFrom, watch);
        if (way.empty()) return;
        findings.error(graph.links[edge.link].position,
                       describeWay(graph, edge, way) +
                           describeRest(tangle.nodes - way.size(), tangle.links - way.size()) +
                           describeEffect(graph, origins[edge.from]));
    }
}

}  // namespace tessera_host
