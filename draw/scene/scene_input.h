// What of a diagram is to be placed.
#pragma once

#include <vector>

#include "draw/scene.h"
#include "draw/scene/box_sizes.h"

namespace tessera_draw {

struct SceneInput {
    PlacementInput input;
    std::vector<Index> boxOfNode;  // `nothing` for what is not drawn as a box
    std::vector<Index> pathOfLine;
};

[[nodiscard]] SceneInput makeInput(const Diagram& diagram, const LinkPaths& linkPaths, const BoxKinds& kinds,
                                   const std::vector<BoxSize>& sizes, Direction direction);

// Places what makeInput() answered for the same direction; the answer is in the drawing's own directions.
[[nodiscard]] Placement placeInput(const SceneInput& input, Direction direction, const CancelToken& cancel);

}  // namespace tessera_draw
