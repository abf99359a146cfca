// The content of a file, in one piece.
#pragma once

#include <optional>
#include <string>

#include "host/text/read_error.h"
#include "platform/relay2/progress.h"

namespace tessera_host {

// Reads `path` to its end into `text`; any file will do that can be read, also a pipe or /dev/stdin. Watches
// `progress`, which may be null, while nothing arrives. Answers nothing, or why it could not be read
// (`unopened`, or `cancelled`).
std::optional<ReadError> readFileText(const std::string& path, std::string& text,
                                      relay2::IProgress* progress);

}  // namespace tessera_host
