// Moves the labels in the middle of lines along them.
#pragma once

#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

// A label that belongs to the center of its line, and stands in its first or last third, is moved towards the middle: along
// the straight run that it is on, inside its container's padding, up to the first box or line in its way. Changes these
// labels' boxes and the lengths of the segments beside them. n log n time, where n counts boxes and segments: where very many
// stand close together, some labels stay.
void slideLabels(const PlacementInput& input, const Nesting& nesting, const Spacing& spacing,
                 Placement& placement);

}  // namespace tessera_draw::placing
