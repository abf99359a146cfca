// Labels for an end of a link stand at that end.
#pragma once

#include "draw/read/link_paths.h"

namespace tessera_draw {

// The layout exchanges a label for an end with the dummy next to that end, but not everywhere: where it did
// not, this does. Labels keep their order. Linear time.
void moveEndLabels(const Diagram& diagram, LinkPaths& linkPaths);

}  // namespace tessera_draw
