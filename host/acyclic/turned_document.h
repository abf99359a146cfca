// A document in which links are turned around.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

using ElementsToTurn = std::unordered_set<const basekit2::variant_bag_t*>;

// A copy of the document in which these elements are the other way round: a link's from and to are exchanged,
// and its direction, if it is "forward" or "back"; a label at one end is at the other. Positions stay.
[[nodiscard]] basekit2::variant_bag_t turnedDocument(const basekit2::variant_bag_t& viewpoint,
                                                     const ElementsToTurn& elements);

// The same change to the text that the document with these elements was read from; every other byte stays.
// None when an element is not found where its position says, which counts in UTF-8: so it is in other
// encodings.
[[nodiscard]] std::optional<std::string> turnedText(std::string_view text, const ElementsToTurn& elements);

}  // namespace tessera_host
