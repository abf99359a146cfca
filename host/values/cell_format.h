// How the values of a query are written for people.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tessera_host {

// What a query yields: NULL, an integer, a real, or text (any bytes).
using CellValue = std::variant<std::monostate, std::int64_t, double, std::string>;

// The bytes of its text; 0 for a value of another kind.
[[nodiscard]] inline std::size_t sizeOf(const CellValue& value) noexcept {
    const auto* text = std::get_if<std::string>(&value);
    return text == nullptr ? 0 : text->size();
}

// The form of numbers, written NAME or NAME:N with N from 0 to 17:
//   plain       as they stand; takes no N
//   fixed:N     N digits after the point (2 when N is not given)
//   si:N        N significant digits (3) and one of the prefixes k M G T P
//   binary:N    the same in powers of 1024, with Ki Mi Gi Ti Pi
//   percent:N   times 100, N digits after the point (1)
//   duration:N  seconds as a duration, N significant digits below a minute (3)
// Where N counts significant digits, 0 is taken as 1.
struct CellFormat {
    enum class Kind : std::uint8_t { plain, fixed, si, binary, percent, duration };

    Kind kind = Kind::plain;
    int digits = 0;

    // The format that `text` names; plain for an empty text, none for any other text.
    [[nodiscard]] static std::optional<CellFormat> parse(std::string_view text);

    friend bool operator==(const CellFormat&, const CellFormat&) = default;
};

// The text of a cell, always valid UTF-8: bytes that are none become U+FFFD.
//
//   NULL      the empty text, without a unit; so is an empty text.
//   plain     integers and text as they stand, reals in the shortest form that reads back equal; the unit
//             follows after a space.
//   numbers   rounded exactly to the nearest, ties to the even digit; zero has no sign.
//   si        the prefix is chosen after rounding: 999.6 thousand with three digits are "1.00 M". Values
//             below 1,000 have none. From 10^21 on and below 10^-6 numbers are written as 1.23e+21, without a
//             prefix.
//   percent   the sign "%" follows after a space and then the unit, unless that is "%".
//   duration  below a minute in ns, µs, ms or s: "1.25 ms"; from there on in the two units that fit, the last
//             one rounded and left out when it is 0: "2 min 5 s", "3 h 20 min", "4 d 6 h". 0 is "0 s". From
//             2^53 seconds on and below 10^-15: "1.23e+20 s". The unit follows, unless that is "s".
//   text      under another format than plain: formatted as a number when the whole text is one, otherwise as
//             it stands and without the unit.
//   infinities and NaN: "inf", "-inf", "nan" in the place of the digits.
[[nodiscard]] std::string formatCell(const CellValue& value, const CellFormat& format, std::string_view unit);

}  // namespace tessera_host
