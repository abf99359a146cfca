// The layers of a placement, so that a later one of a diagram that has changed a little can keep them.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/index.h"

namespace tessera_draw {

// A box in a layer, or a point where a line passes the layer or the border of the container.
struct LayerPoint {
    Index box = nothing;     // of the input; `nothing`: it is a point of `line`
    Index line = nothing;    // of the input
    std::uint32_t part = 0;  // which of the points that the line has in this layer
    double top = 0;          // across the layers, in the container
    double size = 0;         // from there on
};

struct KeptLayer {
    std::vector<LayerPoint> points;  // from top to bottom
    bool isRowEnd = false;           // the next layer begins a further row
};

// The first and the last layer are the borders.
struct ContainerLayers {
    Index box = nothing;  // `nothing`: the drawing
    double top = 0;       // where its contents begin, its title included
    std::vector<KeptLayer> layers;
};

using KeptLayers = std::vector<ContainerLayers>;

}  // namespace tessera_draw
