// Writes texts and numbers of an SVG document to an output, in blocks.
#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

#include "draw/geometry.h"
#include "draw/output.h"
#include "draw/scene.h"

namespace tessera_draw {

// Appends to a block that is passed to the output when it is full. After a failure the output is not called
// again; finish() reports it. The output must outlive this object.
class SvgText {
  public:
    explicit SvgText(Output& output);

    // Appends markup as it is.
    SvgText& raw(std::string_view text) {
        if (text.size() > available()) return rawInPieces(text);
        m_at = std::copy(text.begin(), text.end(), m_at);
        return *this;
    }
    // Appends a number with at most two decimals after a point, whatever the locale is. NaN is written as 0,
    // and numbers beyond 1e9 as 1e9 with their sign.
    SvgText& number(double value);
    // Appends both coordinates, with a space between them.
    SvgText& point(Point point);
    // Appends the line as the data of an SVG path.
    SvgText& path(const LineShape& line);
    // Appends any text, escaped for content and for attributes in double quotes. White space becomes spaces,
    // and what XML does not allow U+FFFD.
    SvgText& escaped(std::string_view text);
    // Appends a space and an attribute, its value escaped. `name` is written as it is.
    SvgText& attribute(std::string_view name, std::string_view value);
    SvgText& attribute(std::string_view name, double value);

    // Passes the rest to the output. Returns false if the output did not take everything.
    bool finish();

  private:
    [[nodiscard]] std::size_t available() const noexcept {
        return static_cast<std::size_t>(m_block.data() + m_block.size() - m_at);
    }
    SvgText& rawInPieces(std::string_view text);  // for text that the block cannot hold
    void handOn();                                // empties the block

    Output& m_output;
    std::vector<char> m_block;
    char* m_at;  // the end of the block's contents
    bool m_good = true;
};

}  // namespace tessera_draw
