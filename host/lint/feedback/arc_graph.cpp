#include "host/lint/feedback/arc_graph.h"

namespace tessera_host {

ArcGraph::ArcGraph(std::size_t nodeCount, std::vector<Arc> arcs)
    : m_arcs(std::move(arcs)),
      m_leaving(sorted(nodeCount, &Arc::from)),
      m_entering(sorted(nodeCount, &Arc::to)) {}

ArcGraph::ArcsByNode ArcGraph::sorted(std::size_t nodeCount, Index Arc::*end) const {
    ArcsByNode out{std::vector<Index>(nodeCount + 1), std::vector<Index>(m_arcs.size())};
    for (const Arc& arc : m_arcs)
        ++out.first[arc.*end + 1];
    for (Index node = 0; node < nodeCount; ++node)
        out.first[node + 1] += out.first[node];
    std::vector<Index> next(out.first);
    for (Index arc = 0; arc < m_arcs.size(); ++arc)
        out.arcs[next[m_arcs[arc].*end]++] = arc;
    return out;
}

}  // namespace tessera_host
