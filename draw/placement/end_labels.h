// The labels that stand beside the end of their line.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

// End labels are in no layer. They stand beside the box that their line ends in, next to the line's end: outside of
// the box, or inside of a container if the line leads to something in it.
struct EndLabels {
    std::vector<char> isOne;    // by box
    std::vector<Index> atFrom;  // by line: the label beside its first box, or `nothing`
    std::vector<Index> atTo;
};

// How often lines name each box. Linear time.
[[nodiscard]] std::vector<std::uint32_t> usesOf(const PlacementInput& input);

// The first and the last label of a line can be one each, if `labelEnd` says so, and if the label is in the container
// that its place is in. A label that is also on another line, is the end of one, or contains something, is none.
// n log n time.
[[nodiscard]] EndLabels endLabelsOf(const PlacementInput& input, const Nesting& nesting);

// Removes them from the members of their containers. Linear time.
void removeFromMembers(const EndLabels& endLabels, Nesting& nesting);

}  // namespace tessera_draw::placing
