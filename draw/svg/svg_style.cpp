#include "draw/svg/svg_style.h"

#include <fmt/format.h>

#include <array>
#include <iterator>

#include "draw/scene/levels.h"

namespace tessera_draw {
namespace {

// Class names are short because each shape has one. They are in the order of the roles.
constexpr std::array<std::string_view, boxRoleCount> boxClasses = {"g",  "gg", "c",  "ci", "lc",
                                                                   "nb", "ch", "lb", "ws"};
constexpr std::array<std::string_view, textRoleCount> textClasses = {
    "h", "ct", "n", "k", "v", "m", "ln", "lv", "lk", "lw", "nt", "no", "le", "sm", "lx", "dc", "dl", "dr"};

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
    for (std::size_t i = 0; i < plainBoxRoleCount; ++i) {
        const BoxStyle& style = styleOf(static_cast<BoxRole>(i));
        rule(sheet, boxClasses[i],
             fmt::format("fill:{};stroke:{}", hex(palette, style.fill), hex(palette, style.stroke)));
    }
    for (std::size_t i = 0; i < plainTextRoleCount; ++i)
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

std::string shapeOf(TextRole role) {
    const TextStyle& style = styleOf(role);
    std::string body = fmt::format("font-size:{}px", style.size);
    if (style.weight == Weight::bold) body += ";font-weight:700";
    if (style.anchor != Anchor::start)
        body += style.anchor == Anchor::middle ? ";text-anchor:middle" : ";text-anchor:end";
    return body;
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
    for (std::size_t i = 0; i < plainTextRoleCount; ++i)
        rule(sheet, textClasses[i], shapeOf(static_cast<TextRole>(i)));
    for (std::size_t i = 0; i < plainBoxRoleCount; ++i)
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

// Classes of levels by their colour: of fills and texts, and of borders.
constexpr std::array<std::string_view, 9> levelFills = {"e1", "e2", "e3", "e4", "e5", "e6", "e7", "e8", "e9"};
constexpr std::array<std::string_view, 9> levelBorders = {" b1", " b2", " b3", " b4", " b5",
                                                          " b6", " b7", " b8", " b9"};
constexpr std::array<std::string_view, lineWidths.size()> widthClasses = {"", " w2", " w3", " w4", " w5"};

constexpr std::array changeRoles = {TextRole::change, TextRole::labelChange, TextRole::labelRowChange};

std::size_t levelNumber(ColorRole color) {
    return static_cast<std::size_t>(color) - static_cast<std::size_t>(ColorRole::critical);
}

// What values mean, in the colours of a theme.
void addMeaningColours(std::string& sheet, std::string_view scope, const Palette& palette,
                       const Scene& scene) {
    const std::string ground = hex(palette, ColorRole::ground);
    // Before the colours of levels and changes, which texts of these roles take instead.
    if (scene.hasChanges) {
        for (const TextRole role : changeRoles)
            rule(sheet, scope, classOf(role), "fill:" + hex(palette, styleOf(role).color));
        for (const ColorRole color : {ColorRole::more, ColorRole::less})
            rule(sheet, scope, fillClassOf(color), "fill:" + hex(palette, color));
    }
    for (const LevelLook& level : scene.levels) {
        const std::string color = hex(palette, level.color);
        rule(sheet, scope, levelFills[levelNumber(level.color)], "fill:" + color);
        rule(sheet, scope, levelBorders[levelNumber(level.color)].substr(1), "stroke:" + color);
    }
    rule(sheet, scope, classOf(BoxRole::levelBadge), "stroke:" + ground);
    rule(sheet, scope, classOf(BoxRole::widthSample), "fill:" + hex(palette, ColorRole::line));
    rule(sheet, scope, classOf(TextRole::levelWord), "fill:" + ground);
    rule(sheet, scope, fillClassOf(ColorRole::ground), "fill:" + ground);
}

// And what both themes share of it.
void addMeaningShapes(std::string& sheet, const Scene& scene) {
    constexpr std::string_view all = "tessera-diagram";
    for (const TextRole role : {TextRole::summary, TextRole::levelWord})
        rule(sheet, all, classOf(role), shapeOf(role));
    if (scene.hasChanges)
        for (const TextRole role : changeRoles)
            rule(sheet, all, classOf(role), shapeOf(role));
    for (const LevelLook& level : scene.levels)
        rule(sheet, all, levelBorders[levelNumber(level.color)].substr(1),
             fmt::format("stroke-width:{}", levelStrokeWidth));
    if (!scene.goneLines.empty())
        rule(sheet, all, "lg", fmt::format("stroke-dasharray:{} {}", goneDashLength, goneDashGap));
    if (scene.lineSteps.empty()) return;
    for (std::size_t i = 1; i < lineWidths.size(); ++i)
        rule(sheet, all, widthClasses[i].substr(1), fmt::format("stroke-width:{}", lineWidths[i]));
}

bool hasMeaning(const Scene& scene) {
    return !scene.levels.empty() || !scene.lineSteps.empty() || scene.hasChanges;
}

}  // namespace

std::string_view classOf(BoxRole role) noexcept {
    return boxClasses[static_cast<std::size_t>(role)];
}

std::string_view classOf(TextRole role) noexcept {
    return textClasses[static_cast<std::size_t>(role)];
}

std::string_view fillClassOf(ColorRole color) noexcept {
    if (isLevelRole(color)) return levelFills[levelNumber(color)];
    switch (color) {
        case ColorRole::ground:
            return "fg";
        case ColorRole::more:
            return "dm";
        case ColorRole::less:
            return "dd";
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

std::string_view levelBorderClassOf(ColorRole color) noexcept {
    return isLevelRole(color) ? levelBorders[levelNumber(color)] : std::string_view{};
}

std::string_view widthClassOf(const Scene& scene, std::size_t line) noexcept {
    return line < scene.lineSteps.size() ? widthClasses[scene.lineSteps[line]] : std::string_view{};
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

std::string styleSheet(Theme theme, const Scene& scene) {
    std::string sheet;
    addShapes(sheet);
    if (hasMeaning(scene)) addMeaningShapes(sheet, scene);
    const auto addTheme = [&](bool isDark) {
        const Palette palette = paletteOf(scene, isDark);
        addColours(sheet, classOf(theme), palette);
        if (hasMeaning(scene)) addMeaningColours(sheet, classOf(theme), palette, scene);
    };
    addTheme(theme == Theme::dark);
    // Only on screens: on paper, the automatic theme is always the light one.
    if (theme == Theme::automatic) {
        sheet += "@media screen and (prefers-color-scheme:dark){\n";
        addTheme(true);
        sheet += "}\n";
    }
    return sheet;
}

}  // namespace tessera_draw
