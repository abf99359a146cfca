#include "draw/read/link_paths.h"

#include <cstddef>
#include <optional>
#include <utility>

#include "draw/read/chains.h"
#include "draw/read/node_ids.h"
#include "draw/read/splits.h"

namespace tessera_draw {
namespace {

class LinkPathFinder {
  public:
    explicit LinkPathFinder(const Diagram& diagram)
        : m_diagram(diagram),
          m_splits(readSplits(diagram)),
          m_chains(findChains(diagram, m_splits)),
          m_isInserted(insertedNodes(diagram, m_splits)),
          m_isUsed(diagram.nodes.size()) {}

    LinkPaths run() {
        for (Index i = 0; i < m_diagram.links.size(); ++i)
            if (!m_chains.isOnChain[i]) addPath(i);
        findOrphanLabels();
        return std::move(m_linkPaths);
    }

  private:
    static std::vector<bool> insertedNodes(const Diagram& diagram, const Splits& splits) {
        std::vector<bool> inserted(diagram.nodes.size());
        for (const Split& split : splits.all)
            inserted[split.node] = true;
        return inserted;
    }

    // A node of the document may have the same id as an inserted one. Links end in the document's.
    [[nodiscard]] Index documentNode(Index end) {
        if (end == nothing || !m_isInserted[end]) return end;
        if (!m_documentIds)
            m_documentIds.emplace(m_diagram.nodes, [this](Index i) { return !m_isInserted[i]; });
        const Index node = m_documentIds->find(m_diagram.nodes[end].id);
        return node == nothing ? end : node;
    }

    void addPath(Index first) {
        const Link& link = m_diagram.links[first];
        LinkPath path;
        path.id = link.id;
        path.name = link.name;
        path.from = documentNode(link.from);
        path.link = first;
        if (first < m_splits.documentLinks) {
            addStops(path);
        } else {
            path.from = link.from;
            path.firstStop = static_cast<std::uint32_t>(m_linkPaths.stops.size());
            path.direction = link.direction;
            path.to = link.to;
        }
        for (const Index end : {path.from, path.to})
            if (end != nothing) m_isUsed[end] = true;
        m_linkPaths.paths.push_back(path);
    }

    // Follows the chain that begins with the link path's link.
    void addStops(LinkPath& path) {
        std::vector<PathStop>& stops = m_linkPaths.stops;
        path.firstStop = static_cast<std::uint32_t>(stops.size());
        Index last = path.link;
        for (std::uint32_t i = 0; i < m_chains.length[path.link]; ++i) {
            const Index at = m_chains.end[last];
            stops.push_back({at, m_diagram.nodes[at].group, m_diagram.nodes[at].level});
            m_isUsed[at] = true;
            last = m_chains.half[at];
        }
        path.stopCount = static_cast<std::uint32_t>(stops.size()) - path.firstStop;
        path.to = documentNode(m_chains.end[last]);
        path.direction = directionOf(path.link, last);
        exchangeLabels(path);
    }

    // A split leaves each arrow head with the part at that end.
    [[nodiscard]] std::string_view directionOf(Index first, Index last) const {
        const std::string_view atFirst = m_diagram.links[first].direction;
        if (first == last || m_diagram.links[last].direction != "forward") return atFirst;
        return atFirst == "back" ? "both" : "forward";
    }

    // A "from" label may have been exchanged with the first stop, a "to" label with the last one. If so, the
    // link to the later one of the two now leads to the other.
    void exchangeLabels(const LinkPath& path) {
        const std::size_t begin = path.firstStop;
        const std::size_t end = m_linkPaths.stops.size();
        for (std::size_t i = begin; i < end; ++i) {
            const Node& node = m_diagram.nodes[m_linkPaths.stops[i].node];
            if (i > begin && isLabel(node, "from")) {
                if (leadsTo(i - 1, begin)) exchange(begin, i);
            } else if (i + 1 < end && isLabel(node, "to")) {
                if (leadsTo(end - 2, i)) exchange(i, end - 1);
                break;
            }
        }
    }

    // Whether the link from one stop leads to the node of the other.
    [[nodiscard]] bool leadsTo(std::size_t stop, std::size_t other) const {
        const Index target = m_diagram.links[m_chains.half[m_linkPaths.stops[stop].node]].to;
        return target != nothing &&
               m_diagram.nodes[target].id == m_diagram.nodes[m_linkPaths.stops[other].node].id;
    }

    // The layout has exchanged the groups of the two nodes, but not their levels.
    void exchange(std::size_t a, std::size_t b) {
        std::swap(m_linkPaths.stops[a], m_linkPaths.stops[b]);
        std::swap(m_linkPaths.stops[a].level, m_linkPaths.stops[b].level);
    }

    void findOrphanLabels() {
        for (std::size_t i = 0; i < m_diagram.nodes.size(); ++i)
            if (!m_isUsed[i] && isLabel(m_diagram.nodes[i]))
                m_linkPaths.orphanLabels.push_back(static_cast<Index>(i));
    }

    const Diagram& m_diagram;
    const Splits m_splits;
    const Chains m_chains;
    const std::vector<bool> m_isInserted;  // by node: inserted into a link
    std::optional<NodeIds> m_documentIds;  // of the document's nodes; created on demand
    std::vector<bool> m_isUsed;            // by node: a link path passes it or ends in it
    LinkPaths m_linkPaths;
};

}  // namespace

LinkPaths findLinkPaths(const Diagram& diagram) {
    return LinkPathFinder(diagram).run();
}

std::vector<Index> pathsOfStops(const LinkPaths& linkPaths, std::size_t nodeCount) {
    std::vector<Index> pathOf(nodeCount, nothing);
    for (std::size_t at = 0; at < linkPaths.paths.size(); ++at) {
        const LinkPath& path = linkPaths.paths[at];
        for (std::uint32_t i = 0; i < path.stopCount; ++i)
            pathOf[linkPaths.stops[path.firstStop + i].node] = static_cast<Index>(at);
    }
    return pathOf;
}

}  // namespace tessera_draw
