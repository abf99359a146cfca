// Byte strings as UTF-8: checking, decoding, mending.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tessera_host {

inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";  // U+FFFD

struct Utf8Character {
    char32_t code;       // U+FFFD when not valid
    std::size_t length;  // in bytes
    bool valid;
};

// The character that `text` begins with. Surrogates, forms longer than needed and codes above U+10FFFF are
// not valid; then `length` is the number of bytes that one U+FFFD stands for: the longest piece that could
// have begun a character, or a single byte.
//
// REQUIRES: !text.empty().
Utf8Character decodeUtf8(std::string_view text) noexcept;

// How many bytes at the beginning of `text` are valid UTF-8.
std::size_t validUtf8Prefix(std::string_view text) noexcept;

inline bool isValidUtf8(std::string_view text) noexcept {
    return validUtf8Prefix(text) == text.size();
}

// A copy in which every piece that is not valid is one U+FFFD.
std::string mendUtf8(std::string_view text);

}  // namespace tessera_host
