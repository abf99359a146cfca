// Sifting: moves single vertices of a layer to the position with the fewest crossings.
#pragma once

#include <vector>

#include "draw/placement/port_ranks.h"

namespace tessera_draw::placing {

class Sifting {
  public:
    Sifting(LayeredGraph& graph, const PortRanks& ranks) : m_graph(graph), m_ranks(ranks) {}

    // Tries for each vertex of the layer all positions at most `reach` away; both neighbouring layers stay as
    // they are. Returns the number of crossings removed. Unless that is 0, the caller must update `place`.
    std::uint64_t sift(Index layer, Index reach);

    // The number of comparisons so far, for limiting the work.
    [[nodiscard]] std::uint64_t work() const noexcept { return m_work; }

  private:
    // Ranks of a vertex's neighbours, ascending: in the layer before from begin
    // to middle, in the next to end.
    struct Sifted {
        Index begin = 0;
        Index middle = 0;
        Index end = 0;
        Index vertex = 0;
    };

    void collect(Index layer);
    void appendRanks(Index vertex);
    [[nodiscard]] std::int64_t lossOfPassing(const Sifted& vertex, const Sifted& other) const;
    [[nodiscard]] static Index workOf(const Sifted& vertex, const Sifted& other);
    [[nodiscard]] std::int64_t balance(Index a, Index endA, Index b, Index endB) const;
    [[nodiscard]] std::int64_t balanceOfMany(Index a, Index endA, Index b, Index endB) const;
    [[nodiscard]] std::uint64_t moveBest(Index place, Index reach);

    LayeredGraph& m_graph;
    const PortRanks& m_ranks;
    std::vector<Index> m_neighbours;
    std::vector<Sifted> m_layer;
    std::vector<Index> m_order;  // of m_layer
    std::uint64_t m_work = 0;
};

}  // namespace tessera_draw::placing
