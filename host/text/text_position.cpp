#include "host/text/text_position.h"

#include <algorithm>
#include <bit>

#include "support/swar.h"

namespace tessera_host {

using tessera_support::bytesEqual;
using tessera_support::highBytes;
using tessera_support::loadWord;
using tessera_support::word_t;

TextPosition::TextPosition(std::string_view text) noexcept : m_text(text) {
    rewind();
}

void TextPosition::rewind() noexcept {
    m_offset = m_text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    m_position = {1, 1};
}

basekit2::source_position_t TextPosition::at(std::size_t offset) noexcept {
    // Ascending offsets pass through the text once; a smaller one starts again.
    if (offset < m_offset) rewind();
    if (offset > m_offset) advance(offset);
    return m_position;
}

void TextPosition::advance(std::size_t end) noexcept {
    while (m_offset < end)
        if (!advanceByWord(end)) advanceByByte();
}

// Takes up to eight bytes when they are ASCII and their lines end with LF, as most of most documents.
bool TextPosition::advanceByWord(std::size_t end) noexcept {
    if (m_text.size() - m_offset < sizeof(word_t)) return false;
    const word_t word = loadWord(m_text.data() + m_offset);
    if ((highBytes(word) | bytesEqual(word, '\r')) != 0) return false;

    const std::size_t count = std::min(end - m_offset, sizeof(word_t));
    // The bytes up to `end`; the first byte is the lowest one of the word.
    const word_t counted = ~word_t{0} >> (64 - 8 * count);
    const word_t lineEnds = bytesEqual(word, '\n') & counted;
    if (lineEnds == 0) {
        m_position.column += static_cast<std::uint32_t>(count);
    } else {
        const auto upToLastEnd = static_cast<std::uint32_t>(std::bit_width(lineEnds)) / 8;
        m_position.line += static_cast<std::uint32_t>(std::popcount(lineEnds));
        m_position.column = static_cast<std::uint32_t>(count) - upToLastEnd + 1;
    }
    m_offset += count;
    return true;
}

void TextPosition::advanceByByte() noexcept {
    const char c = m_text[m_offset++];
    const bool endsLine = c == '\n' || (c == '\r' && (m_offset == m_text.size() || m_text[m_offset] != '\n'));
    if (endsLine)
        m_position = {m_position.line + 1, 1};
    else if ((static_cast<unsigned char>(c) & 0xC0U) !=
             0x80U)  // every byte but those that continue a character
        ++m_position.column;
}

}  // namespace tessera_host
