// Diagrams made from a seed, for tests of rules that hold for all diagrams.
#pragma once

#include <cstdint>

#include "core/view_model/graph.h"

namespace tessera_test {

// Fills an empty graph with 2 to 40 nodes, as a document might describe them: groups up to six deep, links of
// all kinds between any two nodes, some with a missing end, values for labels and groups, and ids that occur
// twice or equal a generated id. The same seed makes the same diagram. One seed in three makes no cycle.
void fillRandomDiagram(tessera_1::view_model::Graph& graph, std::uint64_t seed);

}  // namespace tessera_test
