// The tree that the boxes stand in.
#pragma once

#include <vector>

#include "draw/placement/placement.h"
#include "support/ancestor_index.h"

namespace tessera_draw::placing {

// The drawing itself is a box too: it has the number behind the last one and holds what stands at top level.
// Containers are numbered on their own, outer ones before those inside; the drawing is number 0.
struct Nesting {
    Index drawing = 0;
    tessera_support::AncestorIndex<Index> tree;  // of boxes; its root is the drawing
    std::vector<Index> containerOf;              // each box's own number as a container, or nothing
    std::vector<Index> boxOf;                    // of each container
    std::vector<Index> memberBegin;              // by container, in `members`
    std::vector<Index> members;                  // boxes, in the order of the input

    [[nodiscard]] Index containerCount() const noexcept { return static_cast<Index>(boxOf.size()); }
    [[nodiscard]] Index containerAround(Index box) const { return containerOf[tree.parent(box)]; }
};

// A box whose group is no box stands at top level; so does one box of each circle of groups.
[[nodiscard]] Nesting nestingOf(const std::vector<BoxToPlace>& boxes);

}  // namespace tessera_draw::placing
