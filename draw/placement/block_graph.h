// The vertices of one container, for assigning their y coordinates: numbered layer by layer, from top to
// bottom in each, so that neighbours in a layer are neighbours in all lists. Lengths are pixels.
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
    double weight = 1;       // the cost of the edge not being straight
    bool isInner = false;    // between two points of a line
    bool isCrossed = false;  // crosses an inner edge, and is not one itself
};

struct BlockGraph {
    std::vector<Index> layerBegin;
    std::vector<Index> vertex;  // of the layered graph, or `nothing`
    std::vector<double> height;
    std::vector<double> gapBelow;  // minimum distance to the next one of the layer
    std::vector<char> isLast;      // of its layer
    std::vector<char> isFirst;
    std::vector<char> isOnLine;
    std::vector<Index> inBegin;  // adjacencies to the layer before, from top to bottom
    std::vector<Adjacency> in;
    std::vector<Index> outBegin;
    std::vector<Adjacency> out;

    [[nodiscard]] Index size() const noexcept { return static_cast<Index>(vertex.size()); }
    [[nodiscard]] Index layers() const noexcept { return static_cast<Index>(layerBegin.size()) - 1; }
    // Minimum distance from the top of `i` to that of the next one.
    [[nodiscard]] double step(Index i) const { return height[i] + gapBelow[i]; }
};

// REQUIRES: order, heights and offsets of the container's vertices and edges are set. Unless `header` is 0,
// the first layer begins with an entry of this height that has no vertex: the container's title.
// Edges after a layer that `isRowEnd` names are left out.
void fillBlockGraph(BlockGraph& blockGraph, const LayeredGraph& graph, Index container, double header,
                    const std::vector<char>& isRowEnd, const Spacing& spacing);

// Returns the y of each vertex's top, so that neighbours keep their distance and many edges are straight.
// Sets isCrossed. All 0 when cancelled.
[[nodiscard]] std::vector<double> alignedTops(BlockGraph& blockGraph, const CancelToken& cancel);

// Returns tops that differ as little as possible from those that graph.kept knows. New vertices come to its middles, or
// as near as their neighbours allow. Nothing is above `contentTop`, where the title begins, too. REQUIRES: graph.kept is not empty. Linear time.
[[nodiscard]] std::vector<double> keptTops(const BlockGraph& blockGraph, const LayeredGraph& graph,
                                           double contentTop);

// By vertex of the block graph: whether graph.kept knows its top. All 0 if it is empty.
[[nodiscard]] std::vector<char> keptVertices(const BlockGraph& blockGraph, const LayeredGraph& graph);

// Moves vertices into free space so that edges become shorter and straight. `isFixed` is by vertex; those do not move.
// Stops between passes when cancelled.
void relax(const BlockGraph& blockGraph, const std::vector<char>& isFixed, std::vector<double>& tops,
           const CancelToken& cancel);

}  // namespace tessera_draw::placing
