// Storage for the texts of a layout or scene, which are kept as views everywhere else.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace tessera_draw {

// Copies texts into large blocks. The returned views stay valid until the arena is destroyed; moving the
// arena keeps them valid, as the blocks do not move. A moved-from arena may only be destroyed or assigned to.
// Texts cannot be removed one by one. Not safe for two threads at once.
class TextArena {
  public:
    // Returns the copy of `text`, which may itself be a view into this arena, without a terminating null; an
    // empty view for "". Equal texts are copied again. Linear in the length; allocates only when the current
    // block is full.
    std::string_view add(std::string_view text) {
        if (text.empty()) return {};
        if (text.size() > m_free) grow(text.size());
        char* const copy = m_next;
        std::copy(text.begin(), text.end(), copy);
        m_next += text.size();
        m_free -= text.size();
        return {copy, text.size()};
    }

  private:
    void grow(std::size_t size) {
        constexpr std::size_t blockSize = 65536;
        m_free = std::max(size, blockSize);
        // Not initialised: every byte is written before it is read.
        m_next = m_blocks.emplace_back(new char[m_free]).get();
    }

    std::vector<std::unique_ptr<char[]>> m_blocks;  // full ones and, as the last, the current one
    char* m_next = nullptr;                         // in the current block
    std::size_t m_free = 0;                         // bytes from there to its end
};

}  // namespace tessera_draw
