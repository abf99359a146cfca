// Links that go in circles.
#pragma once

#include "host/check/structure.h"

namespace tessera_host {

// Reports each set of nodes of one group that links connect in a circle, once. A link between groups counts
// for the two nodes or groups that hold its ends and stand side by side. Takes n log n time.
void checkCycles(const DeclaredGraph& graph, Findings& findings);

}  // namespace tessera_host
