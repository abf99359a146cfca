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
    critical,  // levels of values
    warning,
    good,
    own1,  // and those of the document, whose colours a scene brings along
    own2,
    own3,
    own4,
    own5,
    own6,
    more,  // changes to another result
    less,
};
inline constexpr std::size_t colorRoleCount = 27;
inline constexpr std::size_t accentCount = 4;
inline constexpr std::size_t ownLevelCount = 6;

// The role of a document's own level, from 0.
[[nodiscard]] constexpr ColorRole ownRole(std::size_t number) noexcept {
    return static_cast<ColorRole>(static_cast<std::size_t>(ColorRole::own1) + number);
}
[[nodiscard]] constexpr bool isLevelRole(ColorRole role) noexcept {
    return role >= ColorRole::critical && role <= ColorRole::own6;
}

// The colours of one theme, by ColorRole; the entry of `none` is not used.
using Palette = std::array<Rgb, colorRoleCount>;

[[nodiscard]] const Palette& lightPalette() noexcept;
[[nodiscard]] const Palette& darkPalette() noexcept;

// The contrast of two colours as WCAG 2 defines it, from 1 to 21.
[[nodiscard]] double contrastOf(Rgb a, Rgb b) noexcept;
// The colour, or the nearest darker or lighter one that a text can be read in on every ground of this palette:
// with a contrast of 4.5.
[[nodiscard]] Rgb readableOn(const Palette& palette, Rgb color) noexcept;

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
    // Those from here on have a style in a picture only where it says what values mean.
    levelBadge,   // with the level of a box, on its border; its fill is the colour of the level
    widthSample,  // a piece of line in the legend
};
inline constexpr std::size_t boxRoleCount = 9;
inline constexpr std::size_t plainBoxRoleCount = 7;

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
    // As with boxes.
    summary,    // of levels, in the heading
    levelWord,  // the name of a level, in its badge
    change,     // of a value to another result, below it
    labelChange,
    labelRowChange,
};
inline constexpr std::size_t textRoleCount = 18;
inline constexpr std::size_t plainTextRoleCount = 13;

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
inline constexpr double levelStrokeWidth = 2;  // of boxes at a level
// Of lines that have a value in the other result only.
inline constexpr double goneDashLength = 7;
inline constexpr double goneDashGap = 4;
// Of lines whose width shows a value, by step. Heads grow with them, but stand only 8 pixels apart.
inline constexpr std::array<double, 5> lineWidths = {1.6, 2.4, 3.2, 4.1, 5};
inline constexpr double textHaloWidth = 4;
inline constexpr double dashLength = 5;
inline constexpr double dashGap = 3;

// The font families that drawings name, in order of preference. Text widths are those of the first one, which
// is also the one that PNG and PDF use.
inline constexpr const char* fontFamilies = "'DejaVu Sans',Verdana,system-ui,sans-serif";
inline constexpr const char* fontFamily = "DejaVu Sans";

}  // namespace tessera_draw
