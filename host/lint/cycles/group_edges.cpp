#include "host/lint/cycles/group_edges.h"

#include "support/ancestor_index.h"

#include <utility>

namespace tessera_host {
namespace {

using tessera_support::CancelToken;
using Index = std::size_t;

tessera_support::AncestorIndex<Index> ancestorsIn(const DocumentStructure& structure,
                                                  const CancelToken& token) {
    tessera_support::AncestorIndex<Index> ancestors;
    const auto& nodes = structure.nodes();
    ancestors.reserve(nodes.size());
    for (Index node = 1; node < nodes.size() && !token.isCancelled(); ++node)
        ancestors.append(nodes[node].parent);
    return ancestors;
}

}  // namespace

GroupEdges::GroupEdges(const DocumentStructure& graph, const CancelToken& token)
    : m_first(graph.nodes().size() + 1) {
    const auto ancestors = ancestorsIn(graph, token);
    std::vector<GroupEdge> inDocumentOrder;
    for (Index i = 0; i < graph.links().size() && !token.isCancelled(); ++i) {
        const auto& link = graph.links()[i];
        if (link.from == DocumentStructure::topLevel || link.to == DocumentStructure::topLevel) continue;
        const auto [from, to] = ancestors.liftedToCommonGroup(link.from, link.to);
        const auto isReplaced = [&](Index node) {
            return graph.nodes()[node].replacedBy != DocumentStructure::none;
        };
        if (isReplaced(from) || isReplaced(to)) continue;
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
