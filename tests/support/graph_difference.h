// Whether two diagrams are the same.
#pragma once

#include <string>

#include "core/view_model/graph.h"

namespace tessera_test {

// The first difference between two graphs, in words, or "". Objects are the same when they have the same
// places in the lists of nodes and links. Without `placeholders` the empty entries of layers do not count.
std::string firstDifference(const tessera_1::view_model::Graph& a, const tessera_1::view_model::Graph& b,
                            bool placeholders);

}  // namespace tessera_test
