// The style sheet of an SVG drawing, and the names of its classes. All names are views of literals.
#pragma once

#include <string>
#include <string_view>

#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

// Short class names, since every shape of a drawing has one.
[[nodiscard]] std::string_view classOf(BoxRole role) noexcept;
[[nodiscard]] std::string_view classOf(TextRole role) noexcept;
// Classes of bars and symbols that are filled, and of symbols that are drawn as strokes.
[[nodiscard]] std::string_view fillClassOf(ColorRole color) noexcept;
[[nodiscard]] std::string_view strokeClassOf(ColorRole color) noexcept;
// The class of texts with a halo, with a space before it so that it can follow another class; "" for none.
[[nodiscard]] std::string_view textHaloClassOf(ColorRole ground) noexcept;

// The class of a box at a level, and of a line whose width shows a value; as above, with a space or "".
[[nodiscard]] std::string_view levelBorderClassOf(ColorRole color) noexcept;
[[nodiscard]] std::string_view widthClassOf(const Scene& scene, std::size_t line) noexcept;

// The class of the drawing itself, in addition to "tessera-diagram": one page may
// hold drawings in several themes.
[[nodiscard]] std::string_view classOf(Theme theme) noexcept;

// Returns all rules. Each is limited to those two classes, so that it affects nothing else on a page. With
// the automatic theme, paper and readers without media queries get the light colours. Rules for levels and
// widths are only in the sheets of scenes that have them.
[[nodiscard]] std::string styleSheet(Theme theme, const Scene& scene);

}  // namespace tessera_draw
