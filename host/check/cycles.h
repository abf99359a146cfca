// Links that go in circles.
#pragma once

#include "host/check/graph_sections.h"

namespace tessera_host {

// Reports each set of nodes of one group that links connect in circles, once: a shortest cycle through the
// first of its links, how much of the set that cycle leaves out, and what the layering makes of it. A link
// between groups counts for the two nodes or groups that hold its ends and stand side by side. Takes n log n
// time.
void checkCycles(const DeclaredGraph& graph, Findings& findings, Watch& watch);

}  // namespace tessera_host
