#include "draw/svg/svg_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "support/xml_escape.h"

namespace tessera_draw {
namespace {

constexpr std::size_t blockSize = 65536;
// Bytes that one number may take; 1e9 with sign and two decimals needs 14.
constexpr std::size_t maxDigits = 24;

}  // namespace

SvgText::SvgText(Output& output) : m_output(output), m_block(blockSize), m_at(m_block.data()) {}

void SvgText::handOn() {
    if (m_good) m_good = m_output.write({m_block.data(), m_block.size() - available()});
    m_at = m_block.data();
}

bool SvgText::finish() {
    if (m_at != m_block.data()) handOn();
    return m_good;
}

SvgText& SvgText::rawInPieces(std::string_view text) {
    while (!text.empty()) {
        if (available() == 0) handOn();
        const std::string_view piece = text.substr(0, available());
        m_at = std::copy(piece.begin(), piece.end(), m_at);
        text.remove_prefix(piece.size());
    }
    return *this;
}

SvgText& SvgText::number(double value) {
    constexpr double max = 1e9;
    constexpr double half = 0.5;
    const double within = std::isnan(value) ? 0 : std::clamp(value, -max, max);
    // A hundredth of a pixel cannot be seen; more digits would only make files larger.
    const auto hundredths = static_cast<std::int64_t>(std::abs(within) * 100 + half);
    if (available() < maxDigits) handOn();
    if (within < 0 && hundredths > 0) *m_at++ = '-';
    const auto whole = static_cast<std::uint32_t>(hundredths / 100);
    m_at = std::to_chars(m_at, m_at + available(), whole).ptr;
    if (const auto rest = static_cast<std::uint32_t>(hundredths - std::int64_t{whole} * 100); rest != 0) {
        *m_at++ = '.';
        *m_at++ = static_cast<char>('0' + rest / 10);
        if (rest % 10 != 0) *m_at++ = static_cast<char>('0' + rest % 10);
    }
    return *this;
}

SvgText& SvgText::point(Point point) {
    return number(point.x).raw(" ").number(point.y);
}

SvgText& SvgText::path(const LineShape& line) {
    for (const auto& stretch : line.stretches) {
        raw("M").point(stretch.start);
        for (const Segment& segment : stretch.segments) {
            if (segment.isCurve)
                raw("C").point(segment.control1).raw(" ").point(segment.control2).raw(" ");
            else
                raw("L");
            point(segment.end);
        }
    }
    return *this;
}

SvgText& SvgText::escaped(std::string_view text) {
    using tessera_support::XmlPlace;
    tessera_support::writeXmlEscaped<XmlPlace::drawing>(text, [this](std::string_view piece) { raw(piece); });
    return *this;
}

SvgText& SvgText::attribute(std::string_view name, std::string_view value) {
    return raw(" ").raw(name).raw("=\"").escaped(value).raw("\"");
}

SvgText& SvgText::attribute(std::string_view name, double value) {
    return raw(" ").raw(name).raw("=\"").number(value).raw("\"");
}

}  // namespace tessera_draw
