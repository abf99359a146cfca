// Translates a diagram into the placement's input, and its result back into the drawing's directions.
#pragma once

#include <vector>

#include "draw/scene.h"
#include "draw/scene/box_sizes.h"

namespace tessera_draw {

struct SceneInput {
    PlacementInput input;           // layers run along x, whatever the direction of the drawing
    std::vector<Index> boxOfNode;   // by node; `nothing` if not drawn as a box
    std::vector<Index> pathOfLine;  // by line of the input: its link path
};

// Makes the boxes and lines to place. Link paths of which an end has no box get no line. `kinds` and `sizes` are by node of the diagram. Linear time.
[[nodiscard]] SceneInput makeInput(const Diagram& diagram, const LinkPaths& linkPaths, const BoxKinds& kinds,
                                   const std::vector<BoxSize>& sizes, const LayoutOptions& options);

// Places what makeInput() returned for the same options. The result has the drawing's directions, in pixels from (0, 0).
// Empty when it was cancelled.
[[nodiscard]] Placement placeInput(const SceneInput& input, const LayoutOptions& options);

}  // namespace tessera_draw
