// Short ways to read a property bag in tests.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/basekit2/variant_bag.h"

namespace tessera_test {

using Names = std::vector<std::string>;

inline Names valueNames(const basekit2::variant_bag_t& bag) {
    Names names;
    for (auto it = bag.begin_values(); !it.at_end(); it.next())
        names.emplace_back(it.get_name());
    return names;
}

inline Names childNames(const basekit2::variant_bag_t& bag) {
    Names names;
    for (auto it = bag.begin(); !it.at_end(); it.next())
        names.emplace_back(it.get_name());
    return names;
}

// Returns the string under `name`, or "(none)" when there is no value.
inline std::string textOf(const basekit2::variant_bag_t& bag, std::string_view name) {
    const basekit2::variant_t* value = bag.get(name);
    return value ? std::string(value->get<std::string_view>()) : "(none)";
}

// a = "1", then the children x (with v = "2") and y.
inline basekit2::variant_bag_t smallTree() {
    basekit2::variant_bag_t bag;
    bag.put("a", "1");
    bag.add_variant_bag("x").put("v", "2");
    bag.add_variant_bag("y");
    return bag;
}

}  // namespace tessera_test
