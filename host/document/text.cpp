#include "host/document/text.h"

#include <algorithm>
#include <cstddef>

#include "support/utf8.h"

namespace tessera_host {
namespace {

constexpr std::size_t maxLineBytes = 300;

// U+2028 and U+2029 end lines as well, though they are not called control characters.
bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code <= 0x9F) || code == 0x2028 || code == 0x2029;
}

}  // namespace

std::string oneLine(std::string_view bytes) {
    std::string line;
    for (std::size_t at = 0; at < bytes.size();) {
        if (line.size() >= maxLineBytes) return line + "...";
        const tessera_support::Utf8Character piece = tessera_support::decodeUtf8(bytes.substr(at));
        if (!piece.isValid)
            line.append("\xEF\xBF\xBD");
        else if (isControl(piece.code))
            line.push_back(' ');
        else
            line.append(bytes.substr(at, piece.length));
        at += piece.length;
    }
    return line;
}

std::string quoted(std::string_view bytes) {
    return '"' + oneLine(bytes) + '"';
}

std::vector<std::string> splitAtSpaces(std::string_view text) {
    constexpr std::string_view spaces = " \t\r\n";
    std::vector<std::string> words;
    for (;;) {
        const std::size_t start = text.find_first_not_of(spaces);
        if (start == std::string_view::npos) return words;
        const std::size_t end = std::min(text.find_first_of(spaces, start), text.size());
        words.emplace_back(text.substr(start, end - start));
        text.remove_prefix(end);
    }
}

bool isBlank(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

}  // namespace tessera_host
