// The content of a file, in one piece.
#pragma once

#include <cstddef>
#include <string>

#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_host {

// The most bytes that a file may have. No document is that long, but a pipe may never end.
inline constexpr std::size_t maxFileText = std::size_t{256} << 20U;

// Reads the regular file `path` to its end. A path such as /dev/stdin or /dev/fd/N, which represents an open
// descriptor, may also be a pipe, a socket or a terminal, and is read from where it stands. Other pipes and
// devices are refused at once: opening one can wait for ever. While nothing arrives it looks at `token`,
// every 50 milliseconds. The bytes are returned as they are, whatever their encoding; an empty file is the
// empty string. The error has the kind cannotOpen, also when the file is longer than `maxFileText`, or
// cancelled. Its text does not name the file.
[[nodiscard]] Expected<std::string> readFileText(const std::string& path,
                                                 const tessera_support::CancelToken& token = {});

}  // namespace tessera_host
