// Byte strings as UTF-8: decoding, validation, repair. Any bytes are accepted, and nothing here throws except
// for lack of memory. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera_support {

// U+FFFD replaces bytes that are not valid: as text, and as a code.
inline constexpr std::string_view replacementText = "\xEF\xBF\xBD";  // U+FFFD
inline constexpr char32_t replacementCode = 0xFFFD;

// One decoded character, or a piece that is not one.
struct Utf8Character {
    char32_t code;       // U+FFFD when not valid
    std::size_t length;  // in bytes, at least 1
    bool isValid;
};

namespace detail {
// decodeUtf8() for a text that does not begin with ASCII.
[[nodiscard]] Utf8Character decodeLongUtf8(std::string_view text) noexcept;
}  // namespace detail

// The character that `text` begins with; a loop removes its `length` bytes and calls again. Surrogates,
// overlong forms and codes above U+10FFFF are not valid; then `length` is the number of bytes that one U+FFFD
// replaces: the longest piece that could have begun a character, or a single byte.
//
// REQUIRES: !text.empty().
[[nodiscard]] inline Utf8Character decodeUtf8(std::string_view text) noexcept {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return {lead, 1, true};
    return detail::decodeLongUtf8(text);
}

// Whether Unicode has set the code aside for ever: two at the end of each plane, and a range of 32. Texts should
// not have them; some libraries take them for errors.
[[nodiscard]] constexpr bool isNoncharacter(char32_t code) noexcept {
    return (code & 0xFFFE) == 0xFFFE || (code >= 0xFDD0 && code <= 0xFDEF);
}

// How many bytes at the beginning of `text` are valid UTF-8. Reads eight bytes at once where they are ASCII.
[[nodiscard]] std::size_t validUtf8Prefix(std::string_view text) noexcept;

// Whether all of `text` is valid; an empty one is.
[[nodiscard]] inline bool isValidUtf8(std::string_view text) noexcept {
    return validUtf8Prefix(text) == text.size();
}

// A copy in which every piece that is not valid is one U+FFFD; the pieces are those of decodeUtf8(). A valid text is
// returned as it is. The copy can be up to three times as long.
[[nodiscard]] std::string repairUtf8(std::string_view text);

// The length of the longest prefix of `text` that has at most `maxBytes` and ends between characters, for a text
// that is truncated by its caller, who adds the "..." too. Where the bytes at that place are not UTF-8, it may be
// up to four bytes less than `maxBytes`, and no more.
[[nodiscard]] inline std::size_t truncatedUtf8Length(std::string_view text, std::size_t maxBytes) noexcept {
    if (text.size() <= maxBytes) return text.size();
    constexpr std::size_t maxTrailBytes = 3;
    std::size_t end = maxBytes;
    while (end > 0 && maxBytes - end <= maxTrailBytes &&
           (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return end;
}

}  // namespace tessera_support
