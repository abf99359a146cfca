// Where the ends of edges stand in a layer, as whole numbers: the place of the vertex, counted in ports.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"

namespace tessera_draw::placing {

class PortRanks {
  public:
    PortRanks(const LayeredGraph& graph, const Nesting& nesting);

    // After the layer's order has changed. That of hierarchical ports in its containers is looked up each time.
    void refresh(Index layer);

    [[nodiscard]] Index ofTail(const Edge& edge) const {
        return m_out[edge.tail] + m_graph.portPlace(edge.tailPort);
    }
    [[nodiscard]] Index ofHead(const Edge& edge) const {
        return m_in[edge.head] + m_graph.portPlace(edge.headPort);
    }
    [[nodiscard]] Index headRanks(Index layer) const;  // how many

  private:
    [[nodiscard]] Index portsOf(Index vertex, bool isAtEnd) const;

    const LayeredGraph& m_graph;
    const Nesting& m_nesting;
    std::vector<Index> m_in;
    std::vector<Index> m_out;
};

// The order of edges on one side of a vertex in which they cross each other least: by their other ends,
// between the loops to what stands above and those to what stands below.
struct SideKey {
    std::uint64_t key = 0;
    Index edge = 0;
    bool isTail = false;  // which end of the edge it is

    friend bool operator<(const SideKey& a, const SideKey& b) {
        if (a.key != b.key) return a.key < b.key;
        if (a.edge != b.edge) return a.edge < b.edge;
        return a.isTail < b.isTail;
    }
};
[[nodiscard]] SideKey sideKey(const LayeredGraph& graph, const PortRanks& ranks, Index edge, bool isTail);

}  // namespace tessera_draw::placing
