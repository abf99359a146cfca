// The content of a file, in one piece.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "host/text/read_error.h"
#include "platform/relay2/progress.h"

namespace tessera_host {

// The most bytes that a file may have. Nobody writes such a document; a device may never end.
inline constexpr std::size_t maxFileText = std::size_t{1} << 30U;

// Reads `path` to its end into `text`; any file will do that can be read, also a pipe or /dev/stdin. Watches
// `progress`, which may be null, while nothing arrives. Answers nothing, or why it could not be read
// (`unopened`, also when it is longer than `maxFileText`, or `cancelled`).
std::optional<ReadError> readFileText(const std::string& path, std::string& text,
                                      relay2::IProgress* progress);

}  // namespace tessera_host
