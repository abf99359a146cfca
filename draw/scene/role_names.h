// Names of kinds and roles, as SVG and JSON spell them.
#pragma once

#include <string_view>

#include "draw/scene.h"

namespace tessera_draw {

[[nodiscard]] std::string_view nameOf(Element::Kind kind) noexcept;
[[nodiscard]] std::string_view nameOf(BoxRole role) noexcept;
[[nodiscard]] std::string_view nameOf(TextRole role) noexcept;
[[nodiscard]] std::string_view nameOf(ColorRole role) noexcept;
[[nodiscard]] std::string_view nameOf(Symbol symbol) noexcept;

}  // namespace tessera_draw
