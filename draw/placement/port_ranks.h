// Ranks of the ends of edges within their layer: integers that count ports from the top of the layer.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"

namespace tessera_draw::placing {

class PortRanks {
  public:
    PortRanks(const LayeredGraph& graph, const Nesting& nesting);

    // Call this after the layer's order has changed. The order of ports inside
    // its containers is read each time.
    void refresh(Index layer);

    [[nodiscard]] Index ofTail(const EdgeEnd& tail) const {
        return m_out[tail.vertex] + m_graph.portPlace(tail.port);
    }
    [[nodiscard]] Index ofHead(const EdgeEnd& head) const {
        return m_in[head.vertex] + m_graph.portPlace(head.port);
    }
    [[nodiscard]] Index headRanks(Index layer) const;  // the number of ranks

  private:
    [[nodiscard]] Index portsOf(Index vertex, bool isAtEnd) const;

    const LayeredGraph& m_graph;
    const Nesting& m_nesting;
    std::vector<Index> m_in;
    std::vector<Index> m_out;
};

// Sorts edges on one side of a vertex so that they cross each other least: loops upwards first, then plain
// edges by their other ends, then loops downwards.
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
