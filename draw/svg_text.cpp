#include "draw/svg_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "draw/utf8.h"

namespace tessera_draw {
namespace {

constexpr std::size_t blockSize = 65536;
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

SvgText::SvgText(Output& output) : m_output(output) {
    m_block.reserve(blockSize + 4096);
}

void SvgText::handOn() {
    if (m_good) m_good = m_output.write(m_block);
    m_block.clear();
}

bool SvgText::finish() {
    if (!m_block.empty()) handOn();
    return m_good;
}

SvgText& SvgText::raw(std::string_view text) {
    m_block += text;
    if (m_block.size() >= blockSize) handOn();
    return *this;
}

SvgText& SvgText::number(double value) {
    constexpr double most = 1e9;
    const double within = std::isnan(value) ? 0 : std::clamp(value, -most, most);
    const long long hundredths = std::llround(within * 100);
    std::array<char, 24> text{};
    char* at = text.data();
    if (hundredths < 0) *at++ = '-';
    const auto size = static_cast<unsigned long long>(std::abs(hundredths));
    at = std::to_chars(at, text.data() + text.size(), size / 100).ptr;
    if (const auto rest = static_cast<unsigned>(size % 100); rest != 0) {
        *at++ = '.';
        *at++ = static_cast<char>('0' + rest / 10);
        if (rest % 10 != 0) *at++ = static_cast<char>('0' + rest % 10);
    }
    return raw({text.data(), static_cast<std::size_t>(at - text.data())});
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
