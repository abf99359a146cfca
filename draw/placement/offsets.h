// The positions on the sides of boxes where edges begin and end.
#pragma once

#include <vector>

#include "draw/placement/port_ranks.h"

namespace tessera_draw::placing {

class Offsets {
  public:
    Offsets(LayeredGraph& graph, const Nesting& nesting, const Spacing& spacing);

    // Sets the offsets of the edges of the container's members. REQUIRES: the layers are ordered, and the
    // heights of boxes and the geometry of inner containers are set.
    void set(Index container);

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

    void collectSide(Index box, bool isAtEnd);
    void spread(Index box);
    void slide(Index box);
    [[nodiscard]] double straightOffset(const SideKey& side, Index box) const;
    [[nodiscard]] double& offsetOf(const SideKey& side) {
        return side.isTail ? m_graph.edges[side.edge].tailOffset : m_graph.edges[side.edge].headOffset;
    }

    LayeredGraph& m_graph;
    const Nesting& m_nesting;
    const Spacing& m_spacing;
    PortRanks m_ranks;
    std::vector<Index> m_otherBegin;
    std::vector<EdgeEnd> m_others;
    std::vector<SideKey> m_side;
};

}  // namespace tessera_draw::placing
