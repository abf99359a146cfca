// Counts crossings between two neighbouring layers.
#pragma once

#include "draw/placement/port_ranks.h"

namespace tessera_draw::placing {

class CrossingCounter {
  public:
    CrossingCounter(const LayeredGraph& graph, const PortRanks& ranks) : m_graph(graph), m_ranks(ranks) {}

    // Crossings between this layer and the next one. REQUIRES: it is not the container's last layer.
    [[nodiscard]] std::uint64_t after(Index layer);
    [[nodiscard]] std::uint64_t inContainer(Index container);

  private:
    void collectHeads(Index layer);

    const LayeredGraph& m_graph;
    const PortRanks& m_ranks;
    std::vector<Index> m_heads;  // of the edges, ordered by their tails
    std::vector<std::uint64_t> m_ends;
    std::vector<Index> m_tree;
};

}  // namespace tessera_draw::placing
