// Positions in lists.
#pragma once

#include <cstdint>
#include <limits>

namespace tessera_draw {

// A position in one of the lists of a diagram or a drawing, or `nothing`.
using Index = std::uint32_t;
inline constexpr Index nothing = std::numeric_limits<Index>::max();

}  // namespace tessera_draw
