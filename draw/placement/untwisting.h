// Removes two crossings of two lines that run beside each other between them.
#pragma once

#include "draw/placement/layered_graph.h"

namespace tessera_draw::placing {

// Where two neighbours in a row of layers cross before it and after it, exchanges them: dummy vertices, labels that one line
// passes, and hierarchical ports, so that a row may lead through borders. No pair of edges that did not cross does so afterwards. REQUIRES: the layers are ordered. Linear time.
void untwist(LayeredGraph& graph);

}  // namespace tessera_draw::placing
