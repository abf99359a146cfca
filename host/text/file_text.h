// The content of a file, in one piece.
#pragma once

#include <cstddef>
#include <string>

#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_host {

// The most bytes that a file may have. No document is that long, but a device may never end.
inline constexpr std::size_t maxFileText = std::size_t{1} << 30U;

// Reads `path` to its end, which may be a pipe or /dev/stdin. While nothing arrives it looks at `token`,
// every 50 milliseconds. The bytes are returned as they are, whatever their encoding; an empty file is the
// empty string. The error has the kind cannotOpen, also when the file is longer than `maxFileText`, or
// cancelled. Its text does not name the file.
[[nodiscard]] Expected<std::string> readFileText(const std::string& path,
                                                 const tessera_support::CancelToken& token = {});

}  // namespace tessera_host
