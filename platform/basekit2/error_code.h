// Result codes and the table of errors that they are raised from.
#pragma once

#include <cstdint>
#include <string>

#include "platform/RTBASE_2_18/strings/ustring8.h"
#include "platform/export.h"

namespace basekit2 {

// One error of the table with the message of one occurrence. Made by calling a table entry:
// `bk2::error::IsNot.Valid.Data(_U("..."))`.
struct error_t {
    std::uint32_t number = 0;
    RTBASE_2_18::strings::ustring8 message;
};

namespace error {

// A row of the error table: the number is unique, the name is what people see ("IsNot.Valid.Data").
struct entry_t {
    static constexpr std::uint32_t maxNumber = 254;  // a code has eight bits for it

    // A number above maxNumber does not compile.
    consteval entry_t(std::uint32_t entryNumber, const char* entryName)
        : number(entryNumber), name(entryName) {
        if (entryNumber > maxNumber) refuse();
    }

    std::uint32_t number;
    const char* name;

    [[nodiscard]] error_t operator()(RTBASE_2_18::strings::ustring8 message) const {
        return {number, std::move(message)};
    }

  private:
    static void refuse() {}  // not a constant expression
};

struct is_not_t {
    struct valid_t {
        entry_t Data{1, "IsNot.Valid.Data"};
        entry_t Range{2, "IsNot.Valid.Range"};
    } Valid;
};

inline constexpr is_not_t IsNot;
inline constexpr entry_t FailedTo{3, "FailedTo"};
inline constexpr entry_t Cancelled{4, "Cancelled"};

}  // namespace error

// The result of an operation, 64 bits:
//   0      success;
//   1      "false": a negative or soft result whose reason was already reported where it was found;
//   other  an error raised from the table, with message and place.
// A raised code is a plain value; what it says is kept by the process for the latest raises of all threads
// (tens of thousands, fewer with long messages) and can be asked for by any thread. For an earlier one
// message() is empty and line() is 0, the name stays.
class [[nodiscard]] error_code_t {
  public:
    constexpr error_code_t() noexcept = default;

    static constexpr error_code_t success() noexcept { return {}; }
    static constexpr error_code_t false_code() noexcept { return error_code_t(1); }

    // Makes a code for `error` and remembers message and place. `function` and `file` are copied.
    TESSERA_PLATFORM_EXPORT static error_code_t raise(const error_t& error, const char* function,
                                                      const char* file, int line);

    // True for success and for "false"; false for every raised error.
    [[nodiscard]] constexpr bool succeeded() const noexcept { return m_value <= 1; }
    [[nodiscard]] constexpr bool is_success() const noexcept { return m_value == 0; }
    [[nodiscard]] constexpr bool is_false() const noexcept { return m_value == 1; }
    // True when the code was raised from this entry of the table, whatever the message.
    [[nodiscard]] constexpr bool is(const error::entry_t& entry) const noexcept {
        return !succeeded() && number() == entry.number;
    }

    [[nodiscard]] constexpr std::uint64_t value() const noexcept { return m_value; }
    // "success", "false", or the table's name of the error.
    [[nodiscard]] TESSERA_PLATFORM_EXPORT const char* name() const noexcept;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT std::string message() const;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT std::string function() const;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT std::string file() const;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT int line() const;

    // Same kind of result at the same raise; two raises of one error are different values.
    friend constexpr bool operator==(error_code_t, error_code_t) noexcept = default;

  private:
    explicit constexpr error_code_t(std::uint64_t value) noexcept : m_value(value) {}
    // A raised value is the raise's running number times 256 plus the entry's number plus 1 (so never 0 or
    // 1).
    [[nodiscard]] constexpr std::uint32_t number() const noexcept {
        return static_cast<std::uint32_t>(m_value & 0xFF) - 1;
    }

    std::uint64_t m_value = 0;
};

}  // namespace basekit2

// The short name under which errors are written in code and in logs.
namespace bk2 = basekit2;
