// The one error type of the host and the program, and how a function hands it to its caller.
#pragma once

#include <cassert>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// What a caller does about an error: each kind is another exit status of the program.
enum class ErrorKind {
    failed,      // the content is wrong, or the work could not be done
    cannotOpen,  // a file or a server could not be opened, read or written
    cancelled,   // the work was stopped by its CancelToken; nothing is wrong
    usage,       // the caller named something that does not exist, or things that exclude each other
};

// Why something could not be done. Made where the failure is found; its callers hand it on unchanged, or add
// the name of the file. It is printed in one place, at the end. Results of checks are lists of Problem
// instead.
struct Error {
    ErrorKind kind = ErrorKind::failed;
    // One line of UTF-8 for people, without the name of the document, without a full stop.
    std::string text;
    // The place in the document; line 0 when there is none.
    basekit2::source_position_t position = {};

    // Callers that print errors ask this first: the user has stopped the work and needs no message.
    [[nodiscard]] bool isCancelled() const noexcept { return kind == ErrorKind::cancelled; }

    friend bool operator==(const Error&, const Error&) = default;
};

// The error of work that was stopped by its token.
[[nodiscard]] inline Error cancelledError() {
    return {ErrorKind::cancelled, "cancelled", {}};
}

// "file:line:column", or "file" when there is no position. `file` is what the user called it.
[[nodiscard]] inline std::string placeIn(std::string_view file, basekit2::source_position_t position) {
    std::string place(file);
    if (position.line != 0)
        place += ':' + std::to_string(position.line) + ':' + std::to_string(position.column);
    return place;
}

// "file:line:column: text", or "file: text" when the error has no position.
[[nodiscard]] inline std::string describe(const Error& error, std::string_view file) {
    return placeIn(file, error.position) + ": " + error.text;
}

// A value, or the error because of which there is none. Returned by functions that can fail; the caller hands
// the error on with `return result.error();` or `return std::move(result).error();`.
// Moving from it leaves a value or an error that may only be destroyed or assigned to.
template <class T>
class [[nodiscard]] Expected {
  public:
    // Implicit, so that a function may return either as it is.
    Expected(T value) : m_content(std::in_place_index<0>, std::move(value)) {}      // NOLINT: implicit
    Expected(Error error) : m_content(std::in_place_index<1>, std::move(error)) {}  // NOLINT: implicit

    // True when there is a value. `if (const auto result = ...)` asks the same.
    [[nodiscard]] bool hasValue() const noexcept { return m_content.index() == 0; }
    explicit operator bool() const noexcept { return hasValue(); }

    // These REQUIRE a value; debug builds assert it. References are valid as long as this object.
    [[nodiscard]] T& operator*() & noexcept { return *valuePointer(); }
    [[nodiscard]] const T& operator*() const& noexcept { return *std::as_const(*this).valuePointer(); }
    [[nodiscard]] T&& operator*() && noexcept { return std::move(*valuePointer()); }
    [[nodiscard]] T* operator->() noexcept { return valuePointer(); }
    [[nodiscard]] const T* operator->() const noexcept { return valuePointer(); }

    // These REQUIRE an error.
    [[nodiscard]] const Error& error() const& noexcept {
        assert(!hasValue());
        return *std::get_if<1>(&m_content);
    }
    [[nodiscard]] Error&& error() && noexcept {
        assert(!hasValue());
        return std::move(*std::get_if<1>(&m_content));
    }

  private:
    [[nodiscard]] T* valuePointer() noexcept {
        assert(hasValue());
        return std::get_if<0>(&m_content);
    }
    [[nodiscard]] const T* valuePointer() const noexcept {
        assert(hasValue());
        return std::get_if<0>(&m_content);
    }

    std::variant<T, Error> m_content;
};

// For functions that make no value: success, or the error.
template <>
class [[nodiscard]] Expected<void> {
  public:
    Expected() noexcept = default;
    Expected(Error error) : m_error(std::move(error)) {}  // NOLINT: implicit

    // True when the work succeeded.
    [[nodiscard]] bool hasValue() const noexcept { return !m_error.has_value(); }
    explicit operator bool() const noexcept { return hasValue(); }

    // These REQUIRE an error.
    [[nodiscard]] const Error& error() const& noexcept {
        assert(m_error.has_value());
        return *m_error;  // NOLINT(bugprone-unchecked-optional-access): required above
    }
    [[nodiscard]] Error&& error() && noexcept {
        assert(m_error.has_value());
        return std::move(*m_error);  // NOLINT(bugprone-unchecked-optional-access): required above
    }

  private:
    std::optional<Error> m_error;
};

}  // namespace tessera_host
