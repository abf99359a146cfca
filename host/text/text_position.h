// From an offset in a text to line and column.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// Lines and columns count from 1. A column is one character of UTF-8, whatever number of bytes it takes; a
// tab is one column. A line ends with LF, CR LF or CR. A byte order mark at the beginning takes no column.
//
// Remembers the last place: calls in ascending order walk over the text once in total; a step back starts
// again from its beginning. One thread at a time.
class TextPosition {
  public:
    // `text` has to outlive this object.
    explicit TextPosition(std::string_view text) noexcept;

    // REQUIRES: offset <= text.size().
    basekit2::source_position_t at(std::size_t offset) noexcept;

  private:
    void rewind() noexcept;
    void advance(std::size_t end) noexcept;
    bool advanceByWord(std::size_t end) noexcept;
    void advanceByByte() noexcept;

    std::string_view m_text;
    std::size_t m_offset = 0;
    basekit2::source_position_t m_position;
};

}  // namespace tessera_host
