#include "cli/pdf_check.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>

namespace tessera_cli {
namespace {

constexpr std::string_view blanks = " \r\n";

// Reads a number, after spaces and line ends, and removes both from `text`.
std::optional<std::size_t> takeNumber(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

bool takeWord(std::string_view& text, std::string_view word) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    if (!text.starts_with(word)) return false;
    text.remove_prefix(word.size());
    return true;
}

// The table, from its first word on.
std::optional<std::string_view> tableOf(std::string_view file) {
    constexpr std::string_view word = "startxref";
    const std::size_t at = file.rfind(word);
    if (at == std::string_view::npos) return std::nullopt;
    std::string_view end = file.substr(at + word.size());
    const auto start = takeNumber(end);
    if (!start || *start >= at || !takeWord(end, "%%EOF")) return std::nullopt;
    return file.substr(*start, at - *start);
}

}  // namespace

bool isWholePdf(std::string_view file) {
    auto table = tableOf(file);
    if (!table || !takeWord(*table, "xref")) return false;
    const auto first = takeNumber(*table);
    const auto count = takeNumber(*table);
    if (!first || !count) return false;
    for (std::size_t part = *first; part < *first + *count; ++part) {
        const auto place = takeNumber(*table);
        const auto generation = takeNumber(*table);
        if (!place || !generation) return false;
        if (takeWord(*table, "f")) continue;  // there is none with this number
        if (!takeWord(*table, "n") || *place >= file.size()) return false;
        const std::string head = std::to_string(part) + " " + std::to_string(*generation) + " obj";
        if (!file.substr(*place).starts_with(head)) return false;
    }
    return true;
}

}  // namespace tessera_cli
