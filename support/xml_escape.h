// Text as XML needs it written: in content, in attributes, and in drawings.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "support/swar.h"
#include "support/utf8.h"

namespace tessera_support {

enum class XmlPlace {
    text,       // content between tags
    attribute,  // a value in double quotes; tab and line ends are escaped too, as a reader would make them spaces
    drawing  // shown to people, in content or in quotes of either kind: white space becomes a space, and
             // control characters, which fonts lack, U+FFFD
};

namespace detail {

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
    word_t special = highBytes(word) | bytesBelow(word, 0x20) | bytesEqual(word, '&') |
                     bytesEqual(word, '<') | bytesEqual(word, '>');
    if constexpr (place != XmlPlace::text) special |= bytesEqual(word, '"');
    if constexpr (place == XmlPlace::drawing) special |= bytesEqual(word, '\'') | bytesEqual(word, '\x7F');
    return special == 0;
}

// How a character beyond ASCII is written; empty: as it is.
template <XmlPlace place>
[[nodiscard]] constexpr std::string_view xmlEscapeOf(const Utf8Character& character) noexcept {
    const char32_t code = character.code;
    if (!character.isValid || code == 0xFFFE || code == 0xFFFF) return replacementText;
    if constexpr (place == XmlPlace::drawing) {
        if (code == 0x85 || code == 0x2028 || code == 0x2029) return " ";
        const bool isNoncharacter = (code & 0xFFFE) == 0xFFFE;
        if (code < 0xA0 || isNoncharacter) return replacementText;
    }
    return {};
}

}  // namespace detail

// Calls `write` with pieces that are together the escaped text: runs that need no escape, as views into
// `text`, and escapes. What XML cannot carry is written as U+FFFD. Reads eight bytes at once where it can.
template <XmlPlace place, typename Write>
void writeXmlEscaped(std::string_view text, Write&& write) {
    std::size_t done = 0;  // written up to here
    std::size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= sizeof(word_t) && detail::isPlainXml<place>(loadWord(text.data() + at))) {
            at += sizeof(word_t);
            continue;
        }
        std::size_t length = 1;
        std::string_view escape;
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < detail::xmlEscapes<place>.size()) {
            escape = detail::xmlEscapes<place>[byte];
        } else {
            const Utf8Character character = decodeUtf8(text.substr(at));
            length = character.length;
            escape = detail::xmlEscapeOf<place>(character);
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

// The same where the place is known only at run time.
template <typename Write>
void writeXmlEscaped(std::string_view text, XmlPlace place, Write&& write) {
    switch (place) {
        case XmlPlace::text:
            return writeXmlEscaped<XmlPlace::text>(text, write);
        case XmlPlace::attribute:
            return writeXmlEscaped<XmlPlace::attribute>(text, write);
        case XmlPlace::drawing:
            return writeXmlEscaped<XmlPlace::drawing>(text, write);
    }
}

}  // namespace tessera_support
