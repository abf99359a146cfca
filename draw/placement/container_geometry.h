// Sizes and places inside each container.
#pragma once

#include <vector>

#include "draw/placement/layered_graph.h"
#include "support/cancel_token.h"

namespace tessera_draw::placing {

struct ContainerGeometry {
    std::vector<Rect> boxes;         // each in its container; behind them the drawing
    std::vector<double> layerX;      // by layer: its left side in the container
    std::vector<double> layerWidth;  // and how wide its widest box is

    [[nodiscard]] double gapBegin(Index layer) const { return layerX[layer] + layerWidth[layer]; }
    [[nodiscard]] double gapEnd(Index layer) const { return layerX[layer + 1]; }
};

// Needs the layers' order. Leaves sizes and places, and of each edge where it touches and how it bends.
[[nodiscard]] ContainerGeometry containerGeometryOf(const std::vector<BoxToPlace>& boxes,
                                                    const Nesting& nesting, LayeredGraph& graph,
                                                    const Spacing& spacing, const CancelToken& cancel);

}  // namespace tessera_draw::placing
