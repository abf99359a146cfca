// Result codes and the table of errors that they are raised from.
//
// An operation returns an error_code_t. It reports a failure once, where it finds it, and then returns the
// false code, so that callers continue and report nothing again; it returns a raised error when its caller
// has to know which error it is.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "platform/RTBASE_2_18/strings/ustring8.h"
#include "platform/export.h"

namespace basekit2 {

namespace error {
struct entry_t;
}

// One error of the table with the message of one occurrence, ready to be raised. Made only by calling a table
// entry: `bk2::error::IsNot.Valid.Data(_U("..."))`. So its number is always one that a code can hold. The
// message is for people: UTF-8, one line.
class error_t {
  public:
    [[nodiscard]] std::uint32_t number() const noexcept { return m_number; }
    [[nodiscard]] const RTBASE_2_18::strings::ustring8& message() const noexcept { return m_message; }

  private:
    friend struct error::entry_t;
    error_t(std::uint32_t number, RTBASE_2_18::strings::ustring8 message)
        : m_number(number), m_message(std::move(message)) {}

    std::uint32_t m_number;
    RTBASE_2_18::strings::ustring8 m_message;
};

namespace error {

// A row of the error table: the number is unique, the name is what people see ("IsNot.Valid.Data"). Both are
// constants of the binary interface. A host that adds an entry of its own keeps it for the life of the
// process; error_code_t::name() knows the entries of this file only.
struct entry_t {
    static constexpr std::uint32_t maxNumber = 254;  // a code has eight bits for it

    // A number above maxNumber does not compile.
    consteval entry_t(std::uint32_t entryNumber, const char* entryName)
        : number(entryNumber), name(entryName) {
        if (entryNumber > maxNumber) refuse();
    }

    const std::uint32_t number;  // never changed after the check in the constructor
    const char* const name;      // NUL-terminated; a literal

    // This error with a message; nothing is raised yet. See error_code_t::raise().
    [[nodiscard]] error_t operator()(RTBASE_2_18::strings::ustring8 message) const {
        return {number, std::move(message)};
    }

  private:
    static void refuse() {}  // not a constant expression
};

// What the caller passed in is unusable.
struct is_not_t {
    struct valid_t {
        // Data: missing, of a wrong type, or empty where it must not be. Range: a number outside of its
        // bounds.
        entry_t Data{1, "IsNot.Valid.Data"};
        entry_t Range{2, "IsNot.Valid.Range"};
    } Valid;
};

inline constexpr is_not_t IsNot;
// The operation could not be done. From a request handler: it does not know the request, whose name is the
// message.
inline constexpr entry_t FailedTo{3, "FailedTo"};
// The operation ended early because its IProgress reported cancellation. Nothing is wrong.
inline constexpr entry_t Cancelled{4, "Cancelled"};

}  // namespace error

// The result of an operation, 64 bits:
//   0      success;
//   1      "false": a negative or soft result whose reason was already reported where it was found;
//   other an error raised from the table, with message and place. A code is a plain value that owns nothing;
//   copy and compare it freely. Message and place of a raised one are kept by the process, for the latest
//   raises of all threads: 65,536 of them, fewer when their texts together exceed 4 MiB. Any thread can read
//   them, not only the one that raised. For an earlier raise message(), function() and file() are empty and
//   line() is 0; the name stays.
class [[nodiscard]] error_code_t {
  public:
    constexpr error_code_t() noexcept = default;

    static constexpr error_code_t success() noexcept { return {}; }
    // For a failure that was already reported, and for "nothing to do". See is_false().
    static constexpr error_code_t false_code() noexcept { return error_code_t(1); }

    // Makes a code for `error` and keeps message and place with the process; logs nothing. `function` and
    // `file` are copied and must not be null. Every call makes a new value. Any thread; takes a lock for a
    // moment, so it does not belong into inner loops.
    TESSERA_PLATFORM_EXPORT static error_code_t raise(const error_t& error, const char* function,
                                                      const char* file, int line);

    // True for success and for "false"; false for every raised error. A caller that must tell the first two
    // apart uses is_success().
    [[nodiscard]] constexpr bool succeeded() const noexcept { return m_value <= 1; }
    [[nodiscard]] constexpr bool is_success() const noexcept { return m_value == 0; }
    [[nodiscard]] constexpr bool is_false() const noexcept { return m_value == 1; }
    // True when the code was raised from this entry of the table, whatever the message.
    [[nodiscard]] constexpr bool is(const error::entry_t& entry) const noexcept {
        return !succeeded() && number() == entry.number;
    }

    // The 64 bits as they cross a binary interface. Of a raised error only equality means something.
    [[nodiscard]] constexpr std::uint64_t value() const noexcept { return m_value; }
    // "success", "false", or the table's name of the error; "unknown" for an entry that the table lacks.
    // Never null; valid for the life of the process.
    [[nodiscard]] TESSERA_PLATFORM_EXPORT const char* name() const noexcept;
    // Message and place of the raise, as copies; "" and 0 for success, for "false" and for a raise that is no
    // longer kept. Any thread.
    [[nodiscard]] TESSERA_PLATFORM_EXPORT std::string message() const;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT std::string function() const;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT std::string file() const;
    [[nodiscard]] TESSERA_PLATFORM_EXPORT int line() const;

    // Same value: two raises of one error differ. To recognise an error use is().
    friend constexpr bool operator==(error_code_t, error_code_t) noexcept = default;

  private:
    explicit constexpr error_code_t(std::uint64_t value) noexcept : m_value(value) {}
    // A raised value is the raise's running number times 256, plus the entry's number plus 1; the running
    // number starts at 1, so the value is never 0 or 1.
    [[nodiscard]] constexpr std::uint32_t number() const noexcept {
        return static_cast<std::uint32_t>(m_value & 0xFF) - 1;
    }

    std::uint64_t m_value = 0;
};

}  // namespace basekit2

// The short name under which errors are written in code and in logs.
namespace bk2 = basekit2;
