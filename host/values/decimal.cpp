#include "host/values/decimal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tessera_host {
namespace {

// The largest double has 309 digits before the point; 19 may follow.
using Buffer = std::array<char, 400>;

std::size_t sizeOf(const Buffer& buffer, const char* end) {
    return static_cast<std::size_t>(end - buffer.data());
}

// The magnitude of every 64-bit integer, INT64_MIN included.
std::uint64_t magnitude(std::int64_t value) {
    return value < 0 ? ~static_cast<std::uint64_t>(value) + 1 : static_cast<std::uint64_t>(value);
}

std::string integerDigits(std::uint64_t value) {
    Buffer buffer;
    return {buffer.data(),
            sizeOf(buffer, std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr)};
}

// Adds one to the last digit; true when the number became one digit longer, as 999 becomes 1000.
bool increment(std::string& digits) {
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return false;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
    return true;
}

// Half to even, as std::to_chars rounds reals. REQUIRES: neither text is empty.
bool roundsUp(std::string_view kept, std::string_view dropped) {
    if (dropped.front() != '5') return dropped.front() > '5';
    if (dropped.find_first_not_of('0', 1) != std::string_view::npos) return true;
    return (kept.back() - '0') % 2 == 1;
}

// On decimal digits: a double would lose digits of integers beyond 2^53.
Decimal roundInteger(std::int64_t value, std::size_t count) {
    Decimal result{value < 0, integerDigits(magnitude(value)), 0};
    result.exponent = static_cast<int>(result.digits.size()) - 1;
    if (result.digits.size() <= count) {
        result.digits.append(count - result.digits.size(), '0');
        return result;
    }
    const std::string dropped = result.digits.substr(count);
    result.digits.resize(count);
    // As when 999 becomes 1000: the last zero is one digit too many.
    if (roundsUp(result.digits, dropped) && increment(result.digits)) {
        result.digits.pop_back();
        ++result.exponent;
    }
    return result;
}

Decimal roundReal(double value, int count) {
    Buffer buffer;
    const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                    std::chars_format::scientific, count - 1)
                          .ptr;
    const std::string_view text(buffer.data(), sizeOf(buffer, end));
    const std::size_t mark = text.find('e');
    Decimal result{std::signbit(value), std::string(text.substr(0, mark)), 0};
    if (result.digits.size() > 1) result.digits.erase(1, 1);  // the point
    const std::size_t exponent = text[mark + 1] == '+' ? mark + 2 : mark + 1;
    std::from_chars(text.data() + exponent, text.data() + text.size(), result.exponent);
    return result;
}

std::string signOf(const Decimal& decimal) {
    return decimal.isNegative && !decimal.isZero() ? "-" : "";
}

}  // namespace

Decimal roundToSignificant(const Number& number, int count) {
    if (const auto* integer = std::get_if<std::int64_t>(&number))
        return roundInteger(*integer, static_cast<std::size_t>(count));
    return roundReal(std::get<double>(number), count);
}

std::string positionalText(const Decimal& decimal, int shift) {
    const int exponent = decimal.exponent - shift;
    std::string text = decimal.digits;
    if (exponent < 0) {
        text.insert(0, static_cast<std::size_t>(-exponent), '0');
        text.insert(1, 1, '.');
        return signOf(decimal) + text;
    }
    const std::size_t whole = static_cast<std::size_t>(exponent) + 1;
    if (text.size() < whole) text.append(whole - text.size(), '0');
    if (text.size() > whole) text.insert(whole, 1, '.');
    return signOf(decimal) + text;
}

std::string scientificText(const Decimal& decimal) {
    std::string text = decimal.digits;
    if (text.size() > 1) text.insert(1, 1, '.');
    const std::string exponent = integerDigits(magnitude(decimal.exponent));
    text += decimal.exponent < 0 ? "e-" : "e+";
    // At least two digits, as printf writes exponents.
    if (exponent.size() < 2) text += '0';
    return signOf(decimal) + text + exponent;
}

std::string fixedText(const Number& number, int places) {
    if (const auto* integer = std::get_if<std::int64_t>(&number)) {
        std::string text = (*integer < 0 ? "-" : "") + integerDigits(magnitude(*integer));
        if (places > 0) text += '.' + std::string(static_cast<std::size_t>(places), '0');
        return text;
    }
    Buffer buffer;
    const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::get<double>(number),
                                    std::chars_format::fixed, places)
                          .ptr;
    std::string text(buffer.data(), sizeOf(buffer, end));
    // A small negative number may be rounded to "-0.00".
    const bool isZero = text.find_first_of("123456789") == std::string::npos;
    if (isZero && text.front() == '-') text.erase(0, 1);
    return text;
}

}  // namespace tessera_host
