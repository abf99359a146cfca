#include "draw/scene/changes.h"

#include <fmt/format.h>

#include <array>

#include "draw/text_width.h"

namespace tessera_draw {
namespace {

struct ChangeLook {
    std::string_view change;
    std::string_view arrow;
    ColorRole color;
};
constexpr std::array<ChangeLook, 4> looks = {{{"more", "▲ ", ColorRole::more},
                                              {"less", "▼ ", ColorRole::less},
                                              {"here", "", ColorRole::more},
                                              {"there", "", ColorRole::less}}};

const ChangeLook* lookOf(const Row& row) {
    for (const ChangeLook& each : looks)
        if (each.change == row.change) return &each;
    return nullptr;
}

std::string joined(std::string_view a, std::string_view between, std::string_view b) {
    return fmt::format("{}{}{}", a, b.empty() ? "" : between, b);
}

// The most telling text that fits comes first.
std::array<std::string, 4> wordings(const Row& row, std::string_view arrow) {
    if (row.change == "same") return {"="};
    if (row.change == "here") return {"only here"};
    if (row.change == "there") return {fmt::format("only there: {}", row.other), "only there"};
    const std::string other = fmt::format("vs {}", row.other);
    if (row.difference.empty()) return {other};
    const std::string size(row.percent.empty() ? row.difference : row.percent);
    const std::string both = row.percent.empty() ? std::string(row.difference)
                                                 : fmt::format("{} ({})", row.difference, row.percent);
    return {fmt::format("{}  {}{}", other, arrow, both), fmt::format("{}  {}{}", other, arrow, size),
            fmt::format("{}{}", arrow, both), fmt::format("{}{}", arrow, size)};
}

}  // namespace

std::string changeText(const Row& row) {
    if (row.change == "same") return "same";
    if (row.change == "here" || row.change == "there") return wordings(row, "").front();
    return joined(joined(fmt::format("vs {}", row.other), ", ", row.difference), ", ", row.percent);
}

Index drawChange(SceneBuilder& builder, const Row& row, Point at, TextRole role, double maxWidth) {
    if (!hasChange(row)) return nothing;
    const ChangeLook* look = lookOf(row);
    const TextStyle& style = styleOf(role);
    std::string shown;
    for (const std::string& wording : wordings(row, look == nullptr ? "" : look->arrow)) {
        if (wording.empty()) break;
        shown = wording;
        if (measureText(shown, style.size, style.weight).width <= maxWidth) break;
    }
    if (builder.text(at, role, builder.own(shown), maxWidth) == 0) return nothing;
    if (look != nullptr) builder.colorLastText(look->color);
    return builder.lastText();
}

}  // namespace tessera_draw
