// Lines with their arrow heads.
#pragma once

#include <string_view>

#include "draw/scene.h"

namespace tessera_draw {

inline constexpr double arrowLength = 9;
inline constexpr double arrowWidth = 8;

// The line as it is drawn: with heads at the ends that `direction` names ("forward": the last; "back": the
// first; "both"; anything else: none), and shortened there, so that a head's tip stays sharp.
[[nodiscard]] LineShape makeLine(PlacedLine placed, std::string_view direction);

// What stands between the names of a line's ends.
[[nodiscard]] std::string_view arrowText(std::string_view direction) noexcept;

}  // namespace tessera_draw
