#include "host/text/xml_escape.h"

#include <array>
#include <cstddef>

#include "host/text/byte_words.h"
#include "host/text/utf8.h"

namespace tessera_host {
namespace {

// How an ASCII character is written; empty: as it is.
constexpr std::string_view escapeOf(char c, XmlPlace place) {
    const bool isAttribute = place == XmlPlace::attribute;
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return isAttribute ? "&quot;" : "";
        case '\t':
            return isAttribute ? "&#9;" : "";
        case '\n':
            return isAttribute ? "&#10;" : "";
        case '\r':
            return "&#13;";
        default:
            return c >= '\0' && c < ' ' ? replacementCharacter : "";
    }
}

constexpr std::array<std::string_view, 128> escapesOf(XmlPlace place) {
    std::array<std::string_view, 128> escapes;
    for (std::size_t c = 0; c < escapes.size(); ++c)
        escapes[c] = escapeOf(static_cast<char>(c), place);
    return escapes;
}

constexpr auto textEscapes = escapesOf(XmlPlace::text);
constexpr auto attributeEscapes = escapesOf(XmlPlace::attribute);

// True when none of the eight characters can need an escape, wherever they stand.
bool isPlain(word_t word) {
    return (highBytes(word) | bytesBelow(word, 0x20) | bytesEqual(word, '&') | bytesEqual(word, '<') |
            bytesEqual(word, '>') | bytesEqual(word, '"')) == 0;
}

}  // namespace

void writeXmlEscaped(std::string_view text, XmlPlace place, TextSink& sink) {
    const auto& escapes = place == XmlPlace::text ? textEscapes : attributeEscapes;
    std::size_t done = 0;  // written up to here
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= sizeof(word_t) && isPlain(loadWord(text.data() + at))) {
            at += sizeof(word_t);
            continue;
        }
        std::size_t length = 1;
        std::string_view escape;
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < escapes.size()) {
            escape = escapes[byte];
        } else {
            const Utf8Character character = decodeUtf8(text.substr(at));
            length = character.length;
            const bool isAllowed = character.valid && character.code != 0xFFFE && character.code != 0xFFFF;
            if (!isAllowed) escape = replacementCharacter;
        }
        if (!escape.empty()) {
            sink.write(text.substr(done, at - done));
            sink.write(escape);
            done = at + length;
        }
        at += length;
    }
    sink.write(text.substr(done));
}

}  // namespace tessera_host
