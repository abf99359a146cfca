// What values mean: the <levels> and <widths> of a document. The diagram library does not see them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/document/declarations.h"
#include "host/document/problem.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// The levels that every document may use without a colour of their own, the worst first.
inline constexpr std::array<std::string_view, 3> knownLevels{"critical", "warning", "good"};

// Whether `text` is "#rrggbb" with hexadecimal digits in upper or lower case.
[[nodiscard]] bool isColour(std::string_view text) noexcept;

// A level by its name. Ranks order levels from the worst (0): critical, warning, those of the document in the
// order in which it first names them, good.
struct Level {
    std::string name;
    std::string colour;  // "#rrggbb"; "" for one of the known levels
    std::size_t rank = 0;
};

// One <level>: the values of a query, or of one reference to it, that are at a level.
struct LevelRule {
    std::size_t level = 0;                         // in ValueMeaning::levels()
    std::size_t query = 0;                         // the index of its declaration
    std::optional<std::vector<std::string>> keys;  // of the one reference that it is about
    bool isAbove = true;                           // else below
    double bound = 0;                              // excluded
    basekit2::source_position_t position;

    // False for NaN. Compares the raw value, before it is formatted.
    [[nodiscard]] bool holds(double number) const noexcept {
        return isAbove ? number > bound : number < bound;
    }
};

// The <widths>: links are as wide as the values of this query are large, in steps of equal size.
struct LinkWidths {
    static constexpr int steps = 5;

    std::size_t query = 0;  // the index of its declaration
    double from = 0;        // less than `to`
    double to = 0;

    // From 1 for values up to `from` to `steps`; 0 for NaN.
    [[nodiscard]] int stepOf(double number) const noexcept;
    // The largest value of a step, which is from 1 to `steps` - 1.
    [[nodiscard]] double endOf(int step) const noexcept;
};

// Unchanging once read, so any thread may use it. Its indices are those of the declarations that it was read
// with.
class ValueMeaning {
  public:
    // A document may name this many levels of its own: more could not be told apart in a drawing.
    static constexpr std::size_t maxOwnLevels = 6;

    ValueMeaning() = default;
    // Reads every <level> below the <levels> children of `viewpoint`, and its <widths>, of which the last one
    // counts. What is wrong is listed in problems() and left out.
    ValueMeaning(const basekit2::variant_bag_t& viewpoint, const Declarations& declarations);

    // In the order of their ranks; only those that a rule names.
    [[nodiscard]] const std::vector<Level>& levels() const noexcept { return m_levels; }
    // In the order of the document: the first one that holds counts.
    [[nodiscard]] const std::vector<LevelRule>& rules() const noexcept { return m_rules; }
    [[nodiscard]] const std::optional<LinkWidths>& widths() const noexcept { return m_widths; }
    [[nodiscard]] bool isEmpty() const noexcept { return m_rules.empty() && !m_widths; }
    [[nodiscard]] const std::vector<Problem>& problems() const noexcept { return m_problems; }

    // The level of that name, or null.
    [[nodiscard]] const Level* findLevel(std::string_view name) const noexcept;

    // Whether this child of the root says what values mean.
    [[nodiscard]] static bool isMeaning(std::string_view element) noexcept {
        return element == "levels" || element == "widths";
    }

  private:
    friend class MeaningReader;

    std::vector<Level> m_levels;
    std::vector<LevelRule> m_rules;
    std::optional<LinkWidths> m_widths;
    std::vector<Problem> m_problems;
};

}  // namespace tessera_host
