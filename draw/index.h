// Positions in lists, in 32 bits: the lists of a drawing are long, and there are many of them.
#pragma once

#include <cstdint>
#include <limits>

namespace tessera_draw {

// A position in one of the lists of a diagram or a drawing, counted from 0, or `nothing`. The name of a
// member or a comment at it says which list is meant.
//
// REQUIRES of all lists: fewer than 2^32 - 1 elements.
using Index = std::uint32_t;
inline constexpr Index nothing = std::numeric_limits<Index>::max();

}  // namespace tessera_draw
