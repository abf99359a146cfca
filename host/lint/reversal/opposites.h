// The words of a document that change when a link is reversed.
#pragma once

#include <string_view>

namespace tessera_host {

// "from" or "to".
[[nodiscard]] inline std::string_view otherEnd(std::string_view end) {
    return end == "from" ? "to" : "from";
}

// Words that name no direction, such as "both", are their own opposites.
[[nodiscard]] inline std::string_view oppositeDirection(std::string_view direction) {
    return direction == "forward" ? "back" : direction == "back" ? "forward" : direction;
}

}  // namespace tessera_host
