// Layers that follow the lines, where the levels of the input contradict them.
#pragma once

#include "draw/placement/placement.h"

namespace tessera_draw {

// A container's levels agree with the lines when each part of a line between two of its members leads to a higher
// level. Where they do not, or where a member that has lines has none, this sets the levels of all its members: a few
// lines are chosen to run back, so that the others form no cycle, and the others are kept short (see
// placement/feedback_arcs.h and placement/network_simplex.h).
//
// The labels of lines that such a container concerns are moved to where their line needs them: those of an end to the
// innermost container around that end, next to it, and others to the innermost container around the whole line. The
// labels of a line between a container and something inside it are moved into that container, in any case. A container
// that gets a label so gets new levels, too.
//
// Changes `group`, `level` and `along` of boxes, and nothing else. n log n time, where n counts boxes and lines: of a
// line that crosses very many borders, only some are looked at. No recursion.
void layerByLines(PlacementInput& input);

}  // namespace tessera_draw
