#include "draw/svg_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "draw/utf8.h"

namespace tessera_draw {
namespace {

constexpr std::size_t blockSize = 65536;
constexpr std::size_t mostDigits = 24;
constexpr std::string_view replacementText = "\xEF\xBF\xBD";

// Printable ASCII that means nothing to XML.
bool isPlain(unsigned char c) {
    return c >= 0x20 && c < 0x7F && c != '<' && c != '>' && c != '&' && c != '"' && c != '\'';
}

std::string_view escapeOf(char32_t code) {
    switch (code) {
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '&':
            return "&amp;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        case ' ':
            return " ";
        default:
            return {};
    }
}

}  // namespace

SvgText::SvgText(Output& output) : m_output(output), m_block(blockSize), m_at(m_block.data()) {}

void SvgText::handOn() {
    if (m_good) m_good = m_output.write({m_block.data(), m_block.size() - room()});
    m_at = m_block.data();
}

bool SvgText::finish() {
    if (m_at != m_block.data()) handOn();
    return m_good;
}

SvgText& SvgText::rawInPieces(std::string_view text) {
    while (!text.empty()) {
        if (room() == 0) handOn();
        const std::string_view piece = text.substr(0, room());
        m_at = std::copy(piece.begin(), piece.end(), m_at);
        text.remove_prefix(piece.size());
    }
    return *this;
}

SvgText& SvgText::number(double value) {
    constexpr double most = 1e9;
    constexpr double half = 0.5;
    const double within = std::isnan(value) ? 0 : std::clamp(value, -most, most);
    const auto hundredths = static_cast<std::uint64_t>(std::abs(within) * 100 + half);
    if (room() < mostDigits) handOn();
    if (within < 0 && hundredths > 0) *m_at++ = '-';
    m_at = std::to_chars(m_at, m_at + room(), hundredths / 100).ptr;
    if (const auto rest = static_cast<unsigned>(hundredths % 100); rest != 0) {
        *m_at++ = '.';
        *m_at++ = static_cast<char>('0' + rest / 10);
        if (rest % 10 != 0) *m_at++ = static_cast<char>('0' + rest % 10);
    }
    return *this;
}

SvgText& SvgText::point(Point point) {
    return number(point.x).raw(" ").number(point.y);
}

SvgText& SvgText::escaped(std::string_view text) {
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && isPlain(static_cast<unsigned char>(text[plain])))
            ++plain;
        raw(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        const auto [code, length] = firstCharacter(text);
        const char32_t shown = shownAs(code);
        const std::string_view escape = escapeOf(shown);
        raw(!escape.empty() ? escape : shown == replacement ? replacementText : text.substr(0, length));
        text.remove_prefix(length);
    }
    return *this;
}

SvgText& SvgText::attribute(std::string_view name, std::string_view value) {
    return raw(" ").raw(name).raw("=\"").escaped(value).raw("\"");
}

SvgText& SvgText::attribute(std::string_view name, double value) {
    return raw(" ").raw(name).raw("=\"").number(value).raw("\"");
}

}  // namespace tessera_draw
