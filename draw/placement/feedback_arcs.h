// Which arcs of a directed graph to reverse so that no cycle is left.
#pragma once

#include <vector>

#include "draw/index.h"

namespace tessera_draw::placing {

struct Arc {
    Index from = 0;
    Index to = 0;
};

// By arc: 1 where it is to be reversed. These are the arcs that lead back to where a depth-first search came from. It
// begins at the vertices that no arc leads to, then at the others, smaller numbers first: people write what comes
// first first, and what they write last of a circle is what leads back. (Measured on diagrams as people draw them,
// fewer lines cross than with a smaller feedback arc set.) Arcs from a vertex to itself are never marked.
//
// REQUIRES: the ends are below `vertexCount`. Linear time. No recursion.
[[nodiscard]] std::vector<char> feedbackArcs(Index vertexCount, const std::vector<Arc>& arcs);

}  // namespace tessera_draw::placing
