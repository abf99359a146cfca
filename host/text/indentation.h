// How the writers lay out nested things in lines.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "host/text/text_sink.h"

namespace tessera_host {

// Deeper levels are not indented further: the spaces alone would grow with the square of the depth.
inline constexpr std::size_t maxIndentedLevels = 40;

// Ends a line and indents the next, two spaces a level.
inline void beginLine(TextSink& sink, std::size_t level) {
    static constexpr std::array<char, 2 * maxIndentedLevels> spaces = [] {
        std::array<char, 2 * maxIndentedLevels> all{};
        all.fill(' ');
        return all;
    }();
    sink.put('\n');
    sink.write({spaces.data(), 2 * std::min(level, maxIndentedLevels)});
}

}  // namespace tessera_host
