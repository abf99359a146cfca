// Chooses layers for the labels in the middle of lines.
#pragma once

#include <vector>

#include "draw/placement/nesting.h"

namespace tessera_draw::placing {

// Whether a label has its place between the layers, rather than beside a box.
[[nodiscard]] constexpr bool isInMiddle(BoxToPlace::LabelEnd end) noexcept {
    return end == BoxToPlace::LabelEnd::none || end == BoxToPlace::LabelEnd::center;
}

// The labels of a line inside one container, from its end in the earlier layer to the one in the later layer.
struct LabelsOfLine {
    Index container = 0;
    Index tail = nothing;  // boxes; `nothing` is the border before the first or after the last layer
    Index head = nothing;
    bool isReversed = false;  // the line runs from head to tail
    std::vector<Index> labels;
};

// Sets the levels of all members, and labels, of the containers that `isFree` names. REQUIRES: their members' levels are
// their layers, from 0; `lines` are ordered by container.
//
// A label stands where the middle of its line is expected, from estimated widths: beside the boxes of a layer, or in a
// column between two layers if its line has no layer in between. n log n time.
void placeLabels(PlacementInput& input, const Nesting& nesting, const std::vector<char>& isFree,
                 const std::vector<LabelsOfLine>& lines);

}  // namespace tessera_draw::placing
