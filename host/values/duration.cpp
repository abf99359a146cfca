#include "host/values/duration.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "host/values/decimal.h"

namespace tessera_host {
namespace {

// Whole seconds are exact up to here.
constexpr double maxSeconds = 9007199254740992.0;
constexpr int minExponent = -15;

struct Fraction {
    std::string_view name;
    int exponent;  // in seconds, as a power of ten
};
constexpr std::array<Fraction, 4> fractions{{{"s", 0}, {"ms", -3}, {"µs", -6}, {"ns", -9}}};

std::int64_t rounded(double value) {
    return std::llround(value);
}

bool isBelowMinute(const Decimal& seconds) {
    if (seconds.exponent != 1) return seconds.exponent < 1;
    return seconds.digits.front() < '6';
}

std::string shortText(const Decimal& seconds) {
    const Fraction* fit = &fractions.back();
    for (std::size_t i = fractions.size(); i-- > 0;)
        if (seconds.exponent >= fractions[i].exponent) fit = &fractions[i];
    return positionalText(seconds, fit->exponent).append(" ").append(fit->name);
}

std::string twoUnits(std::int64_t count, std::int64_t factor, std::string_view large,
                     std::string_view small) {
    std::string text = std::to_string(count / factor).append(" ").append(large);
    if (count % factor != 0)
        text.append(" ").append(std::to_string(count % factor)).append(" ").append(small);
    return text;
}

// Rounding may lead to a full hour or day, so each step looks at what was rounded.
std::string longText(double seconds) {
    if (rounded(seconds) < 3600) return twoUnits(rounded(seconds), 60, "min", "s");
    if (rounded(seconds / 60) < 1440) return twoUnits(rounded(seconds / 60), 60, "h", "min");
    return twoUnits(rounded(seconds / 3600), 24, "d", "h");
}

}  // namespace

std::string durationText(const Number& seconds, int digits) {
    const Decimal decimal = roundToSignificant(seconds, digits);
    if (decimal.isZero()) return "0 s";
    const double size = std::abs(std::visit([](auto value) { return static_cast<double>(value); }, seconds));
    if (size >= maxSeconds || decimal.exponent < minExponent) return scientificText(decimal) + " s";
    if (isBelowMinute(decimal)) return shortText(decimal);
    const std::string sign = decimal.isNegative ? "-" : "";
    return sign + longText(std::max(size, 60.0));
}

}  // namespace tessera_host
