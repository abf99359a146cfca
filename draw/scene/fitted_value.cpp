#include "draw/scene/fitted_value.h"

#include <algorithm>

namespace tessera_draw {
namespace {

constexpr std::string_view dots = "…";

// The bytes of the number that a value begins with.
struct NumberPart {
    std::size_t mantissa = 0;  // with its sign, up to the exponent; 0 for a text without a number
    std::size_t length = 0;    // of all of it
};

std::size_t digitsFrom(std::string_view text, std::size_t at) noexcept {
    return std::min(text.find_first_not_of("0123456789", at), text.size());
}

// A number ends with the text or before a space; dates and addresses are texts.
NumberPart numberOf(std::string_view text) noexcept {
    const std::size_t first = !text.empty() && (text.front() == '-' || text.front() == '+') ? 1 : 0;
    NumberPart number;
    number.mantissa = digitsFrom(text, first);
    if (number.mantissa == first) return {};
    if (text.substr(number.mantissa, 1) == ".") number.mantissa = digitsFrom(text, number.mantissa + 1);
    number.length = number.mantissa;
    if (text.substr(number.length, 1) == "e") {
        const std::string_view sign = text.substr(number.length + 1, 1);
        number.length = digitsFrom(text, number.length + (sign == "+" || sign == "-" ? 2 : 1));
    }
    const bool isNumber = number.length == text.size() || text[number.length] == ' ';
    return isNumber ? number : NumberPart{};
}

// Without white space before it, which is not shown.
std::string_view trimmed(std::string_view value) noexcept {
    return value.substr(std::min(value.find_first_not_of(" \t\n\r"), value.size()));
}

}  // namespace

bool beginsWithNumber(std::string_view value) noexcept {
    return numberOf(trimmed(value)).mantissa > 0;
}

FittedText fitValue(std::string_view value, double maxWidth, double size, Weight weight) noexcept {
    const FittedText fitted = fitText(value, maxWidth, size, weight);
    if (!fitted.isShortened || fitted.kept.empty()) return fitted;
    // What was kept is the beginning of this.
    const std::string_view text = trimmed(value);
    const NumberPart number = numberOf(text);
    if (number.mantissa == 0) return fitted;
    const auto shortenedTo = [&](std::size_t length) {
        const TextWidth width = measureText(text.substr(0, length), size, weight);
        return FittedText{text.substr(0, length), true, width.width + measureText(dots, size, weight).width,
                          width.isExact};
    };
    for (std::size_t end = fitted.kept.size(); end != std::string_view::npos && end >= number.length;
         end = text.rfind(' ', end - 1)) {
        if (text[end] != ' ') continue;
        if (const FittedText words = shortenedTo(end + 1); words.width <= maxWidth) return words;
    }
    if (fitted.kept.size() >= number.length) return shortenedTo(number.length);
    // A part of an exponent would read as another one: after "1.23e…", all of its digits are missing.
    return shortenedTo(std::min(fitted.kept.size(), number.mantissa + 1));
}

}  // namespace tessera_draw
