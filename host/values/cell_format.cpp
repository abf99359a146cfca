#include "host/values/cell_format.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "host/values/decimal.h"
#include "host/values/duration.h"
#include "support/utf8.h"

namespace tessera_host {
namespace {

using Kind = CellFormat::Kind;

struct FormatName {
    std::string_view name;
    Kind kind;
    int defaultDigits;
};

constexpr std::array<FormatName, 6> formatNames{{{"plain", Kind::plain, 0},
                                                 {"fixed", Kind::fixed, 2},
                                                 {"si", Kind::si, 3},
                                                 {"binary", Kind::binary, 3},
                                                 {"percent", Kind::percent, 1},
                                                 {"duration", Kind::duration, 3}}};
// 17 significant digits tell any two doubles apart; more would be noise.
constexpr int maxDigits = 17;

using Prefixes = std::array<std::string_view, 6>;
constexpr Prefixes siPrefixes{"", "k", "M", "G", "T", "P"};
constexpr Prefixes binaryPrefixes{"", "Ki", "Mi", "Gi", "Ti", "Pi"};
constexpr std::size_t lastPrefix = siPrefixes.size() - 1;

// Outside of these powers of ten a number without an exponent would be a row of zeros.
constexpr int minExponent = -6;
constexpr int maxExponent = 20;

int significantDigits(const CellFormat& format) {
    return format.digits > 0 ? format.digits : 1;
}

std::string withSuffix(std::string number, std::string_view suffix) {
    if (!suffix.empty()) number.append(" ").append(suffix);
    return number;
}

std::string withPrefixedUnit(std::string number, std::string_view prefix, std::string_view unit) {
    return withSuffix(std::move(number), std::string(prefix).append(unit));
}

bool isWithinReach(const Decimal& decimal) {
    return decimal.isZero() || (decimal.exponent >= minExponent && decimal.exponent <= maxExponent);
}

std::string siText(const Number& number, int digits, std::string_view unit) {
    const Decimal rounded = roundToSignificant(number, digits);
    if (!isWithinReach(rounded)) return withSuffix(scientificText(rounded), unit);
    // Numbers below 1 stay without prefix: there are none for milli and smaller.
    const int power = rounded.exponent < 0 ? 0 : rounded.exponent / 3;
    const std::size_t index = std::min(static_cast<std::size_t>(power), lastPrefix);
    return withPrefixedUnit(positionalText(rounded, 3 * static_cast<int>(index)), siPrefixes[index], unit);
}

// True from 1024 on, looking at what the reader will see.
bool reachesNextBinaryPrefix(const Decimal& rounded) {
    if (rounded.exponent != 3) return rounded.exponent > 3;
    return std::string(rounded.digits).append("000").substr(0, 4) >= "1024";
}

std::string binaryText(const Number& number, int digits, std::string_view unit) {
    Decimal rounded = roundToSignificant(number, digits);
    if (!isWithinReach(rounded)) return withSuffix(scientificText(rounded), unit);
    double scaled = std::visit([](auto value) { return static_cast<double>(value); }, number);
    std::size_t index = 0;
    for (; index < lastPrefix && (std::abs(scaled) >= 1024 || reachesNextBinaryPrefix(rounded)); ++index) {
        // Exact, because 1024 is a power of two.
        scaled /= 1024;
        if (std::abs(scaled) < 1)
            scaled = std::copysign(1.0, scaled);  // it was rounded up to the next prefix
        rounded = roundToSignificant(scaled, digits);
    }
    return withPrefixedUnit(positionalText(rounded, 0), binaryPrefixes[index], unit);
}

// Two more places, then the point moved by two: nothing is lost by multiplying.
std::string percentText(const Number& number, int places) {
    std::string text = fixedText(number, places + 2);
    const std::size_t point = text.find('.');
    text.erase(point, 1);
    if (places > 0) text.insert(point + 2, 1, '.');
    const std::size_t first = text.front() == '-' ? 1 : 0;
    const std::size_t lastWhole = point + 1;  // the last digit before the point stays, whatever it is
    const std::size_t kept = std::min(text.find_first_not_of('0', first), lastWhole);
    text.erase(first, kept - first);
    return text;
}

std::string plainText(double value) {
    std::array<char, 64> buffer{};
    // Also for -0.0, whose sign means nothing to a reader.
    if (value == 0) return "0";
    const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

std::string percentSuffix(std::string_view unit) {
    return unit.empty() || unit == "%" ? "%" : std::string("% ").append(unit);
}

std::string nonFiniteText(double value, const CellFormat& format, std::string_view unit) {
    const char* name = std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    return withSuffix(name, format.kind == Kind::percent ? percentSuffix(unit) : std::string(unit));
}

std::string formatNumber(const Number& number, const CellFormat& format, std::string_view unit) {
    const auto* real = std::get_if<double>(&number);
    if (real && !std::isfinite(*real)) return nonFiniteText(*real, format, unit);
    switch (format.kind) {
        case Kind::plain:
            return withSuffix(real ? plainText(*real) : std::to_string(std::get<std::int64_t>(number)), unit);
        case Kind::fixed:
            return withSuffix(fixedText(number, format.digits), unit);
        case Kind::si:
            return siText(number, significantDigits(format), unit);
        case Kind::binary:
            return binaryText(number, significantDigits(format), unit);
        case Kind::percent:
            return withSuffix(percentText(number, format.digits), percentSuffix(unit));
        case Kind::duration:
            return withSuffix(durationText(number, significantDigits(format)),
                              unit == "s" ? std::string_view() : unit);
    }
    return {};
}

// Databases keep numbers as text, too. Other texts have a unit in the plain format only.
std::string formatText(const std::string& text, const CellFormat& format, std::string_view unit) {
    if (text.empty()) return {};
    if (format.kind == Kind::plain) return withSuffix(text, unit);
    if (const auto number = readNumber(text)) return formatNumber(*number, format, unit);
    return text;
}

}  // namespace

std::optional<CellFormat> CellFormat::parse(std::string_view text) {
    if (text.empty()) return CellFormat();
    const std::size_t colon = text.find(':');
    for (const FormatName& format : formatNames) {
        if (format.name != text.substr(0, colon)) continue;
        if (colon == std::string_view::npos) return CellFormat{format.kind, format.defaultDigits};
        const std::string_view count = text.substr(colon + 1);
        int digits = -1;
        const auto [end, error] = std::from_chars(count.data(), count.data() + count.size(), digits);
        const bool isWhole = error == std::errc() && end == count.data() + count.size();
        if (!isWhole || format.kind == Kind::plain || count.size() > 2) return std::nullopt;
        // std::from_chars reads "-0" as 0, but a count has no sign.
        if (digits < 0 || digits > maxDigits || count.front() == '-') return std::nullopt;
        return CellFormat{format.kind, digits};
    }
    return std::nullopt;
}

// A NULL is an empty cell. Numbers are repaired, too, since their unit may be any bytes.
std::string formatCell(const CellValue& value, const CellFormat& format, std::string_view unit) {
    if (const auto* integer = std::get_if<std::int64_t>(&value))
        return tessera_support::repairUtf8(formatNumber(*integer, format, unit));
    if (const auto* real = std::get_if<double>(&value))
        return tessera_support::repairUtf8(formatNumber(*real, format, unit));
    if (const auto* text = std::get_if<std::string>(&value))
        return tessera_support::repairUtf8(formatText(*text, format, unit));
    return {};
}

}  // namespace tessera_host
