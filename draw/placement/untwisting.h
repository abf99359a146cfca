// Removes two crossings of two lines that run beside each other between them.
#pragma once

#include "draw/placement/layered_graph.h"

namespace tessera_draw::placing {

// Where two lines cross, run beside each other through some layers, and cross again, leads one of them past the other, and
// past what is between them, if there are fewer crossings then. The runs may lead through labels and through borders.
// REQUIRES: the layers are ordered. Linear time: lines that are more than 8 vertices apart stay.
void untwist(LayeredGraph& graph);

}  // namespace tessera_draw::placing
