// The positions on the sides of boxes where edges begin and end, and the end labels beside them.
#pragma once

#include <vector>

#include "draw/placement/port_ranks.h"

namespace tessera_draw::placing {

class Offsets {
  public:
    Offsets(const std::vector<BoxToPlace>& boxes, LayeredGraph& graph, const Nesting& nesting,
            const Spacing& spacing);

    // Sets the offsets of the edges of the container's members. A box grows so that its ends are apart, and
    // its edges straight up to their end labels; the height of its vertex covers the labels as well. REQUIRES: the layers are ordered, and the
    // heights of boxes and the geometry of inner containers are set.
    void set(Index container, std::vector<Rect>& rects);

    // The width that end labels take beside a box, with the gap between; 0 without labels.
    [[nodiscard]] double widthBefore(Index box) const { return m_beside[box].before; }
    [[nodiscard]] double widthAfter(Index box) const { return m_beside[box].after; }

    // Moves ends by up to 14 pixels where that makes their edges straight.
    // REQUIRES: the members' tops are set.
    void straighten(Index container);

    // Calls visit(edge, isTail) for each end at this vertex of an edge that is not plain.
    template <typename Visit>
    void forOthers(Index vertex, Visit visit) const {
        if (vertex + 1 >= m_otherBegin.size()) return;
        for (Index i = m_otherBegin[vertex]; i < m_otherBegin[vertex + 1]; ++i)
            visit(m_others[i].edge, m_others[i].isTail);
    }

  private:
    struct EdgeEnd {
        Index edge;
        bool isTail;
    };

    struct Beside {
        double before = 0;
        double after = 0;
    };
    // The ends at one side of a box, from top to bottom.
    struct Side {
        std::vector<SideKey> ends;
        double height = 0;      // of all of them, with their labels; 0 without labels
        double labelWidth = 0;  // of the widest
        double leastBox = 0;  // the height at which the ends are apart, and edges straight up to their labels
    };

    void collect(Side& side, Index box, bool isAtEnd);
    void measure(Side& side, Index box) const;
    void makeRoom(Index box, Rect& rect);
    void spread(const Side& side, Index box);
    void spreadLabels(const Side& side, Index box);
    void slide(const Side& side, Index box);
    [[nodiscard]] double ownHeight(Index box) const { return m_graph.height[box] - 2 * m_graph.inset[box]; }
    [[nodiscard]] Index labelOf(const SideKey& side) const {
        const Edge& edge = m_graph.edges[side.edge];
        return side.isTail ? edge.tailLabel : edge.headLabel;
    }
    [[nodiscard]] double heightOf(const SideKey& side) const {
        return labelOf(side) == nothing ? 0 : m_boxes[labelOf(side)].size.height;
    }
    [[nodiscard]] double between(const SideKey& upper, const SideKey& lower) const;
    [[nodiscard]] double straightOffset(const SideKey& side, Index box) const;
    [[nodiscard]] double& offsetOf(const SideKey& side) {
        return side.isTail ? m_graph.edges[side.edge].tailOffset : m_graph.edges[side.edge].headOffset;
    }

    const std::vector<BoxToPlace>& m_boxes;
    LayeredGraph& m_graph;
    const Nesting& m_nesting;
    const Spacing& m_spacing;
    PortRanks m_ranks;
    std::vector<Index> m_otherBegin;
    std::vector<EdgeEnd> m_others;
    std::vector<Beside> m_beside;  // by box
    Side m_before;
    Side m_after;
};

}  // namespace tessera_draw::placing
