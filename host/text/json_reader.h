// JSON into property bags.
#pragma once

#include <string_view>

#include "host/error.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// Reads one JSON object, the inverse of writeJson(). The error has the position where the text is wrong. A
// byte order mark at the beginning is skipped.
//
// An object is a bag. Its strings, integers and booleans are values, put in their order; a member that is an
// object is a child bag, an array of objects several of that name. An empty array adds no child. When a key
// appears again, a value replaces the earlier value, and an object adds a further child.
//
// What a bag cannot hold is an error: null, numbers with fraction or exponent, integers beyond 64 bits,
// arrays of anything but objects. Bags made from JSON have no source positions.
//
// Takes time in proportion to the text, at any depth.
[[nodiscard]] Expected<basekit2::variant_bag_t> readJson(std::string_view text);

}  // namespace tessera_host
