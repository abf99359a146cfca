// A document without circles of links, as text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/check/finding.h"
#include "host/check/watch.h"

namespace tessera_host {

struct FixedDocument {
    std::string text;
    basekit2::variant_bag_t viewpoint;  // read from it
    std::vector<Finding> turned;        // a note for each link that was turned around, where it stands
};

// Turns the fewest links that it can around so that none go in a circle inside a group, where that is
// possible. Nothing else changes, and a document without circles not at all. `viewpoint` was read from
// `text`. None when the watch says to stop, and when the text cannot be changed, because it is neither UTF-8
// nor like it.
[[nodiscard]] std::optional<FixedDocument> fixDocument(std::string text, basekit2::variant_bag_t viewpoint,
                                                       Watch& watch);

}  // namespace tessera_host
