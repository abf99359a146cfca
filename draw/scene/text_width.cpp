#include "draw/text_width.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "draw/scene/shown_text.h"
#include "draw/scene/text_advances.h"

namespace tessera_draw {
namespace {

using tessera_support::decodeUtf8;

// Font units to the em. Emoji come from a font that is not known here; 1.4 em is a typical width.
constexpr std::uint16_t em = 2048;
constexpr std::uint16_t emojiAdvance = em * 7 / 5;
constexpr char32_t ellipsis = 0x2026;
constexpr char32_t joiner = 0x200D;
constexpr std::size_t maxBytes = 1024;  // because any number of marks without width would fit

struct Advance {
    std::uint16_t units;
    bool isKnown;
};

template <typename Ranges>
bool isIn(const Ranges& ranges, char32_t code) noexcept {
    const auto next =
        std::upper_bound(ranges.begin(), ranges.end(), code,
                         [](char32_t value, const CharacterRange& range) { return value < range.first; });
    return next != ranges.begin() && code <= std::prev(next)->last;
}

Advance advanceOutsideTable(char32_t code) noexcept {
    if (isIn(zeroRanges, code)) return {0, true};
    if (code >= 0x1F000 && code <= 0x1FAFF) return {emojiAdvance, false};
    return {em, isIn(wideRanges, code)};
}

Advance advanceOf(char32_t code, Weight weight) noexcept {
    std::size_t offset = 0;
    for (const CharacterRange& block : advanceBlocks) {
        if (code < block.first) break;
        if (code <= block.last) {
            const std::size_t at = offset + (code - block.first);
            const std::uint16_t units = weight == Weight::bold ? boldAdvances[at] : regularAdvances[at];
            return units == unknownAdvance ? Advance{em, false} : Advance{units, true};
        }
        offset += block.last - block.first + 1;
    }
    return advanceOutsideTable(code);
}

// Whether the character extends the one before it, whose last code point is `before`.
bool extends(char32_t code, char32_t before, std::uint16_t units) noexcept {
    const bool isSkinTone = code >= 0x1F3FB && code <= 0x1F3FF;
    // Vowels and final consonants, which are drawn into the syllable that a consonant begins.
    const bool isHangulEnd = code >= 0x1160 && code <= 0x11FF;
    return units == 0 || isSkinTone || isHangulEnd || before == joiner;
}

bool isFlagLetter(char32_t code) noexcept {
    return code >= 0x1F1E6 && code <= 0x1F1FF;
}

std::string_view trimmed(std::string_view text) noexcept {
    constexpr std::string_view whiteSpace = " \t\n\r";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

// Iterates over what people see as characters.
class Walk {
  public:
    Walk(std::string_view text, Weight weight) noexcept : m_text(text), m_weight(weight) {}

    [[nodiscard]] bool atEnd() const noexcept { return m_at == m_text.size(); }
    [[nodiscard]] std::size_t at() const noexcept { return m_at; }
    [[nodiscard]] std::uint64_t units() const noexcept { return m_units; }
    [[nodiscard]] bool isExact() const noexcept { return m_isExact; }

    void next() noexcept {
        char32_t before = take();
        bool wantsFlagLetter = isFlagLetter(before);
        const std::size_t end = m_at + maxBytes;
        while (!atEnd() && m_at < end) {
            const char32_t code = shownAs(decodeUtf8(m_text.substr(m_at)).code);
            // Below U+0300 no character extends another; this ends the step for almost all texts at once.
            if (code < 0x300) return;
            const bool isFlag = wantsFlagLetter && isFlagLetter(code);
            if (!isFlag && !extends(code, before, advanceOf(code, m_weight).units)) return;
            wantsFlagLetter = false;
            before = take();
        }
    }

  private:
    char32_t take() noexcept {
        const auto [code, length, isValid] = decodeUtf8(m_text.substr(m_at));
        const char32_t shown = shownAs(code);
        const auto [units, isKnown] = advanceOf(shown, m_weight);
        m_at += length;
        m_units += units;
        m_isExact = m_isExact && isKnown;
        return shown;
    }

    std::string_view m_text;
    Weight m_weight;
    std::size_t m_at = 0;
    std::uint64_t m_units = 0;
    bool m_isExact = true;
};

}  // namespace

TextWidth measureText(std::string_view text, double size, Weight weight) noexcept {
    Walk walk(text, weight);
    while (!walk.atEnd())
        walk.next();
    return {static_cast<double>(walk.units()) * size / em, walk.isExact()};
}

FittedText fitText(std::string_view text, double maxWidth, double size, Weight weight) noexcept {
    text = trimmed(text);
    const double unit = size / em;
    const double dots = advanceOf(ellipsis, weight).units * unit;
    FittedText shortened{{}, true, dots, true};  // the longest beginning that fits with "…" after it
    Walk walk(text, weight);
    while (!walk.atEnd()) {
        walk.next();
        const double width = static_cast<double>(walk.units()) * unit;
        // The time depends on the space, not on the length of the text.
        if (width > maxWidth || walk.at() > maxBytes) break;
        if (width + dots <= maxWidth)
            shortened = {text.substr(0, walk.at()), true, width + dots, walk.isExact()};
        if (walk.atEnd()) return {text, false, width, walk.isExact()};
    }
    if (text.empty()) return {};
    // A space before the "…" looks like a mistake.
    shortened.kept = text.substr(0, trimmed(shortened.kept).size());
    return shortened;
}

}  // namespace tessera_draw
