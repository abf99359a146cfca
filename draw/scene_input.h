// What of a diagram is to be placed.
#pragma once

#include <vector>

#include "draw/box_sizes.h"
#include "draw/scene.h"

namespace tessera_draw {

struct SceneInput {
    PlacementInput input;
    std::vector<Index> boxOfNode;  // `nothing` for what is not drawn as a box
    std::vector<Index> threadOfLine;
};

[[nodiscard]] SceneInput makeInput(const Diagram& diagram, const Threads& threads, const BoxKinds& kinds,
                                   const std::vector<BoxRoom>& rooms, Direction direction);

// Places what makeInput() answered for the same direction; the answer is in the drawing's own directions.
[[nodiscard]] Placement placeInput(const SceneInput& input, Direction direction);

}  // namespace tessera_draw
