// Ranks for the vertices of an acyclic graph, so that edges are short.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/index.h"

namespace tessera_draw::placing {

struct RankEdge {
    Index tail = 0;
    Index head = 0;
    std::int32_t minLength = 1;
    std::int32_t weight = 1;
};

// Ranks with rank(head) >= rank(tail) + minLength for each edge. The sum of weight times length is minimal
// (network simplex: Gansner, Koutsofios, North, Vo, "A technique for drawing directed graphs", 1993), or, where
// the work would grow faster than the graph, as small as a bounded number of exchanges makes it. The smallest
// rank of each connected part is 0.
//
// REQUIRES: the edges' ends are below `vertexCount`, no edge is a loop, and the edges form no cycle. The result
// depends on the input only. n log n time, where n counts vertices and edges. No recursion.
[[nodiscard]] std::vector<std::int32_t> shortestRanks(Index vertexCount, const std::vector<RankEdge>& edges);

}  // namespace tessera_draw::placing
