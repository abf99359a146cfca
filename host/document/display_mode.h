// The display modes of a diagram.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/vocabulary.h"

namespace tessera_host {

// Which of a label's values a diagram shows. A new diagram is in the first mode.
enum class DisplayMode : std::uint8_t { bandwidth, ratio, size };

using tessera_1::displayModeNames;  // by DisplayMode

// As documents and requests spell it; a literal.
[[nodiscard]] constexpr std::string_view nameOf(DisplayMode mode) noexcept {
    return displayModeNames[static_cast<std::size_t>(mode)];
}

// The mode of that name, compared byte by byte. None when no mode has it: such an element is reported by the
// check, and such a request shows no values.
[[nodiscard]] constexpr std::optional<DisplayMode> displayModeOf(std::string_view name) noexcept {
    const auto* found = std::find(displayModeNames.begin(), displayModeNames.end(), name);
    if (found == displayModeNames.end()) return std::nullopt;
    return static_cast<DisplayMode>(found - displayModeNames.begin());
}

}  // namespace tessera_host
