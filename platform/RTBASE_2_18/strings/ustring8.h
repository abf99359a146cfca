// Text of the host runtime.
#pragma once

#include <string>
#include <utility>

namespace RTBASE_2_18::strings {

// A UTF-8 string.
class ustring8 {
  public:
    ustring8() = default;
    explicit ustring8(std::string text) : m_text(std::move(text)) {}

    [[nodiscard]] bool empty() const noexcept { return m_text.empty(); }
    [[nodiscard]] const char* c_str() const noexcept { return m_text.c_str(); }
    [[nodiscard]] const std::string& str() const noexcept { return m_text; }

    friend bool operator==(const ustring8&, const ustring8&) = default;

  private:
    std::string m_text;
};

}  // namespace RTBASE_2_18::strings

// Makes a ustring8 from a literal; the host runtime's name for it.
#define _U(text) (::RTBASE_2_18::strings::ustring8(text))  // NOLINT(bugprone-reserved-identifier)
