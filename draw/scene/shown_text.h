// Characters as drawings show them. All functions accept any bytes; invalid UTF-8 reads as U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "support/utf8.h"

namespace tessera_draw {

// Returns the character as drawings show it, for measuring texts and for formats that take characters: line
// breaks and tabs as a space, control characters and what XML does not allow as U+FFFD.
[[nodiscard]] inline char32_t shownAs(char32_t code) noexcept {
    if (code >= 0x20 && code < 0x7F) return code;
    if (code == '\t' || code == '\n' || code == '\r' || code == 0x85 || code == 0x2028 || code == 0x2029)
        return ' ';
    if (code < 0x20 || (code >= 0x7F && code < 0xA0) || tessera_support::isNoncharacter(code))
        return tessera_support::replacementCode;
    return code;
}

// Appends the text as it is shown: valid UTF-8 on one line. Linear time.
inline void appendShown(std::string& shown, std::string_view text) {
    while (!text.empty()) {
        const auto [code, length, isValid] = tessera_support::decodeUtf8(text);
        const char32_t character = shownAs(code);
        if (isValid && character == code)
            shown += text.substr(0, length);
        else
            shown += character == ' ' ? " " : tessera_support::replacementText;
        text.remove_prefix(length);
    }
}

// For hasRightToLeft(). Whether the character is in a block of Hebrew, Arabic or another script that is
// written from right to left.
[[nodiscard]] inline bool isRightToLeft(char32_t code) noexcept {
    return (code >= 0x590 && code <= 0x8FF) || (code >= 0xFB1D && code <= 0xFDFF) ||
           (code >= 0xFE70 && code <= 0xFEFC) || (code >= 0x10800 && code <= 0x10FFF) ||
           (code >= 0x1E800 && code <= 0x1EFFF);
}

// Whether the text has a character of such a block. Writers isolate such a text from what stands beside it, so
// that it does not change the direction of its neighbours. Reads up to the first one.
[[nodiscard]] inline bool hasRightToLeft(std::string_view text) noexcept {
    for (std::size_t i = 0; i < text.size();) {
        if (static_cast<unsigned char>(text[i]) < 0x80) {
            ++i;
            continue;
        }
        const auto character = tessera_support::decodeUtf8(text.substr(i));
        if (isRightToLeft(character.code)) return true;
        i += character.length;
    }
    return false;
}

// Whether the text is empty or has only characters that cannot be seen: spaces, joiners and marks of
// direction. A node with such a name is shown by its id.
[[nodiscard]] inline bool isBlank(std::string_view text) noexcept {
    for (std::size_t i = 0; i < text.size();) {
        const auto character = tessera_support::decodeUtf8(text.substr(i));
        const char32_t code = character.code;
        const bool isSeen = shownAs(code) != ' ' && code != 0xA0 && code != 0x3000 && code != 0xFEFF &&
                            !(code >= 0x2000 && code <= 0x200F) && !(code >= 0x2060 && code <= 0x2064);
        if (isSeen) return false;
        i += character.length;
    }
    return true;
}

}  // namespace tessera_draw
