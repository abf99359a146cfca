#include "draw/svg/svg_style.h"

#include <fmt/format.h>

#include <array>
#include <iterator>

namespace tessera_draw {
namespace {

// Class names are short because each shape has one. They are in the order of the roles.
constexpr std::array<std::string_view, boxRoleCount> boxClasses = {"g", "gg", "c", "ci", "lc", "nb", "ch"};
constexpr std::array<std::string_view, textRoleCount> textClasses = {"h",  "ct", "n",  "k",  "v",  "m", "ln",
                                                                     "lv", "lk", "lw", "nt", "no", "le"};

std::string hex(const Palette& palette, ColorRole color) {
    const Rgb& colour = palette[static_cast<std::size_t>(color)];
    return fmt::format("#{:02X}{:02X}{:02X}", colour.red, colour.green, colour.blue);
}

// One rule, for a class in drawings of the class `scope`.
void rule(std::string& sheet, std::string_view scope, std::string_view selector, const std::string& body) {
    sheet += fmt::format(".{} .{}{{{}}}\n", scope, selector, body);
}

// All rules that a theme changes.
void addColours(std::string& sheet, std::string_view scope, const Palette& palette) {
    const auto rule = [&](std::string& text, std::string_view selector, const std::string& body) {
        tessera_draw::rule(text, scope, selector, body);
    };
    sheet += fmt::format(".{}{{background:{}}}\n", scope, hex(palette, ColorRole::ground));
    rule(sheet, "bg", "fill:" + hex(palette, ColorRole::ground));
    for (std::size_t i = 0; i < boxRoleCount; ++i) {
        const BoxStyle& style = styleOf(static_cast<BoxRole>(i));
        rule(sheet, boxClasses[i],
             fmt::format("fill:{};stroke:{}", hex(palette, style.fill), hex(palette, style.stroke)));
    }
    for (std::size_t i = 0; i < textRoleCount; ++i)
        rule(sheet, textClasses[i], "fill:" + hex(palette, styleOf(static_cast<TextRole>(i)).color));
    rule(sheet, "l", "stroke:" + hex(palette, ColorRole::line));
    rule(sheet, "a", "fill:" + hex(palette, ColorRole::line));
    rule(sheet, "o1", "stroke:" + hex(palette, ColorRole::container));
    rule(sheet, "o2", "stroke:" + hex(palette, ColorRole::innerContainer));
    // labelBorder is the fallback of bars and symbols without an accent: class "f0" or "s0".
    for (const ColorRole color : {ColorRole::accent1, ColorRole::accent2, ColorRole::accent3,
                                  ColorRole::accent4, ColorRole::labelBorder}) {
        rule(sheet, fillClassOf(color), "fill:" + hex(palette, color));
        rule(sheet, strokeClassOf(color), "stroke:" + hex(palette, color));
    }
}

// The rules that both themes share.
void addShapes(std::string& sheet) {
    const auto rule = [](std::string& text, std::string_view selector, const std::string& body) {
        tessera_draw::rule(text, "tessera-diagram", selector, body);
    };
    sheet +=
        fmt::format(".tessera-diagram{{font-family:{};font-variant-numeric:tabular-nums}}\n", fontFamilies);
    // The direction of each text follows its own characters, not its surroundings.
    // As wide as it is drawn, or as its page.
    sheet += ".tessera-diagram{max-width:100%;height:auto}\n";
    sheet += ".tessera-diagram text{unicode-bidi:plaintext}\n";
    for (std::size_t i = 0; i < textRoleCount; ++i) {
        const TextStyle& style = styleOf(static_cast<TextRole>(i));
        std::string body = fmt::format("font-size:{}px", style.size);
        if (style.weight == Weight::bold) body += ";font-weight:700";
        if (style.anchor != Anchor::start)
            body += style.anchor == Anchor::middle ? ";text-anchor:middle" : ";text-anchor:end";
        rule(sheet, textClasses[i], body);
    }
    for (std::size_t i = 0; i < boxRoleCount; ++i)
        if (styleOf(static_cast<BoxRole>(i)).isDashed)
            rule(sheet, boxClasses[i], fmt::format("stroke-dasharray:{} {}", dashLength, dashGap));
    rule(sheet, "l", fmt::format("fill:none;stroke-width:{};stroke-linejoin:round", lineStrokeWidth));
    for (const std::string_view textHalo : {"o1", "o2"})
        rule(sheet, textHalo,
             fmt::format("paint-order:stroke;stroke-width:{};stroke-linejoin:round", textHaloWidth));
    for (const ColorRole color :
         {ColorRole::accent1, ColorRole::accent2, ColorRole::accent3, ColorRole::accent4})
        rule(sheet, strokeClassOf(color), "fill:none;stroke-width:2");
}

}  // namespace

std::string_view classOf(BoxRole role) noexcept {
    return boxClasses[static_cast<std::size_t>(role)];
}

std::string_view classOf(TextRole role) noexcept {
    return textClasses[static_cast<std::size_t>(role)];
}

std::string_view fillClassOf(ColorRole color) noexcept {
    switch (color) {
        case ColorRole::accent1:
            return "f1";
        case ColorRole::accent2:
            return "f2";
        case ColorRole::accent3:
            return "f3";
        case ColorRole::accent4:
            return "f4";
        default:
            return "f0";
    }
}

std::string_view strokeClassOf(ColorRole color) noexcept {
    switch (color) {
        case ColorRole::accent1:
            return "s1";
        case ColorRole::accent2:
            return "s2";
        case ColorRole::accent3:
            return "s3";
        case ColorRole::accent4:
            return "s4";
        default:
            return "s0";
    }
}

std::string_view textHaloClassOf(ColorRole ground) noexcept {
    if (ground == ColorRole::none) return {};
    return ground == ColorRole::innerContainer ? " o2" : " o1";
}

std::string_view classOf(Theme theme) noexcept {
    if (theme == Theme::automatic) return "tessera-auto";
    return theme == Theme::dark ? "tessera-dark" : "tessera-light";
}

std::string styleSheet(Theme theme) {
    std::string sheet;
    addShapes(sheet);
    addColours(sheet, classOf(theme), theme == Theme::dark ? darkPalette() : lightPalette());
    // Only on screens: on paper, the automatic theme is always the light one.
    if (theme == Theme::automatic) {
        sheet += "@media screen and (prefers-color-scheme:dark){\n";
        addColours(sheet, classOf(theme), darkPalette());
        sheet += "}\n";
    }
    return sheet;
}

}  // namespace tessera_draw
