// How large a diagram may grow while it is laid out.
#pragma once

#include <cstddef>

#include "core/export.h"

namespace tessera_1 {

// A cycle drives nodes down as many layers as the diagram has nodes, and a link to them then needs a "dummy"
// node a layer, whose id contains the ids of those before it.
struct LayoutLimits {
    std::size_t maxElements = 5'000'000;             // nodes and links together; layers that a pass adds
    std::size_t maxIdBytes = std::size_t{1} << 30U;  // all ids of nodes and links together
};

// For the diagrams made from now on. Beyond a limit a pass stops with a report; the diagram has what was made
// until then. Any thread.
TESSERA_EXPORT void setLayoutLimits(const LayoutLimits& limits);
[[nodiscard]] TESSERA_EXPORT LayoutLimits layoutLimits();

}  // namespace tessera_1
