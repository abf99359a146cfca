// One container's vertices as the finding of coordinates needs them: numbered layer by layer, from top to
// bottom in each, so that neighbours in a layer are neighbours in all lists.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"
#include "support/cancel_token.h"

namespace tessera_draw::placing {

// An edge as one of its ends sees it.
struct Adjacency {
    Index other = 0;
    double ownOffset = 0;
    double otherOffset = 0;
    double weight = 1;       // how much is lost when the edge is not straight
    bool isInner = false;    // between two points of a line
    bool isCrossed = false;  // by such an edge, itself not being one
};

struct BlockGraph {
    std::vector<Index> layerBegin;
    std::vector<Index> vertex;  // of the layered graph, or `nothing`
    std::vector<double> height;
    std::vector<double> gapBelow;  // least distance to the next one of the layer
    std::vector<char> isLast;      // of its layer
    std::vector<char> isFirst;
    std::vector<char> isOnLine;
    std::vector<Index> inBegin;  // adjacencies to the layer before, from top to bottom
    std::vector<Adjacency> in;
    std::vector<Index> outBegin;
    std::vector<Adjacency> out;

    [[nodiscard]] Index size() const noexcept { return static_cast<Index>(vertex.size()); }
    [[nodiscard]] Index layers() const noexcept { return static_cast<Index>(layerBegin.size()) - 1; }
    // Least distance from the top of `i` to that of the next one.
    [[nodiscard]] double step(Index i) const { return height[i] + gapBelow[i]; }
};

// Needs the order, the heights and the offsets of the container's vertices and edges. Unless `header` is 0,
// the first layer begins with something of this height that is no vertex, but `nothing`.
void fillBlockGraph(BlockGraph& blockGraph, const LayeredGraph& graph, Index container, double header,
                    const Spacing& spacing);

// Coordinates of all vertices' tops, for which neighbours keep their distance and many edges are straight.
[[nodiscard]] std::vector<double> alignedTops(BlockGraph& blockGraph, const CancelToken& cancel);

// Moves vertices where there is room so that edges become shorter and straight.
void relax(const BlockGraph& blockGraph, std::vector<double>& tops, const CancelToken& cancel);

}  // namespace tessera_draw::placing
