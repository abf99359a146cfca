#include "draw/read/meaning.h"

#include <charconv>

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;

// "#rrggbb". Only numbers get any further: the text itself never reaches a picture.
std::optional<Rgb> colorOf(std::string_view text) {
    if (text.size() != 7 || text.front() != '#') return std::nullopt;
    std::uint32_t code = 0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data() + 1, textEnd, code, 16);
    if (error != std::errc() || end != textEnd) return std::nullopt;
    return Rgb{static_cast<std::uint8_t>(code >> 16U), static_cast<std::uint8_t>(code >> 8U & 0xFFU),
               static_cast<std::uint8_t>(code & 0xFFU)};
}

std::int64_t integerIn(const variant_bag_t& bag, std::string_view name) {
    const basekit2::variant_t* value = bag.get(name);
    return value != nullptr && value->can_get<std::int64_t>() ? value->get<std::int64_t>() : 0;
}

}  // namespace

LevelNumber Meaning::levelOf(std::string_view name) const noexcept {
    for (std::size_t i = 0; i < levels.size(); ++i)
        if (levels[i].name == name) return static_cast<LevelNumber>(i + 1);
    return 0;
}

Meaning readMeaning(const variant_bag_t& bag, TextArena& texts) {
    Meaning meaning;
    const variant_bag_t* found = bag.get_variant_bag("meaning");
    if (found == nullptr) return meaning;
    for (auto child = found->begin(); !child.at_end(); child.next()) {
        const variant_bag_t& part = child.get_value();
        if (child.get_name() == "level" && meaning.levels.size() < Meaning::maxLevels)
            meaning.levels.push_back({texts.add(part.get_text("name")), colorOf(part.get_text("colour")),
                                      integerIn(part, "count")});
        if (child.get_name() == "comparison") meaning.comparison = texts.add(part.get_text("text"));
        if (child.get_name() != "widths") continue;
        meaning.widthsName = texts.add(part.get_text("name"));
        meaning.widthSteps.clear();
        for (auto step = part.begin(); !step.at_end() && meaning.widthSteps.size() < lineWidths.size();
             step.next())
            meaning.widthSteps.push_back(texts.add(step.get_value().get_text("text")));
    }
    return meaning;
}

}  // namespace tessera_draw
