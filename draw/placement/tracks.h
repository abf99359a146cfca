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
    Index tracks = 0;  // how many there are

    [[nodiscard]] double upper() const { return from < to ? from : to; }
    [[nodiscard]] double lower() const { return from < to ? to : from; }
};

// Bends that overlap in height, directly or through others: a range of the gap's edges. Ranges are
// at least the distance between lines apart.
struct Bends {
    Index begin = 0;
    Index end = 0;
    double upper = 0;  // y
    double lower = 0;
    double width = 0;  // pixels that they need
};

// Gives each edge that is not straight a curve, if there is space for one, or a track: the
// position of its vertical part. Tracks cross only where the edges' ends require it. Vertical
// parts in one track do not touch.
class GapPlan {
  public:
    GapPlan(std::vector<GapEdge>& edges, LayeredGraph& graph, const Spacing& spacing)
        : m_edges(edges), m_graph(graph), m_spacing(spacing) {}

    // Removes straight edges, sorts the others, and returns how they are together, from top to bottom.
    [[nodiscard]] std::vector<Bends> bends();

    // Places bends that bends() returned, from this x in the container.
    void place(const Bends& bends, double x);

  private:
    using Iterator = std::vector<GapEdge>::iterator;

    [[nodiscard]] double plan(Iterator begin, Iterator end);
    [[nodiscard]] static bool areApart(Iterator begin, Iterator end, double height, double width);
    [[nodiscard]] double assignTracks(Iterator begin, Iterator end);
    [[nodiscard]] double widthFor(Index tracks) const;
    void separateRows(Iterator begin, Iterator end);
    [[nodiscard]] double& trackOf(const GapEdge& edge) { return m_graph.edges[edge.edge].bendBegin; }
    [[nodiscard]] bool giveWay(const GapEdge& gapEdge, bool isTail, double apart);
    [[nodiscard]] bool moveEnd(Index index, bool isTail, double way, double apart);
    [[nodiscard]] bool moveRun(Index vertex, bool isForwards, double way, double apart);

    std::vector<GapEdge>& m_edges;
    LayeredGraph& m_graph;
    const Spacing& m_spacing;
};

}  // namespace tessera_draw::placing
