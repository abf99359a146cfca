// What writing a diagram in an unknown display mode leaves in its tables.
#pragma once

namespace tessera_1::view_model {

class Graph;

// Removes the empty entries that the writers have made for the graph's display mode, unless it is one of
// displayModeNames: requests can name any number of others. What is shown stays. Takes time in proportion to the
// nodes and links, and none for a known mode. Called by "create", "refresh" and "changeDisplayMode" after the
// diagram was written, under the handler's lock.
void forgetUnknownMode(Graph& graph);

}  // namespace tessera_1::view_model
