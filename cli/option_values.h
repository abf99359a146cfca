// Values of options, read from their texts. isNotEmpty(), isLevel() and isLanguage() return "", or what is wrong with the text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "draw/geometry.h"

namespace tessera_cli {

// An empty name, as of an unset shell variable, would otherwise mean standard output.
[[nodiscard]] std::string isNotEmpty(const std::string& text);

// An empty name would otherwise mean that the option is absent.
[[nodiscard]] std::string isLevel(const std::string& text);

// A language such as "de", "de_AT.UTF-8" or "sr@latin", never a path.
[[nodiscard]] std::string isLanguage(const std::string& text);

// Width and height, such as 16x10 or 1920x1080, each from 1 to 1,000,000.
[[nodiscard]] std::optional<tessera_draw::Size> shapeOf(std::string_view text);

// Bytes such as 1048576, 512M, 1.5G or 4 GiB, in powers of 1024; none for other texts and beyond 1 MiB to 1 PiB.
[[nodiscard]] std::optional<std::uint64_t> sizeOf(const std::string& text);

}  // namespace tessera_cli
