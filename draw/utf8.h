// Byte strings as UTF-8. What is no UTF-8 reads as U+FFFD.
#pragma once

#include <cstddef>
#include <string_view>

namespace tessera_draw {

inline constexpr char32_t replacement = 0xFFFD;

struct Character {
    char32_t code;
    std::size_t length;  // in bytes, at least 1
};

// The character that `text` begins with.
//
// REQUIRES: !text.empty().
[[nodiscard]] inline Character firstCharacter(std::string_view text) noexcept {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || length > text.size()) return {replacement, 1};
    auto code = static_cast<char32_t>(lead & (0x7F >> length));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {replacement, 1};
        code = code << 6 | static_cast<char32_t>(byte(i) & 0x3F);
    }
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < least[length] || isSurrogate || code > 0x10FFFF) return {replacement, 1};
    return {code, length};
}

// The character as drawings show it: white space as a blank, and what XML cannot carry as U+FFFD.
[[nodiscard]] inline char32_t shownAs(char32_t code) noexcept {
    if (code >= 0x20 && code < 0x7F) return code;
    if (code == '\t' || code == '\n' || code == '\r' || code == 0x85 || code == 0x2028 || code == 0x2029)
        return ' ';
    if (code < 0x20 || (code >= 0x7F && code < 0xA0) || (code & 0xFFFE) == 0xFFFE) return replacement;
    return code;
}

// Where the text ends that has at most so many bytes, without a broken character at its end.
[[nodiscard]] inline std::size_t endOfCharacters(std::string_view text, std::size_t most) noexcept {
    if (text.size() <= most) return text.size();
    std::size_t end = most;
    while (end > 0 && most - end < 4 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return end;
}

// Hebrew, Arabic and their like.
[[nodiscard]] inline bool isRightToLeft(char32_t code) noexcept {
    return (code >= 0x590 && code <= 0x8FF) || (code >= 0xFB1D && code <= 0xFDFF) ||
           (code >= 0xFE70 && code <= 0xFEFC) || (code >= 0x10800 && code <= 0x10FFF) ||
           (code >= 0x1E800 && code <= 0x1EFFF);
}

// Whether the text has letters that are written from right to left.
[[nodiscard]] inline bool runsLeftwards(std::string_view text) noexcept {
    for (std::size_t i = 0; i < text.size();) {
        const auto [code, length] = firstCharacter(text.substr(i));
        if (isRightToLeft(code)) return true;
        i += length;
    }
    return false;
}

// Whether nothing of the text can be seen.
[[nodiscard]] inline bool isBlank(std::string_view text) noexcept {
    for (std::size_t i = 0; i < text.size();) {
        const auto [code, length] = firstCharacter(text.substr(i));
        const bool isSeen = shownAs(code) != ' ' && code != 0xA0 && code != 0x3000 && code != 0xFEFF &&
                            !(code >= 0x2000 && code <= 0x200F) && !(code >= 0x2060 && code <= 0x2064);
        if (isSeen) return false;
        i += length;
    }
    return true;
}

}  // namespace tessera_draw
