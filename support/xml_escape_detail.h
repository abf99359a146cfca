// How text is escaped for XML: the tables, a test of eight characters at once, and the loop. Private to
// support/xml_escape.h, which describes it.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "support/swar.h"
#include "support/utf8.h"
#include "support/xml_place.h"

namespace tessera_support::detail {

// How an ASCII character is written; empty: as it is.
[[nodiscard]] constexpr std::string_view xmlEscapeOf(char c, XmlPlace place) noexcept {
    const bool isDrawing = place == XmlPlace::drawing;
    const bool isText = place == XmlPlace::text;
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return isText ? "" : "&quot;";
        case '\'':
            return isDrawing ? "&#39;" : "";
        case '\t':
            return isDrawing ? " " : isText ? "" : "&#9;";
        case '\n':
            return isDrawing ? " " : isText ? "" : "&#10;";
        case '\r':
            return isDrawing ? " " : "&#13;";
        case '\x7F':
            return isDrawing ? replacementText : "";
        default:
            return c >= '\0' && c < ' ' ? replacementText : "";
    }
}

// By character. Computed by the compiler, once for each place.
[[nodiscard]] constexpr std::array<std::string_view, 128> xmlEscapesOf(XmlPlace place) noexcept {
    std::array<std::string_view, 128> escapes;
    for (std::size_t c = 0; c < escapes.size(); ++c)
        escapes[c] = xmlEscapeOf(static_cast<char>(c), place);
    return escapes;
}

template <XmlPlace place>
inline constexpr std::array<std::string_view, 128> xmlEscapes = xmlEscapesOf(place);

// True when none of the eight characters can need an escape.
template <XmlPlace place>
[[nodiscard]] constexpr bool isPlainXml(word_t word) noexcept {
    const word_t always = highBytes(word) | bytesBelow(word, 0x20) | bytesEqual(word, '&') |
                          bytesEqual(word, '<') | bytesEqual(word, '>');
    const word_t inQuotes = place == XmlPlace::text ? 0 : bytesEqual(word, '"');
    const word_t inDrawings =
        place == XmlPlace::drawing ? bytesEqual(word, '\'') | bytesEqual(word, '\x7F') : 0;
    return (always | inQuotes | inDrawings) == 0;
}

// How a character beyond ASCII is written; empty: as it is.
template <XmlPlace place>
[[nodiscard]] constexpr std::string_view xmlEscapeOf(const Utf8Character& character) noexcept {
    const char32_t code = character.code;
    if (!character.isValid || code == 0xFFFE || code == 0xFFFF) return replacementText;
    if constexpr (place == XmlPlace::drawing) {
        if (code == 0x85 || code == 0x2028 || code == 0x2029) return " ";
        if (code < 0xA0 || isNoncharacter(code)) return replacementText;
    }
    return {};
}

// What lies between two escapes is written as one piece, when the second is found.
template <XmlPlace place, typename Write>
void writeXmlEscaped(std::string_view text, const Write& write) {
    std::size_t done = 0;  // written up to here
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= sizeof(word_t) && isPlainXml<place>(loadWord(text.data() + at))) {
            at += sizeof(word_t);
            continue;
        }
        std::size_t length = 1;
        std::string_view escape;
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < xmlEscapes<place>.size()) {
            escape = xmlEscapes<place>[byte];
        } else {
            const Utf8Character character = decodeUtf8(text.substr(at));
            length = character.length;
            escape = xmlEscapeOf<place>(character);
        }
        if (!escape.empty()) {
            if (at > done) write(text.substr(done, at - done));
            write(escape);
            done = at + length;
        }
        at += length;
    }
    if (done < text.size()) write(text.substr(done));
}

}  // namespace tessera_support::detail
