// Moves labels for an end of a link to that end.
#pragma once

#include "draw/read/link_paths.h"

namespace tessera_draw {

// The layout exchanges a label for an end with the dummy next to that end, but not in all cases. This
// completes it: a "from" label gets the first stop of its path, a "to" label the last one, unless a label is
// there already. Groups and levels stay with the stops. Labels keep their order. Linear time.
void moveEndLabels(const Diagram& diagram, LinkPaths& linkPaths);

}  // namespace tessera_draw
