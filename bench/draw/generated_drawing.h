// The diagrams of the other benchmarks as boxes and lines.
#pragma once

#include <string>

#include "bench/support/link_ends.h"
#include "draw/placement.h"

namespace tessera_bench {

// Boxes without levels: their lines give them layers. Labels are boxes that lines go through, in the
// innermost group around both ends.
[[nodiscard]] tessera_draw::PlacementInput generatedDrawing(const InputShape& shape);

// The same for `dot`: boxes of the same sizes in clusters.
void writeDot(const tessera_draw::PlacementInput& input, const std::string& path);

}  // namespace tessera_bench
