// Boxes that no line touches stand side by side instead of one below the other.
#pragma once

#include <vector>

#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

// Members of one layer that stand in the place of the first of them.
struct IsolatedGrid {
    Index begin = 0;  // in `members`
    Index end = 0;
};

struct IsolatedGrids {
    std::vector<IsolatedGrid> grids;
    std::vector<Index> members;           // boxes, in the order of the input
    std::vector<Index> ofBox;             // by box: its isolated grid, or nothing
    std::vector<Index> firstInContainer;  // isolated grids by container, and their number behind the last one

    [[nodiscard]] Index leader(const IsolatedGrid& grid) const { return members[grid.begin]; }
    // Whether the box stands for itself in its layer, or for its isolated grid.
    [[nodiscard]] bool isInLayer(Index box) const {
        return ofBox[box] == nothing || leader(grids[ofBox[box]]) == box;
    }
};

// `isTouched` tells of each box whether a line meets it, `layer` in which layer of all it stands.
[[nodiscard]] IsolatedGrids isolatedGridsOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                                            const std::vector<char>& isTouched,
                                            const std::vector<Index>& layer, Index layerCount);

// Gives the isolated grid's boxes, whose sizes stand in `rects`, their places in columns, from (0, 0) on; about as
// high as wide. Returns how large it is.
[[nodiscard]] Size arrange(const IsolatedGrids& grids, const IsolatedGrid& grid,
                           const std::vector<BoxToPlace>& boxes, const Spacing& spacing,
                           std::vector<Rect>& rects);

// How much of the free room across its column stands before the box.
[[nodiscard]] double shareBefore(const BoxToPlace& box) noexcept;

}  // namespace tessera_draw::placing
