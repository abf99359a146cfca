// Sizes and positions inside each container. Lengths are pixels.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"
#include "support/cancel_token.h"

namespace tessera_draw::placing {

// How an edge leads from the end of a row of layers to the begin of the next, in its container's coordinates: to the
// right, down, back through a lane between the rows, down.
struct Fold {
    double right = 0;  // x
    double lane = 0;   // y
    double left = 0;   // x
};

struct ContainerGeometry {
    std::vector<Rect> boxes;         // by box, relative to its container; the last entry is the drawing
    std::vector<double> contentTop;  // by container: where its contents begin, its title included
    std::vector<char> isRowEnd;      // by layer: the next one is in another row
    std::vector<Fold> folds;
};

// REQUIRES: the layers are ordered. Returns positions of boxes and layers. In `graph`, sets heights and tops
// of vertices, and for each edge where it touches its vertices and how it bends. Layers that need more than `foldWidth`
// are arranged in rows. Unfinished when cancelled. May be called again for the same graph, with another width.
[[nodiscard]] ContainerGeometry containerGeometryOf(const std::vector<BoxToPlace>& boxes,
                                                    const Nesting& nesting, LayeredGraph& graph,
                                                    const Spacing& spacing, double foldWidth,
                                                    const CancelToken& cancel);

}  // namespace tessera_draw::placing
