#include "draw/scene/levels.h"

#include <algorithm>
#include <array>

namespace tessera_draw {
namespace {

struct KnownLevel {
    std::string_view name;
    Symbol sign;
    ColorRole color;
};
constexpr std::array<KnownLevel, 3> knownLevels = {{
    {"critical", Symbol::alert, ColorRole::critical},
    {"warning", Symbol::caution, ColorRole::warning},
    {"good", Symbol::check, ColorRole::good},
}};
constexpr std::array<Symbol, ownLevelCount> ownSigns = {Symbol::star,   Symbol::flag,    Symbol::hexagon,
                                                        Symbol::window, Symbol::rhombus, Symbol::pentagon};

}  // namespace

void setLevels(Scene& scene, const Meaning& meaning) {
    std::size_t own = 0;
    for (const MeaningLevel& level : meaning.levels) {
        const auto* const known =
            std::find_if(knownLevels.begin(), knownLevels.end(),
                         [&](const KnownLevel& each) { return each.name == level.name; });
        if (known != knownLevels.end()) {
            scene.levels.push_back({level.name, known->sign, known->color, level.count});
        } else if (own < ownLevelCount) {
            scene.ownColors[own] = level.color;
            scene.levels.push_back({level.name, ownSigns[own], ownRole(own), level.count});
            ++own;
        }
    }
}

Palette paletteOf(const Scene& scene, bool isDark) {
    Palette palette = isDark ? darkPalette() : lightPalette();
    const Rgb fallback = palette[static_cast<std::size_t>(ColorRole::muted)];
    for (std::size_t i = 0; i < ownLevelCount; ++i)
        palette[static_cast<std::size_t>(ownRole(i))] =
            readableOn(palette, scene.ownColors[i].value_or(fallback));
    return palette;
}

const LevelLook* worstLevelOf(const Scene& scene, const Info& info) noexcept {
    const LevelLook* worst = nullptr;
    for (const Row& row : info.rows)
        if (const LevelLook* level = scene.levelOf(row.level); level != nullptr)
            if (worst == nullptr || level < worst) worst = level;
    return worst;
}

}  // namespace tessera_draw
