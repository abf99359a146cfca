// Unconnected parts of a diagram.
#pragma once

#include <optional>

#include "draw/placement/placement.h"

namespace tessera_draw::placing {

// Where the members of a container form several parts with no line between them, puts each part that has lines into a
// container of its own, without border and title: the new boxes follow the others. These, and containers without lines,
// become parts that are placed beside one another. A
// container that lines cross or end in, or that has boxes at its border, keeps its members. Returns nothing if there
// are no such parts. n log n time.
[[nodiscard]] std::optional<PlacementInput> withParts(const PlacementInput& input);

}  // namespace tessera_draw::placing
