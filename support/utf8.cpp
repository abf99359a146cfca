#include "support/utf8.h"

#include <utf8.h>

#include "support/swar.h"

namespace tessera_support {
namespace {

// The length of the piece at the beginning of `text` that one U+FFFD replaces, as Unicode recommends: the
// longest that could have begun a character.
//
// REQUIRES: `text` does not begin with a character.
std::size_t invalidLength(std::string_view text, std::size_t expectedLength) noexcept {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    // The bounds of the second byte exclude overlong forms, surrogates, and what is above U+10FFFF.
    unsigned low = byte(0) == 0xE0 ? 0xA0 : byte(0) == 0xF0 ? 0x90 : 0x80;
    unsigned high = byte(0) == 0xED ? 0x9F : byte(0) == 0xF4 ? 0x8F : 0xBF;
    std::size_t length = 1;
    while (length < expectedLength && length < text.size() && byte(length) >= low && byte(length) <= high) {
        ++length;
        low = 0x80;
        high = 0xBF;
    }
    return length;
}

}  // namespace

Utf8Character detail::decodeLongUtf8(std::string_view text) noexcept {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0xC2 || lead > 0xF4) return {replacementCode, 1, false};
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    const std::string_view character = text.substr(0, length);
    // The checked decoder throws, which is slow where nothing in a text is valid: check first.
    if (character.size() < length || utf8::find_invalid(character) != std::string_view::npos)
        return {replacementCode, invalidLength(text, length), false};
    const char* at = character.data();
    return {static_cast<char32_t>(utf8::unchecked::next(at)), length, true};
}

std::size_t validUtf8Prefix(std::string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= sizeof(word_t) && highBytes(loadWord(text.data() + at)) == 0) {
            at += sizeof(word_t);
            continue;
        }
        const Utf8Character character = decodeUtf8(text.substr(at));
        if (!character.isValid) return at;
        at += character.length;
    }
    return at;
}

std::string repairUtf8(std::string_view text) {
    std::string repaired;
    repaired.reserve(text.size());
    while (!text.empty()) {
        const std::size_t valid = validUtf8Prefix(text);
        repaired += text.substr(0, valid);
        text.remove_prefix(valid);
        if (text.empty()) break;
        repaired += replacementText;
        text.remove_prefix(decodeUtf8(text).length);
    }
    return repaired;
}

}  // namespace tessera_support
