// Whether a PDF is whole.
#pragma once

#include <string_view>

namespace tessera_cli {

// Whether the table at the end of the file is there, and each part stands where the table says. For want of
// memory cairo leaves out fonts or the rest of a file, and reports nothing. Knows the form of the table that
// cairo writes. Linear time.
[[nodiscard]] bool isWholePdf(std::string_view file);

}  // namespace tessera_cli
