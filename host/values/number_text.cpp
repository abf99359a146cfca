#include "host/values/number_text.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace tessera_host {
namespace {

// Takes digits off the front of `text`; returns how many.
std::size_t takeDigits(std::string_view& text) noexcept {
    std::size_t count = 0;
    while (count < text.size() && text[count] >= '0' && text[count] <= '9')
        ++count;
    text.remove_prefix(count);
    return count;
}

bool takeOneOf(std::string_view& text, std::string_view characters) noexcept {
    if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

template <class T>
std::optional<T> readWhole(std::string_view text) noexcept {
    T value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

bool isNumeric(std::string_view text) noexcept {
    takeOneOf(text, "+-");
    std::size_t digits = takeDigits(text);
    if (takeOneOf(text, ".")) digits += takeDigits(text);
    if (digits == 0) return false;
    if (takeOneOf(text, "eE")) {
        takeOneOf(text, "+-");
        if (takeDigits(text) == 0) return false;
    }
    return text.empty();
}

std::optional<Number> readNumber(std::string_view text) noexcept {
    if (!isNumeric(text)) return std::nullopt;
    // std::from_chars accepts "-" only. Integers that do not fit into 64 bits become real numbers.
    if (text.front() == '+') text.remove_prefix(1);
    if (const auto integer = readWhole<std::int64_t>(text)) return *integer;
    if (const auto real = readWhole<double>(text)) return *real;
    return std::nullopt;
}

bool isCanonicalInteger(std::string_view text) noexcept {
    std::string_view digits = text;
    const bool isNegative = takeOneOf(digits, "-");
    if (digits.empty() || digits.front() == '+' || digits.front() == '-') return false;
    // "05" and "-0" have the values of other texts.
    if (digits.front() == '0' && (digits.size() > 1 || isNegative)) return false;
    return readWhole<std::int64_t>(text).has_value();
}

}  // namespace tessera_host
