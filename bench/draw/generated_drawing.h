// The generated diagrams of the other benchmarks, as boxes and lines.
#pragma once

#include <string>

#include "bench/support/link_ends.h"
#include "draw/placement/placement.h"

namespace tessera_bench {

// Makes boxes without levels; the lines decide their layers. A label is a box that its line passes through, in
// the innermost group around both ends.
[[nodiscard]] tessera_draw::PlacementInput generatedDrawing(const InputShape& shape);

// Writes the same graph for `dot`, with boxes of the same sizes, in clusters.
void writeDot(const tessera_draw::PlacementInput& input, const std::string& path);

}  // namespace tessera_bench
