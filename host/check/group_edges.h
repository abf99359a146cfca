// The links of a document as the layering of groups sees them.
#pragma once

#include <cstddef>
#include <vector>

#include "host/check/graph_sections.h"
#include "host/check/watch.h"

namespace tessera_host {

// A link tells the order of two nodes that stand side by side in one group: those that hold its ends, or are
// its ends. Nodes that lost their id to another take no part.
struct GroupEdge {
    std::size_t from;  // as in the graph
    std::size_t to;
    std::size_t link;
};

// All of them by their first node; those of one node in the order of the links. Takes n log n time.
class GroupEdges {
  public:
    GroupEdges(const DeclaredGraph& graph, Watch& watch);

    [[nodiscard]] std::size_t size() const noexcept { return m_edges.size(); }
    [[nodiscard]] const GroupEdge& operator[](std::size_t i) const { return m_edges[i]; }
    // Where the edges that leave a node begin and end.
    [[nodiscard]] std::size_t begin(std::size_t node) const { return m_first[node]; }
    [[nodiscard]] std::size_t end(std::size_t node) const { return m_first[node + 1]; }

  private:
    std::vector<GroupEdge> m_edges;
    std::vector<std::size_t> m_first;
};

}  // namespace tessera_host
