// Styles of drawings: colours by theme, and the style of each kind of shape. All formats use these tables, so
// that a drawing looks the same in SVG, PNG and PDF. Lengths are pixels. The tables are constants: their
// references are always valid, in any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "draw/text_width.h"

namespace tessera_draw {

// A colour in sRGB, opaque.
struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    friend bool operator==(const Rgb&, const Rgb&) = default;
};

// The purpose of a colour. Shapes name roles; a theme maps each role to a colour. `none` draws nothing.
enum class ColorRole : std::uint8_t {
    none,
    ground,  // behind the whole drawing
    text,
    muted,      // texts that explain others: names of rows, the legend
    container,  // fill of a group at top level; groups alternate by depth
    innerContainer,
    containerBorder,
    card,  // fill of nodes and labels
    cardBorder,
    labelBorder,
    line,     // lines and their arrow heads
    badge,    // fill of the badge with the display mode
    accent1,  // symbols and bars of display types, in turn
    accent2,
    accent3,
    accent4,
};
inline constexpr std::size_t colorRoleCount = 16;
inline constexpr std::size_t accentCount = 4;

// The colours of one theme, by ColorRole; the entry of `none` is not used.
using Palette = std::array<Rgb, colorRoleCount>;

[[nodiscard]] const Palette& lightPalette() noexcept;
[[nodiscard]] const Palette& darkPalette() noexcept;

enum class Theme : std::uint8_t {
    light,
    dark,
    automatic,  // follows the reader's screen setting where the format supports that; else light
};

// The kinds of boxes, each with a style of its own.
enum class BoxRole : std::uint8_t {
    container,
    innerContainer,  // in a container; containers alternate by depth
    card,            // a node
    interfaceCard,   // a node of the display type "interface"
    labelCard,       // a label with values, on a line
    note,            // what is shown in place of an empty diagram
    badge,           // with the display mode, in the heading
};
inline constexpr std::size_t boxRoleCount = 7;

struct BoxStyle {
    ColorRole fill = ColorRole::none;
    ColorRole stroke = ColorRole::none;
    bool isDashed = false;
    double radius = 0;  // of the corners
};

[[nodiscard]] const BoxStyle& styleOf(BoxRole role) noexcept;

// The kinds of texts, each with a style of its own.
enum class TextRole : std::uint8_t {
    heading,  // the diagram's name
    badge,    // the display mode
    name,     // of a node or group
    rowName,  // in a node or group; its value is at the right edge
    rowValue,
    more,       // "+3 more"
    labelName,  // above its value
    labelValue,
    labelRowName,  // of several rows, left of its value
    labelRowValue,
    noteTitle,
    note,
    legend,
};
inline constexpr std::size_t textRoleCount = 13;

// Which part of a text is at its position: where it starts, its middle, or where it ends.
enum class Anchor : std::uint8_t { start, middle, end };

struct TextStyle {
    double size = 0;  // font size
    Weight weight = Weight::regular;
    ColorRole color = ColorRole::text;
    Anchor anchor = Anchor::start;
};

[[nodiscard]] const TextStyle& styleOf(TextRole role) noexcept;

// Widths of strokes, and the pattern of dashed ones.
inline constexpr double boxStrokeWidth = 1;
inline constexpr double lineStrokeWidth = 1.6;
inline constexpr double textHaloWidth = 4;
inline constexpr double dashLength = 5;
inline constexpr double dashGap = 3;

// The font families that drawings name, in order of preference. Text widths are those of the first one, which
// is also the one that PNG and PDF use.
inline constexpr const char* fontFamilies = "'DejaVu Sans',Verdana,system-ui,sans-serif";
inline constexpr const char* fontFamily = "DejaVu Sans";

}  // namespace tessera_draw
