// How messages name other places of the document.
#pragma once

#include <string>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// How a message at `here` names the place `there`: "line 7", or "column 12 of this line".
[[nodiscard]] inline std::string placeText(basekit2::source_position_t there,
                                           basekit2::source_position_t here) {
    if (there.line != here.line) return "line " + std::to_string(there.line);
    return "column " + std::to_string(there.column) + " of this line";
}

}  // namespace tessera_host
