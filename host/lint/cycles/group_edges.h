// The links of a document as the layering of groups sees them.
#pragma once

#include <cstddef>
#include <vector>

#include "host/document/document_structure.h"
#include "support/cancel_token.h"

namespace tessera_host {

// A link decides on the order of two nodes of one group: its ends, or the members of that group that contain
// them. Nodes and links are those of the DocumentStructure, by index.
struct GroupEdge {
    std::size_t from;
    std::size_t to;
    std::size_t link;
};

// All edges by their first node; those of one node in the order of the links. Nodes that lost their id to
// another take no part. n log n time.
class GroupEdges {
  public:
    // Once `token` is cancelled the edges are incomplete, and the caller discards them.
    GroupEdges(const DocumentStructure& structure, const tessera_support::CancelToken& token);

    [[nodiscard]] std::size_t size() const noexcept { return m_edges.size(); }
    [[nodiscard]] const GroupEdge& operator[](std::size_t i) const { return m_edges[i]; }
    // The edges that leave a node are those from begin() to before end().
    [[nodiscard]] std::size_t begin(std::size_t node) const { return m_first[node]; }
    [[nodiscard]] std::size_t end(std::size_t node) const { return m_first[node + 1]; }

  private:
    std::vector<GroupEdge> m_edges;
    std::vector<std::size_t> m_first;
};

}  // namespace tessera_host
