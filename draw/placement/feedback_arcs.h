// Which arcs of a directed graph to reverse so that no cycle is left.
#pragma once

#include <vector>

#include "draw/index.h"

namespace tessera_draw::placing {

struct Arc {
    Index from = 0;
    Index to = 0;
};

// By arc: 1 where it is to be reversed. Few of them, not the fewest: an order of the vertices is built from both
// ends (Eades, Lin, Smyth, "A fast and effective heuristic for the feedback arc set problem", 1993); where nothing
// else decides, vertices with smaller numbers come first. Arcs from a vertex to itself are never marked.
//
// REQUIRES: the ends are below `vertexCount`. n log n time, where n counts vertices and arcs.
[[nodiscard]] std::vector<char> feedbackArcs(Index vertexCount, const std::vector<Arc>& arcs);

}  // namespace tessera_draw::placing
