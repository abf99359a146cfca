// Lines with their arrow heads. The direction of a link is a text, as documents have it: "forward", "back",
// "both"; anything else means no arrow head.
#pragma once

#include <string_view>

#include "draw/scene.h"

namespace tessera_draw {

// Size of an arrow head in pixels, from tip to base and across.
inline constexpr double arrowLength = 9;
inline constexpr double arrowWidth = 8;

// The width of a head at the end of a line that is this wide.
[[nodiscard]] constexpr double headWidth(double lineWidth) noexcept {
    constexpr double beside = 2.3;  // at least, on both sides of the line
    return lineWidth + 2 * beside > arrowWidth ? lineWidth + 2 * beside : arrowWidth;
}

// Returns the line as it is drawn: with a head at the end for "forward", at the start for "back", at both for
// "both". The line is shortened under each head, so that the tip stays sharp. A placed line without segments
// gives a line without stretches and heads.
[[nodiscard]] LineShape makeLine(PlacedLine placed, std::string_view direction);

// Returns the arrow between the names of a line's ends, with a space on both sides; a literal.
[[nodiscard]] std::string_view arrowText(std::string_view direction) noexcept;

}  // namespace tessera_draw
