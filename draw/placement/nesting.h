// The tree of boxes and their containers.
#pragma once

#include <vector>

#include "draw/placement/placement.h"
#include "support/ancestor_index.h"

namespace tessera_draw::placing {

// The drawing itself counts as a box: its index follows the last box, and it contains the boxes at top level.
// Containers have numbers of their own, outer ones before inner ones; the drawing is container 0.
struct Nesting {
    Index drawing = 0;                           // the index of the drawing, which is the number of boxes
    tessera_support::AncestorIndex<Index> tree;  // of boxes; its root is the drawing
    std::vector<Index> containerOf;              // by box: its number as a container, or `nothing`
    std::vector<Index> boxOf;                    // by container: its box
    std::vector<Index> memberBegin;              // by container: in `members`; one more entry ends the last
    std::vector<Index> members;                  // boxes, in the order of the input within each container

    [[nodiscard]] Index containerCount() const noexcept { return static_cast<Index>(boxOf.size()); }
    // The number of the innermost container around the box. REQUIRES: box != drawing.
    [[nodiscard]] Index containerAround(Index box) const { return containerOf[tree.parent(box)]; }
};

// Accepts any boxes. A box whose group is not an index of the list is at top level, as is one box of each
// cycle of groups. A box is a container if it is marked as one or contains a box. Linear time.
[[nodiscard]] Nesting nestingOf(const std::vector<BoxToPlace>& boxes);

}  // namespace tessera_draw::placing
