// A tagged value.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/export.h"

namespace basekit2 {

// Holds nothing, a byte string of less than 4 GiB (a longer one throws std::length_error), a 64-bit signed
// integer or a boolean. Strings are UTF-8 by convention and may hold NUL bytes; nothing validates them.
//
// Copies own their text. A value inside a bag refers to text that the bag owns: a reference to such a value,
// and the text that it returns, stay valid as long as the value is not overwritten and the bag's tree lives.
//
// Several threads may read one variant at once; whoever changes it must be alone.
class TESSERA_PLATFORM_EXPORT variant_t {
  public:
    enum class type_t : std::uint8_t { none, string, integer, boolean };

    variant_t() noexcept = default;
    // Implicit, so that a value can be put into a bag as it is. Text is copied. REQUIRES: a `const char*` is
    // not null.
    // NOLINTBEGIN(google-explicit-constructor)
    variant_t(std::string_view text);
    variant_t(const std::string& text) : variant_t(std::string_view(text)) {}
    variant_t(const char* text) : variant_t(std::string_view(text)) {}
    template <std::same_as<bool> T>
    variant_t(T flag) noexcept : m_type(type_t::boolean) {
        m_data.boolean = flag;
    }
    // Signed integers of any width are sign-extended. Unsigned ones do not compile: convert them first.
    template <std::signed_integral T>
    variant_t(T number) noexcept : m_type(type_t::integer) {
        m_data.integer = number;
    }
    // NOLINTEND(google-explicit-constructor)

    // A deep copy: its text is its own, also when `other` is a value inside a bag.
    variant_t(const variant_t& other);
    // Leaves `other` without a value, except when it is a value inside a bag: that one stays as it is and its
    // text is copied.
    variant_t(variant_t&& other) noexcept;
    // For a variant of the caller's own; a value inside a bag is changed by the bag's put() only.
    variant_t& operator=(variant_t other) noexcept;
    ~variant_t();

    // What it holds; `none` after default construction and after a move.
    [[nodiscard]] type_t type() const noexcept { return m_type; }

    // True when get<T>() has a value to return. T is const char*, std::string_view, std::int64_t or bool; the
    // first two are the same type. No conversion is made: the string "1" is neither an integer nor a boolean.
    template <class T>
    [[nodiscard]] bool can_get() const noexcept {
        if constexpr (std::same_as<T, const char*> || std::same_as<T, std::string_view>)
            return m_type == type_t::string;
        else if constexpr (std::same_as<T, std::int64_t>)
            return m_type == type_t::integer;
        else
            return m_type == type_t::boolean;
    }

    // The value as a T. REQUIRES: can_get<T>(). When it is of another type, raises the assertion
    // "can_get<T>()" and, if that returns, returns an empty text, 0 or false. Text is NUL-terminated, belongs
    // to this variant and is never null; as a const char* it ends at its first NUL byte.
    template <class T>
    [[nodiscard]] T get() const;

    // Same type and same value; texts are compared byte by byte. Two that hold nothing are equal.
    friend TESSERA_PLATFORM_EXPORT bool operator==(const variant_t& a, const variant_t& b) noexcept;

  private:
    friend class variant_bag_t;
    struct borrowed_t {};

    // Refers to NUL-terminated text that the caller keeps alive.
    variant_t(borrowed_t, std::string_view text);

    union {
        const char* text = nullptr;
        std::int64_t integer;
        bool boolean;
    } m_data;
    std::uint32_t m_size = 0;
    type_t m_type = type_t::none;
    bool m_owned = false;
};

template <>
TESSERA_PLATFORM_EXPORT const char* variant_t::get<const char*>() const;
template <>
TESSERA_PLATFORM_EXPORT std::string_view variant_t::get<std::string_view>() const;
template <>
TESSERA_PLATFORM_EXPORT std::int64_t variant_t::get<std::int64_t>() const;
template <>
TESSERA_PLATFORM_EXPORT bool variant_t::get<bool>() const;

}  // namespace basekit2
