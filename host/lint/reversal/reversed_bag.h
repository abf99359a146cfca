// A document in which links are reversed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/document/document_structure.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// Elements of a document that change when links are reversed.
using ReversedElements = std::unordered_set<DocumentStructure::Element>;

// The elements of these links (by index), and the labels at their ends. A display entry that comes before its
// link, and reaches nothing, counts for the link that its id finds at the end of the document.
[[nodiscard]] ReversedElements elementsToReverse(const DocumentStructure& structure,
                                                 const std::vector<std::size_t>& links);

// A copy of the document with these elements reversed: a link's from and to are exchanged, and its direction
// when that is "forward" or "back"; a label at one end is at the other. Positions stay.
[[nodiscard]] basekit2::variant_bag_t reversedBag(const basekit2::variant_bag_t& viewpoint,
                                                  const ReversedElements& elements);

// The same change to the text that the document was read from; every other byte stays. None when an element
// is not found at its position, which is counted in UTF-8: that happens in other encodings.
[[nodiscard]] std::optional<std::string> reversedText(std::string_view text,
                                                      const ReversedElements& elements);

}  // namespace tessera_host
