// Reading elements of a document, and naming places in it.
#pragma once

#include <string>
#include <string_view>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// An attribute, or the element's own text under the name "". A missing one is empty, as for the diagram
// library.
[[nodiscard]] inline std::string_view attribute(const basekit2::variant_bag_t& element,
                                                std::string_view name) {
    const basekit2::variant_t* value = element.get(name);
    return value ? value->get<std::string_view>() : std::string_view();
}

// How a finding at `here` speaks of another place: "line 7", or "column 12 of this line".
[[nodiscard]] inline std::string placeOf(basekit2::source_position_t there,
                                         basekit2::source_position_t here) {
    if (there.line != here.line) return "line " + std::to_string(there.line);
    return "column " + std::to_string(there.column) + " of this line";
}

}  // namespace tessera_host
