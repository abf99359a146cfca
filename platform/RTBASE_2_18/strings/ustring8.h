// Text of the host runtime.
#pragma once

#include <string>
#include <utility>

namespace RTBASE_2_18::strings {

// A UTF-8 string that owns its bytes. The encoding is the maker's promise; nothing here validates it. Error
// messages and rendered catalogue texts are passed as this type, so that they are not mixed up with ids and
// keys. One object may be read by several threads at once.
class ustring8 {
  public:
    ustring8() = default;
    // REQUIRES: `text` is UTF-8 when people will read it. It may hold NUL bytes.
    explicit ustring8(std::string text) : m_text(std::move(text)) {}

    [[nodiscard]] bool empty() const noexcept { return m_text.empty(); }
    // NUL-terminated, never null; valid as long as this object is neither changed nor destroyed. A text with
    // a NUL byte in it appears truncated; str() has all of it.
    [[nodiscard]] const char* c_str() const noexcept { return m_text.c_str(); }
    [[nodiscard]] const std::string& str() const noexcept { return m_text; }

    // Compares bytes; no normalization.
    friend bool operator==(const ustring8&, const ustring8&) = default;

  private:
    std::string m_text;
};

}  // namespace RTBASE_2_18::strings

// Makes a ustring8 from a literal or a std::string; the host runtime's name for it.
#define _U(text) (::RTBASE_2_18::strings::ustring8(text))  // NOLINT(bugprone-reserved-identifier)
