// SVG's letters and numbers, collected in blocks.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "draw/geometry.h"
#include "draw/output.h"
#include "draw/scene.h"

namespace tessera_draw {

// Appends to a block that is handed on when it is full. After a failure nothing more is handed on.
class SvgText {
  public:
    explicit SvgText(Output& output);

    // Text that is SVG already.
    SvgText& raw(std::string_view text) {
        if (text.size() > available()) return rawInPieces(text);
        m_at = std::copy(text.begin(), text.end(), m_at);
        return *this;
    }
    // With at most two digits behind the point, in no locale. What is no number, or beyond a thousand
    // million, is drawn at the nearest that is.
    SvgText& number(double value);
    SvgText& point(Point point);
    // The data of an SVG path.
    SvgText& path(const LineShape& line);
    // Text of others, as content or in an attribute in double quotes: nothing in it can end either, and what
    // XML cannot carry is U+FFFD.
    SvgText& escaped(std::string_view text);
    // The same with white space as blanks and none at the ends, for what is shown.
    SvgText& attribute(std::string_view name, std::string_view value);
    SvgText& attribute(std::string_view name, double value);

    // Hands on what is left. False when anything could not be handed on.
    bool finish();

  private:
    [[nodiscard]] std::size_t available() const noexcept {
        return static_cast<std::size_t>(m_block.data() + m_block.size() - m_at);
    }
    SvgText& rawInPieces(std::string_view text);
    void handOn();

    Output& m_output;
    std::vector<char> m_block;
    char* m_at;  // behind what the block holds
    bool m_good = true;
};

}  // namespace tessera_draw
