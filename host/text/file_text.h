// The content of a file, in one piece.
#pragma once

#include <cstddef>
#include <string>

#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_host {

// The most bytes that a file may have. No document is that long, but a device may never end.
inline constexpr std::size_t maxFileText = std::size_t{1} << 30U;

// Reads `path` to its end. Any file will do that can be read, also a pipe or /dev/stdin; while nothing arrives
// it looks at `token`. The error has the kind cannotOpen, also when the file is longer than `maxFileText`.
[[nodiscard]] Expected<std::string> readFileText(const std::string& path,
                                                 const tessera_support::CancelToken& token = {});

}  // namespace tessera_host
