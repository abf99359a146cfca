// Names of kinds and roles, as SVG and JSON spell them. They are part of both formats: scripts and programs
// depend on them.
#pragma once

#include <string_view>

#include "draw/scene.h"

namespace tessera_draw {

// All return views of literals, and "" for a value outside its enumeration.
[[nodiscard]] std::string_view nameOf(Element::Kind kind) noexcept;
[[nodiscard]] std::string_view nameOf(BoxRole role) noexcept;
[[nodiscard]] std::string_view nameOf(TextRole role) noexcept;
[[nodiscard]] std::string_view nameOf(ColorRole role) noexcept;
[[nodiscard]] std::string_view nameOf(Symbol symbol) noexcept;

}  // namespace tessera_draw
