#include "draw/theme.h"

#include <algorithm>
#include <cmath>

namespace tessera_draw {
namespace {

constexpr Rgb rgb(std::uint32_t code) {
    return {static_cast<std::uint8_t>(code >> 16), static_cast<std::uint8_t>(code >> 8 & 0xFF),
            static_cast<std::uint8_t>(code & 0xFF)};
}

// In the order of ColorRole. The accents differ in lightness as well as in hue, for readers who see few hues.
constexpr Palette light = {rgb(0x000000),
                           rgb(0xFBFCFE),
                           rgb(0x1B2433),
                           rgb(0x5A6880),
                           rgb(0xF1F4F9),
                           rgb(0xE7ECF5),
                           rgb(0xC6D0E0),
                           rgb(0xFFFFFF),
                           rgb(0xB9C5D8),
                           rgb(0x9AA8BF),
                           rgb(0x6A7890),
                           rgb(0xE4ECFB),
                           rgb(0x2F6FDE),
                           rgb(0x0E8A6D),
                           rgb(0xB4631A),
                           rgb(0x8A4FBF),
                           rgb(0xB3123F),
                           rgb(0x8F5A00),
                           rgb(0x00758A),
                           {},
                           {},
                           {},
                           {},
                           {},
                           {},
                           rgb(0x1B5BBE),
                           rgb(0x9A4A00)};
constexpr Palette dark = {rgb(0x000000),
                          rgb(0x11161F),
                          rgb(0xE8EDF6),
                          rgb(0x97A4BA),
                          rgb(0x1A212D),
                          rgb(0x222B3A),
                          rgb(0x354156),
                          rgb(0x273143),
                          rgb(0x3F4C63),
                          rgb(0x55647F),
                          rgb(0x8593AB),
                          rgb(0x1D2B47),
                          rgb(0x6FA1FF),
                          rgb(0x45C9A5),
                          rgb(0xE8A25C),
                          rgb(0xC394F0),
                          rgb(0xFF7D9B),
                          rgb(0xFFC84A),
                          rgb(0x4FBFE0),
                          {},
                          {},
                          {},
                          {},
                          {},
                          {},
                          rgb(0x86B4FF),
                          rgb(0xF2A65E)};

constexpr std::array<BoxStyle, boxRoleCount> boxStyles = {{
    {ColorRole::container, ColorRole::containerBorder, false, 12},
    {ColorRole::innerContainer, ColorRole::containerBorder, false, 12},
    {ColorRole::card, ColorRole::cardBorder, false, 8},
    {ColorRole::card, ColorRole::labelBorder, true, 8},
    {ColorRole::card, ColorRole::labelBorder, false, 7},
    {ColorRole::container, ColorRole::containerBorder, true, 12},
    {ColorRole::badge, ColorRole::accent1, false, 14},
    {ColorRole::critical, ColorRole::ground, false, 6},
    {ColorRole::line, ColorRole::none, false, 0},
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
    {12, Weight::bold, ColorRole::text, Anchor::start},
    {8.5, Weight::bold, ColorRole::ground, Anchor::start},
    {8, Weight::regular, ColorRole::muted, Anchor::end},
    {8, Weight::regular, ColorRole::muted, Anchor::middle},
    {7, Weight::regular, ColorRole::muted, Anchor::end},
}};

// Grounds that texts stand on.
constexpr std::array grounds = {ColorRole::ground, ColorRole::container, ColorRole::innerContainer,
                                ColorRole::card};

double luminanceOf(Rgb color) noexcept {
    const auto linear = [](std::uint8_t part) {
        const double value = part / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

// A share of `end` in the colour, from 0 to 1.
Rgb mixed(Rgb color, Rgb end, double share) noexcept {
    const auto part = [&](std::uint8_t from, std::uint8_t to) {
        return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
    };
    return {part(color.red, end.red), part(color.green, end.green), part(color.blue, end.blue)};
}

}  // namespace

double contrastOf(Rgb a, Rgb b) noexcept {
    const double first = luminanceOf(a);
    const double second = luminanceOf(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

Rgb readableOn(const Palette& palette, Rgb color) noexcept {
    constexpr double enough = 4.5;
    constexpr int steps = 50;
    // Texts are dark on light grounds and light on dark ones.
    const bool isLight = luminanceOf(palette[static_cast<std::size_t>(ColorRole::ground)]) > 0.5;
    const Rgb end = isLight ? rgb(0x000000) : rgb(0xFFFFFF);
    for (int step = 0; step < steps; ++step) {
        const Rgb tried = mixed(color, end, static_cast<double>(step) / steps);
        if (std::all_of(grounds.begin(), grounds.end(), [&](ColorRole ground) {
                return contrastOf(tried, palette[static_cast<std::size_t>(ground)]) >= enough;
            }))
            return tried;
    }
    return end;
}

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
