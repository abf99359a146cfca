// Reading elements of a document.
#pragma once

#include <string_view>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// An attribute as text, or the element's own text under the name ""; "" when it is missing or not a string.
[[nodiscard]] inline std::string_view textOf(const basekit2::variant_bag_t& element, std::string_view name) {
    const basekit2::variant_t* value = element.get(name);
    if (value == nullptr || !value->can_get<std::string_view>()) return {};
    return value->get<std::string_view>();
}

}  // namespace tessera_host
