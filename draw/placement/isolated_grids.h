// Arranges boxes without lines in a grid instead of one column, which would be very high.
#pragma once

#include <vector>

#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

// Members of one layer that share the place of the first of them, the leader.
struct IsolatedGrid {
    Index begin = 0;  // in `members`
    Index end = 0;
};

struct IsolatedGrids {
    std::vector<IsolatedGrid> grids;
    std::vector<Index> members;           // boxes, in the order of the input
    std::vector<Index> ofBox;             // by box: its grid, or `nothing`
    std::vector<Index> firstInContainer;  // by container: in `grids`; one more entry ends the last

    [[nodiscard]] Index leader(const IsolatedGrid& grid) const { return members[grid.begin]; }
    // Whether the box is a vertex of its layer: as itself, or as the leader of its grid.
    [[nodiscard]] bool isInLayer(Index box) const {
        return ofBox[box] == nothing || leader(grids[ofBox[box]]) == box;
    }
};

// Forms grids of at least 8 boxes. `isTouched` says for each box whether it has a line, `layer` its layer
// among all containers' layers. Boxes at a border are left out. Linear time.
[[nodiscard]] IsolatedGrids isolatedGridsOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                                            const std::vector<char>& isTouched,
                                            const std::vector<Index>& layer, Index layerCount);

// Sets the positions of the grid's boxes in `rects`, which holds their sizes: in columns, starting at (0, 0),
// about as high as wide. Returns the size of the grid.
[[nodiscard]] Size arrange(const IsolatedGrids& grids, const IsolatedGrid& grid,
                           const std::vector<BoxToPlace>& boxes, const Spacing& spacing,
                           std::vector<Rect>& rects);

// The share of its column's free width that is left of the box: 0, 0.5 or 1.
[[nodiscard]] double shareBefore(const BoxToPlace& box) noexcept;

}  // namespace tessera_draw::placing
