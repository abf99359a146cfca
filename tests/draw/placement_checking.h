// Random boxes and lines, and what must hold for every placement.
#pragma once

#include <string>

#include "draw/placement/placement.h"

namespace tessera_test {

// A few dozen boxes, nested, with levels and lines of all kinds; the same seed gives the same.
[[nodiscard]] tessera_draw::PlacementInput randomDrawing(unsigned seed);

// The first thing that is wrong, or nothing. Looks at every pair of boxes and lines: for small inputs. In a folded
// placement, later layers can be in rows below.
[[nodiscard]] std::string findFault(const tessera_draw::PlacementInput& input,
                                    const tessera_draw::Placement& placement, bool isFolded = false);

}  // namespace tessera_test
