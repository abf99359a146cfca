#include "cli/option_values.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>

namespace tessera_cli {

std::string isNotEmpty(const std::string& text) {
    return text.empty() ? "the name of a file is empty" : "";
}

std::string isLevel(const std::string& text) {
    return text.empty() ? "the name of a level is empty" : "";
}

std::string isLanguage(const std::string& text) {
    const auto isPart = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '-' || c == '.' || c == '@';
    };
    const bool isName = !text.empty() && std::isalpha(static_cast<unsigned char>(text.front())) != 0 &&
                        std::all_of(text.begin(), text.end(), isPart);
    return isName ? "" : "\"" + text + "\" is not the name of a language, such as de or de_AT";
}

std::optional<tessera_draw::Size> shapeOf(std::string_view text) {
    const std::size_t by = text.find('x');
    if (by == std::string_view::npos) return std::nullopt;
    const auto numberOf = [](std::string_view digits) {
        constexpr unsigned most = 1'000'000;
        unsigned number = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        return error == std::errc() && end == digits.data() + digits.size() && number <= most ? number : 0;
    };
    const tessera_draw::Size shape{double(numberOf(text.substr(0, by))),
                                   double(numberOf(text.substr(by + 1)))};
    return shape.width > 0 && shape.height > 0 ? std::optional(shape) : std::nullopt;
}

std::optional<std::uint64_t> sizeOf(const std::string& text) {
    double number = 0;
    const char* const textEnd = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), textEnd, number, std::chars_format::fixed);
    if (error != std::errc()) return std::nullopt;
    std::string unit(end, textEnd);
    std::transform(unit.begin(), unit.end(), unit.begin(), [](unsigned char c) { return std::toupper(c); });
    unit.erase(0, unit.find_first_not_of(' '));
    constexpr std::string_view prefixes = "KMGT";
    const std::size_t power = unit.empty() ? std::string_view::npos : prefixes.find(unit.front());
    if (power != std::string_view::npos) {
        number = std::ldexp(number, 10 * static_cast<int>(power + 1));
        unit.erase(0, 1);
        if (unit == "IB") unit = "B";
    }
    const bool isSize =
        (unit.empty() || unit == "B") && number >= std::ldexp(1, 20) && number <= std::ldexp(1, 50);
    return isSize ? std::optional(static_cast<std::uint64_t>(number)) : std::nullopt;
}

}  // namespace tessera_cli
