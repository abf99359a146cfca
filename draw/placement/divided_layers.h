// Divides layers that make a drawing too high.
#pragma once

#include <optional>

#include "draw/placement/placement.h"

namespace tessera_draw::placing {

// `placed` are the boxes of place(input). Where the boxes with lines in one layer of a container need more than `most`
// pixels of height together, they are dealt out in turn to as many layers as that needs, in the order in which they stand: lines
// to the later ones pass between the earlier ones. Labels in the layer before or after follow their boxes. Changes levels only.
// Returns nothing if no layer is so high. n log n time.
[[nodiscard]] std::optional<PlacementInput> withDividedLayers(const PlacementInput& input,
                                                              const std::vector<Rect>& placed, double most,
                                                              const Spacing& spacing);

}  // namespace tessera_draw::placing
