// The one style sheet of an SVG drawing.
#pragma once

#include <string>
#include <string_view>

#include "draw/theme.h"

namespace tessera_draw {

// Short names of the classes that a drawing's shapes are in.
[[nodiscard]] std::string_view classOf(BoxRole role) noexcept;
[[nodiscard]] std::string_view classOf(TextRole role) noexcept;
// Of bars and marks that are filled, and of marks that are drawn as outlines.
[[nodiscard]] std::string_view fillClassOf(ColorRole color) noexcept;
[[nodiscard]] std::string_view strokeClassOf(ColorRole color) noexcept;
// Of texts that lines may pass behind, with a blank in front; "" for none.
[[nodiscard]] std::string_view textHaloClassOf(ColorRole ground) noexcept;

// Of the drawing itself, beside "tessera-diagram": one page may hold drawings in several themes.
[[nodiscard]] std::string_view classOf(Theme theme) noexcept;

// All rules, below those two classes, so that they touch nothing else of a page. Readers that know
// no media queries, and paper, get the light colours, unless the theme is the dark one alone.
[[nodiscard]] std::string styleSheet(Theme theme);

}  // namespace tessera_draw
