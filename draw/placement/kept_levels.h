// Levels that keep each box in the layer that it had.
#pragma once

#include "draw/placement/placement.h"

namespace tessera_draw {

// Sets the levels of all boxes in containers of which `kept` knows a member: those that it knows stay in their layers;
// new ones come one layer after what leads to them, or before what they lead to, and a new label between two neighbours
// gets a layer of its own. Borders of groups still win over levels. Does nothing if input.kept is empty. n log n time.
void keepLevels(PlacementInput& input);

}  // namespace tessera_draw
