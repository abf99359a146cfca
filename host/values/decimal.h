// Numbers as rounded decimal digits. Rounding is exact: to the nearest, and from the middle to the even
// digit. Nothing here depends on the locale.
#pragma once

#include <string>

#include "host/values/number_text.h"

namespace tessera_host {

// The value d.ddd * 10^exponent, where the digits are those of the text without a point.
struct Decimal {
    bool isNegative = false;
    std::string digits;  // at least one; the first is 0 only when the value is
    int exponent = 0;

    [[nodiscard]] bool isZero() const noexcept { return digits.front() == '0'; }
};

// `number` rounded to `count` significant digits; zero has that many zeros.
// REQUIRES: `number` is finite, 1 <= count <= 17.
[[nodiscard]] Decimal roundToSignificant(const Number& number, int count);

// The value divided by 10^shift, with a point where needed and without an exponent.
[[nodiscard]] std::string positionalText(const Decimal& decimal, int shift);

// The value as d.dde+XX.
[[nodiscard]] std::string scientificText(const Decimal& decimal);

// `number` with exactly `places` digits after the point, none of them lost. A zero has no sign.
// REQUIRES: `number` is finite, 0 <= places <= 19.
[[nodiscard]] std::string fixedText(const Number& number, int places);

}  // namespace tessera_host
