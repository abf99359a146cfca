#include "host/text/utf8.h"

#include "host/text/byte_words.h"

namespace tessera_host {

Utf8Character decodeUtf8(std::string_view text) noexcept {
    const auto byte = [text](std::size_t i) -> unsigned { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {lead, 1, true};
    if (lead < 0xC2 || lead > 0xF4) return {0xFFFD, 1, false};
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;

    // The bounds of the second byte keep out longer forms than needed, surrogates, and what lies above
    // U+10FFFF.
    unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if (i == text.size() || byte(i) < low || byte(i) > high) return {0xFFFD, i, false};
        code = (code << 6) | (byte(i) & 0x3FU);
        low = 0x80;
        high = 0xBF;
    }
    return {code, length, true};
}

std::size_t validUtf8Prefix(std::string_view text) noexcept {
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= sizeof(word_t) && highBytes(loadWord(text.data() + at)) == 0) {
            at += sizeof(word_t);
            continue;
        }
        if (static_cast<unsigned char>(text[at]) < 0x80) {
            ++at;
            continue;
        }
        const Utf8Character character = decodeUtf8(text.substr(at));
        if (!character.valid) return at;
        at += character.length;
    }
    return at;
}

std::string mendUtf8(std::string_view text) {
    std::string mended;
    mended.reserve(text.size());
    while (!text.empty()) {
        const std::size_t valid = validUtf8Prefix(text);
        mended += text.substr(0, valid);
        text.remove_prefix(valid);
        if (text.empty()) break;
        mended += replacementCharacter;
        text.remove_prefix(decodeUtf8(text).length);
    }
    return mended;
}

}  // namespace tessera_host
