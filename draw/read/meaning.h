// What the values of a diagram mean: levels and widths, as the host has described them in the bag.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "draw/text_arena.h"
#include "draw/theme.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_draw {

// A level of values. A value refers to its level by number: the position in Meaning::levels plus 1, or 0 without one.
struct MeaningLevel {
    std::string_view name;
    std::optional<Rgb> color;  // of the document's own levels
    std::int64_t count = 0;    // values at this level
};
using LevelNumber = std::uint8_t;

struct Meaning {
    static constexpr std::size_t maxLevels = 3 + ownLevelCount;

    std::vector<MeaningLevel> levels;  // the worst first; further ones are left out
    std::string_view widthsName;       // what the widths of lines show; "" when all lines are alike
    std::string_view comparison;       // how the values differ from those of another result; "" without one
    std::vector<std::string_view> widthSteps;  // the text of each step, as many as lineWidths at most

    // 0 for a name that is not a level.
    [[nodiscard]] LevelNumber levelOf(std::string_view name) const noexcept;
};

// Reads the child "meaning" of `bag`; empty when there is none. Accepts any bag. Texts are copied into `texts`.
[[nodiscard]] Meaning readMeaning(const basekit2::variant_bag_t& bag, TextArena& texts);

}  // namespace tessera_draw
