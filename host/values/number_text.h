// Numbers written as text.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>

namespace tessera_host {

using Number = std::variant<std::int64_t, double>;

// True when the whole text is one decimal number: an optional sign, digits with an optional point among,
// before or after them, an optional exponent. No spaces, no hexadecimal form, no names of infinities.
[[nodiscard]] bool isNumeric(std::string_view text) noexcept;

// The number that the whole text is, or none: also when its magnitude is beyond what a double can hold.
// Numbers without point and exponent are integers as long as they fit into 64 bits.
[[nodiscard]] std::optional<Number> readNumber(std::string_view text) noexcept;

// True when the text is an integer of 64 bits in the one form in which it is usually written: no "+", no
// leading zeros, no "-0". Two such texts are equal exactly when their numbers are.
[[nodiscard]] bool isCanonicalInteger(std::string_view text) noexcept;

}  // namespace tessera_host
