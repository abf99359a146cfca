// What drawings look like: colours by theme, and the style of each kind of shape.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "draw/text_width.h"

namespace tessera_draw {

struct Rgb {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    friend bool operator==(const Rgb&, const Rgb&) = default;
};

// What a colour is for; a theme says which one it is.
enum class ColorRole : std::uint8_t {
    none,
    ground,
    text,
    muted,
    container,
    innerContainer,
    containerBorder,
    card,
    cardBorder,
    labelBorder,
    line,
    badge,
    accent1,
    accent2,
    accent3,
    accent4,
};
inline constexpr std::size_t colorRoleCount = 16;
inline constexpr std::size_t accentCount = 4;

using Palette = std::array<Rgb, colorRoleCount>;  // by ColorRole; that of `none` is not used

[[nodiscard]] const Palette& lightPalette() noexcept;
[[nodiscard]] const Palette& darkPalette() noexcept;

enum class Theme : std::uint8_t {
    light,
    dark,
    automatic,  // what the reader's screen is set to, where the format can say so; light on paper
};

enum class BoxRole : std::uint8_t {
    container,
    innerContainer,  // in a container; containers alternate by depth
    card,
    interfaceCard,
    labelCard,
    note,
    badge,
};
inline constexpr std::size_t boxRoleCount = 7;

struct BoxStyle {
    ColorRole fill = ColorRole::none;
    ColorRole stroke = ColorRole::none;
    bool isDashed = false;
    double radius = 0;
};

[[nodiscard]] const BoxStyle& styleOf(BoxRole role) noexcept;

enum class TextRole : std::uint8_t {
    heading,
    badge,
    name,
    rowName,
    rowValue,
    more,       // "+3 more"
    labelName,  // over its value
    labelValue,
    labelRowName,  // of several rows, left of its value
    labelRowValue,
    noteTitle,
    note,
    legend,
};
inline constexpr std::size_t textRoleCount = 13;

enum class Anchor : std::uint8_t { start, middle, end };

struct TextStyle {
    double size = 0;
    Weight weight = Weight::regular;
    ColorRole color = ColorRole::text;
    Anchor anchor = Anchor::start;
};

[[nodiscard]] const TextStyle& styleOf(TextRole role) noexcept;

inline constexpr double boxStrokeWidth = 1;
inline constexpr double lineStrokeWidth = 1.6;
inline constexpr double textHaloWidth = 4;
inline constexpr double dashLength = 5;
inline constexpr double dashGap = 3;

// The families that drawings ask for, in this order; the widths of texts are those of the first.
inline constexpr const char* fontFamilies = "'DejaVu Sans',Verdana,system-ui,sans-serif";
inline constexpr const char* fontFamily = "DejaVu Sans";

}  // namespace tessera_draw
