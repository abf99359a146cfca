#include "draw/theme.h"

namespace tessera_draw {
namespace {

constexpr Rgb rgb(std::uint32_t code) {
    return {static_cast<std::uint8_t>(code >> 16), static_cast<std::uint8_t>(code >> 8 & 0xFF),
            static_cast<std::uint8_t>(code & 0xFF)};
}

// In the order of ColorRole. The accents differ in lightness as well as in hue, for readers who see few hues.
constexpr Palette light = {rgb(0x000000), rgb(0xFBFCFE), rgb(0x1B2433), rgb(0x5A6880),
                           rgb(0xF1F4F9), rgb(0xE7ECF5), rgb(0xC6D0E0), rgb(0xFFFFFF),
                           rgb(0xB9C5D8), rgb(0x9AA8BF), rgb(0x6A7890), rgb(0xE4ECFB),
                           rgb(0x2F6FDE), rgb(0x0E8A6D), rgb(0xB4631A), rgb(0x8A4FBF)};
constexpr Palette dark = {rgb(0x000000), rgb(0x11161F), rgb(0xE8EDF6), rgb(0x97A4BA),
                          rgb(0x1A212D), rgb(0x222B3A), rgb(0x354156), rgb(0x273143),
                          rgb(0x3F4C63), rgb(0x55647F), rgb(0x8593AB), rgb(0x1D2B47),
                          rgb(0x6FA1FF), rgb(0x45C9A5), rgb(0xE8A25C), rgb(0xC394F0)};

constexpr std::array<BoxStyle, boxRoleCount> boxStyles = {{
    {ColorRole::container, ColorRole::containerBorder, false, 12},
    {ColorRole::innerContainer, ColorRole::containerBorder, false, 12},
    {ColorRole::card, ColorRole::cardBorder, false, 8},
    {ColorRole::card, ColorRole::labelBorder, true, 8},
    {ColorRole::card, ColorRole::labelBorder, false, 7},
    {ColorRole::container, ColorRole::containerBorder, true, 12},
    {ColorRole::badge, ColorRole::accent1, false, 14},
}};

constexpr std::array<TextStyle, textRoleCount> textStyles = {{
    {20, Weight::bold, ColorRole::text, Anchor::start},
    {12, Weight::bold, ColorRole::accent1, Anchor::middle},
    {13, Weight::bold, ColorRole::text, Anchor::start},
    {11, Weight::regular, ColorRole::muted, Anchor::start},
    {11, Weight::bold, ColorRole::text, Anchor::end},
    {11, Weight::regular, ColorRole::muted, Anchor::start},
    {9.5, Weight::regular, ColorRole::muted, Anchor::middle},
    {11, Weight::bold, ColorRole::text, Anchor::middle},
    {9.5, Weight::regular, ColorRole::muted, Anchor::start},
    {11, Weight::bold, ColorRole::text, Anchor::end},
    {15, Weight::bold, ColorRole::text, Anchor::middle},
    {12, Weight::regular, ColorRole::muted, Anchor::middle},
    {11, Weight::regular, ColorRole::muted, Anchor::start},
}};

}  // namespace

const Palette& lightPalette() noexcept {
    return light;
}

const Palette& darkPalette() noexcept {
    return dark;
}

const BoxStyle& styleOf(BoxRole role) noexcept {
    return boxStyles[static_cast<std::size_t>(role)];
}

const TextStyle& styleOf(TextRole role) noexcept {
    return textStyles[static_cast<std::size_t>(role)];
}

}  // namespace tessera_draw
