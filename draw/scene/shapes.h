// Outlines of the small shapes, shared by all formats. Coordinates are those of the scene, in pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/scene.h"

namespace tessera_draw {

// One step of an outline. Only curves use the control points; `close` uses no point.
struct OutlineStep {
    enum class Kind : std::uint8_t { move, line, curve, close };

    Kind kind = Kind::move;
    Point end;
    Point control1;
    Point control2;
};

// Starts with a move. May consist of several parts, as a cross does.
using Outline = std::vector<OutlineStep>;

// The bar along the left edge of a box whose corners have this radius; to be filled. It marks the display type
// together with the symbol.
[[nodiscard]] Outline barOf(const Rect& rect, double radius);

// Whether the symbol is drawn as a stroke instead of being filled.
[[nodiscard]] bool isOutlined(Symbol symbol) noexcept;
// The symbol around its centre, to be filled or stroked in its accent colour. Empty for Symbol::none.
[[nodiscard]] Outline outlineOf(const SymbolShape& symbol);

// A triangle, to be filled, for a line of this width; its size is in draw/scene/scene_lines.h.
[[nodiscard]] Outline outlineOf(const ArrowHead& head, double lineWidth);

// The left edge of the space that a text may fill, by its anchor and maxWidth.
[[nodiscard]] double leftOf(const TextShape& text) noexcept;

}  // namespace tessera_draw
