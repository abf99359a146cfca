#include "host/text/json_text.h"

#include <array>
#include <charconv>
#include <string>

#include "host/text/indentation.h"
#include "support/swar.h"
#include "support/utf8.h"

namespace tessera_host {
namespace {

using tessera_support::bytesBelow;
using tessera_support::bytesEqual;
using tessera_support::loadWord;
using tessera_support::word_t;

// JSON requires an escape for exactly the others.
constexpr bool isPlain(unsigned char c) {
    return c >= 0x20 && c != '"' && c != '\\';
}

// How many bytes at the beginning can be written as they are.
std::size_t plainPrefix(std::string_view text) noexcept {
    std::size_t at = 0;
    // Eight bytes at a time, since most texts need no escape.
    for (; text.size() - at >= sizeof(word_t); at += sizeof(word_t)) {
        const word_t word = loadWord(text.data() + at);
        if ((bytesBelow(word, 0x20) | bytesEqual(word, '"') | bytesEqual(word, '\\')) != 0) break;
    }
    while (at < text.size() && isPlain(static_cast<unsigned char>(text[at])))
        ++at;
    return at;
}

}  // namespace

void JsonText::beginItem() {
    if (!m_isFirst) m_sink.put(',');
    m_isFirst = false;
    if (m_isIndented) beginLine(m_sink, m_depth);
}

void JsonText::open(char bracket) {
    m_sink.put(bracket);
    ++m_depth;
    m_isFirst = true;
}

void JsonText::close(char bracket) {
    --m_depth;
    // An empty object or array keeps its brackets on one line.
    if (m_isIndented && !m_isFirst) beginLine(m_sink, m_depth);
    m_sink.put(bracket);
    m_isFirst = false;
}

void JsonText::key(std::string_view name) {
    beginItem();
    string(name);
    m_sink.write(m_isIndented ? ": " : ":");
}

void JsonText::string(std::string_view text) {
    std::string repaired;
    // Texts are copied only where they need repair.
    if (!tessera_support::isValidUtf8(text)) text = repaired = tessera_support::repairUtf8(text);

    m_sink.put('"');
    for (;;) {
        const std::size_t plain = plainPrefix(text);
        m_sink.write(text.substr(0, plain));
        if (plain == text.size()) break;
        escape(text[plain]);
        text.remove_prefix(plain + 1);
    }
    m_sink.put('"');
}

void JsonText::escape(char c) {
    switch (c) {
        case '"':
            m_sink.write("\\\"");
            return;
        case '\\':
            m_sink.write("\\\\");
            return;
        case '\b':
            m_sink.write("\\b");
            return;
        case '\f':
            m_sink.write("\\f");
            return;
        case '\n':
            m_sink.write("\\n");
            return;
        case '\r':
            m_sink.write("\\r");
            return;
        case '\t':
            m_sink.write("\\t");
            return;
        default:
            break;
    }
    // Only control characters arrive here; all are below 0x20, so two digits are enough.
    constexpr std::string_view digits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(c);
    m_sink.write("\\u00");
    m_sink.put(digits[code >> 4]);
    m_sink.put(digits[code & 0xF]);
}

void JsonText::integer(std::int64_t number) {
    std::array<char, 20> digits{};  // the longest is -9223372036854775808
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    m_sink.write({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

}  // namespace tessera_host
