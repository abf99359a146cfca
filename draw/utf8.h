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

}  // namespace tessera_draw
