// Outlines of the small shapes, for every format alike.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/scene.h"

namespace tessera_draw {

struct OutlineStep {
    enum class Kind : std::uint8_t { move, line, curve, close };

    Kind kind = Kind::move;
    Point end;
    Point control1;
    Point control2;
};

using Outline = std::vector<OutlineStep>;

// The bar along the left edge of a box with round corners.
[[nodiscard]] Outline barOf(const Rect& rect, double radius);

// Whether the mark is drawn as a line instead of filled.
[[nodiscard]] bool isOutlined(Symbol symbol) noexcept;
[[nodiscard]] Outline outlineOf(const SymbolShape& symbol);

[[nodiscard]] Outline outlineOf(const ArrowHead& head);

// Where the room of a text begins.
[[nodiscard]] double leftOf(const TextShape& text) noexcept;

}  // namespace tessera_draw
