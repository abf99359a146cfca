#include "host/document/percent_encoding.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace tessera_host {
namespace {

bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

}  // namespace

std::optional<std::string> percentDecode(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded.push_back(text[i]);
            continue;
        }
        // A "%" and two hexadecimal digits of either case.
        if (text.size() - i < 3) return std::nullopt;
        unsigned char byte = 0;
        const char* end = text.data() + i + 3;
        const auto [read, error] = std::from_chars(text.data() + i + 1, end, byte, 16);
        if (error != std::errc() || read != end) return std::nullopt;
        decoded.push_back(static_cast<char>(byte));
        i += 2;
    }
    return decoded;
}

std::string percentEncode(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : bytes) {
        if (isUnreserved(c)) {
            encoded.push_back(c);
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded.append({'%', digits[byte >> 4U], digits[byte & 15U]});
    }
    return encoded;
}

}  // namespace tessera_host
