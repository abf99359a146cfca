#include "draw/svg_style.h"

#include <fmt/format.h>

#include <array>
#include <iterator>

namespace tessera_draw {
namespace {

constexpr std::array<std::string_view, boxRoleCount> boxClasses = {"g", "gg", "c", "ci", "lc", "nb", "ch"};
constexpr std::array<std::string_view, textRoleCount> textClasses = {"h",  "ct", "n",  "k",  "v",  "m", "ln",
                                                                     "lv", "lk", "lw", "nt", "no", "le"};

std::string hex(const Palette& palette, Ink ink) {
    const Rgb& colour = palette[static_cast<std::size_t>(ink)];
    return fmt::format("#{:02X}{:02X}{:02X}", colour.red, colour.green, colour.blue);
}

// One rule, for a class in drawings of the class `scope`.
void rule(std::string& sheet, std::string_view scope, std::string_view selector, const std::string& body) {
    sheet += fmt::format(".{} .{}{{{}}}\n", scope, selector, body);
}

void addColours(std::string& sheet, std::string_view scope, const Palette& palette) {
    const auto rule = [&](std::string& text, std::string_view selector, const std::string& body) {
        tessera_draw::rule(text, scope, selector, body);
    };
    sheet += fmt::format(".{}{{background:{}}}\n", scope, hex(palette, Ink::ground));
    rule(sheet, "bg", "fill:" + hex(palette, Ink::ground));
    for (std::size_t i = 0; i < boxRoleCount; ++i) {
        const BoxStyle& style = styleOf(static_cast<BoxRole>(i));
        rule(sheet, boxClasses[i],
             fmt::format("fill:{};stroke:{}", hex(palette, style.fill), hex(palette, style.stroke)));
    }
    for (std::size_t i = 0; i < textRoleCount; ++i)
        rule(sheet, textClasses[i], "fill:" + hex(palette, styleOf(static_cast<TextRole>(i)).ink));
    rule(sheet, "l", "stroke:" + hex(palette, Ink::line));
    rule(sheet, "a", "fill:" + hex(palette, Ink::line));
    rule(sheet, "o1", "stroke:" + hex(palette, Ink::container));
    rule(sheet, "o2", "stroke:" + hex(palette, Ink::innerContainer));
    for (const Ink ink : {Ink::accent1, Ink::accent2, Ink::accent3, Ink::accent4, Ink::labelBorder}) {
        rule(sheet, fillClassOf(ink), "fill:" + hex(palette, ink));
        rule(sheet, strokeClassOf(ink), "stroke:" + hex(palette, ink));
    }
}

void addShapes(std::string& sheet) {
    const auto rule = [](std::string& text, std::string_view selector, const std::string& body) {
        tessera_draw::rule(text, "tessera-diagram", selector, body);
    };
    sheet +=
        fmt::format(".tessera-diagram{{font-family:{};font-variant-numeric:tabular-nums}}\n", fontFamilies);
    // Each text runs as its own letters do, whatever stands around it.
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
    for (const std::string_view halo : {"o1", "o2"})
        rule(sheet, halo, fmt::format("paint-order:stroke;stroke-width:{};stroke-linejoin:round", haloWidth));
    for (const Ink ink : {Ink::accent1, Ink::accent2, Ink::accent3, Ink::accent4})
        rule(sheet, strokeClassOf(ink), "fill:none;stroke-width:2");
}

}  // namespace

std::string_view classOf(BoxRole role) noexcept {
    return boxClasses[static_cast<std::size_t>(role)];
}

std::string_view classOf(TextRole role) noexcept {
    return textClasses[static_cast<std::size_t>(role)];
}

std::string_view fillClassOf(Ink ink) noexcept {
    switch (ink) {
        case Ink::accent1:
            return "f1";
        case Ink::accent2:
            return "f2";
        case Ink::accent3:
            return "f3";
        case Ink::accent4:
            return "f4";
        default:
            return "f0";
    }
}

std::string_view strokeClassOf(Ink ink) noexcept {
    switch (ink) {
        case Ink::accent1:
            return "s1";
        case Ink::accent2:
            return "s2";
        case Ink::accent3:
            return "s3";
        case Ink::accent4:
            return "s4";
        default:
            return "s0";
    }
}

std::string_view haloClassOf(Ink ground) noexcept {
    if (ground == Ink::none) return {};
    return ground == Ink::innerContainer ? " o2" : " o1";
}

std::string_view classOf(Theme theme) noexcept {
    if (theme == Theme::automatic) return "tessera-auto";
    return theme == Theme::dark ? "tessera-dark" : "tessera-light";
}

std::string styleSheet(Theme theme) {
    std::string sheet;
    addShapes(sheet);
    addColours(sheet, classOf(theme), theme == Theme::dark ? darkPalette() : lightPalette());
    if (theme == Theme::automatic) {
        sheet += "@media screen and (prefers-color-scheme:dark){\n";
        addColours(sheet, classOf(theme), darkPalette());
        sheet += "}\n";
    }
    return sheet;
}

}  // namespace tessera_draw
