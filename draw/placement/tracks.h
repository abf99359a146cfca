// The ways of edges through the gap between two layers.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"

namespace tessera_draw::placing {

// An edge in the gap: in from the left at one height, out at another.
struct GapEdge {
    Index edge = 0;
    double from = 0;
    double to = 0;
    bool isLoop = false;  // out to the left too
    Index track = 0;
    Index tracks = 0;  // how many there are where it passes

    [[nodiscard]] double upper() const { return from < to ? from : to; }
    [[nodiscard]] double lower() const { return from < to ? to : from; }
};

// Gives each edge that is not straight a curve, where it has room for one, or a track: the place of its
// vertical chain. Tracks cross only where the edges' ends leave no choice, and chains in one track are apart.
class GapPlan {
  public:
    GapPlan(std::vector<GapEdge>& edges, LayeredGraph& graph, const Spacing& spacing)
        : m_edges(edges), m_graph(graph), m_spacing(spacing) {}

    // Returns the width that the bends need, 0 when there is none.
    [[nodiscard]] double width();

    // REQUIRES: width() was asked, and the gap is as wide at least.
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
