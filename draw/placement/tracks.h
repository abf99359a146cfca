// Routes edges through the gap between two layers.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"

namespace tessera_draw::placing {

// An edge in the gap: it enters from the left at one y and leaves at another.
struct GapEdge {
    Index edge = 0;
    double from = 0;
    double to = 0;
    bool isLoop = false;  // leaves to the left as well
    Index track = 0;
    Index tracks = 0;  // the number of tracks in its cluster

    [[nodiscard]] double upper() const { return from < to ? from : to; }
    [[nodiscard]] double lower() const { return from < to ? to : from; }
};

// Gives each edge that is not straight a curve, if there is space for one, or a track: the
// position of its vertical part. Tracks cross only where the edges' ends require it. Vertical
// parts in one track do not touch.
class GapPlan {
  public:
    GapPlan(std::vector<GapEdge>& edges, LayeredGraph& graph, const Spacing& spacing)
        : m_edges(edges), m_graph(graph), m_spacing(spacing) {}

    // Returns the width in pixels that the bends need, 0 without bends.
    [[nodiscard]] double width();

    // REQUIRES: width() was called for these edges before, and `gapWidth` is at least its result.
    void setTracks(double gapWidth);

  private:
    using Iterator = std::vector<GapEdge>::iterator;

    void planCluster(Iterator begin, Iterator end);
    [[nodiscard]] bool isCurved(Iterator begin, Iterator end) const;
    void assignTracks(Iterator begin, Iterator end);
    [[nodiscard]] double widthFor(Index tracks) const;
    void separateRows();
    [[nodiscard]] bool giveWay(const GapEdge& gapEdge, bool isTail);

    std::vector<GapEdge>& m_edges;
    LayeredGraph& m_graph;
    const Spacing& m_spacing;
    double m_width = 0;
};

}  // namespace tessera_draw::placing
