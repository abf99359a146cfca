// Percent-encoding, as in the segments of a path.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessera_host {

// `text` with every "%XX" replaced by the byte that it encodes; none when a "%" is not followed by two
// hexadecimal digits. Everything else stays, also "+".
[[nodiscard]] std::optional<std::string> percentDecode(std::string_view text);

// `bytes` with everything but ASCII letters, digits, "-", ".", "_" and "~" as "%XX".
[[nodiscard]] std::string percentEncode(std::string_view bytes);

}  // namespace tessera_host
