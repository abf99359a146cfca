// Gives boxes in nested layers their places, and lines their ways between them.
#pragma once

#include <cstdint>
#include <vector>

#include "draw/geometry.h"
#include "draw/index.h"
#include "support/cancel_token.h"

namespace tessera_draw {

using tessera_support::CancelToken;

// What is to be placed. Layers run along x ("left to right"); a caller that wants them to run down exchanges
// x and y before and after.
struct BoxToPlace {
    Index group = nothing;    // the box that contains it, anywhere in the list; `nothing` at top level
    std::int32_t level = -1;  // layer inside the group; -1: to be found from its lines
    Size size;                // of a container: the least it may be
    bool isContainer = false;
    Insets padding;  // of a container: between its border and its content, room for a title included
    Size header;  // of a container: its title, in the corner where its first layer begins; no line passes it
    enum class Along : std::uint8_t { start, middle, end };
    Along along = Along::middle;  // where it stands in a column that is wider than it
    bool isLabel = false;         // lines pass straight through it
    // Stands at its group's border on this side, as an interface does.
    enum class Border : std::uint8_t { none, start, end };
    Border border = Border::none;
};

// A line from a box through others to a box. Ends may be any boxes: one another's containers, the same one.
struct LineToPlace {
    Index from = nothing;
    Index to = nothing;
    std::vector<Index> through;  // labels, in order; a label is on one line only
};

struct PlacementInput {
    std::vector<BoxToPlace> boxes;  // containers need not stand before what they contain
    std::vector<LineToPlace> lines;
};

struct Spacing {
    double betweenLayers = 40;  // least gap between two columns of boxes
    double betweenBoxes = 24;   // across
    double betweenLines = 10;   // between tracks, and between a line and a foreign box
    double cornerRadius = 12;   // at most
};

// A chain of a line: straight to `end`, or a cubic curve through the two control points.
struct Segment {
    bool isCurve = false;
    Point control1;
    Point control2;
    Point end;
};

struct PlacedLine {
    // From the from box's border to the to box's border, one stretch between each two boxes that the line
    // meets: from - first label, first label - second label, ..., last label - to.
    struct Stretch {
        Point start;
        std::vector<Segment> segments;
    };
    std::vector<Stretch> stretches;
};

struct Placement {
    Size size;                // everything lies between (0, 0) and here
    std::vector<Rect> boxes;  // as the input's
    std::vector<PlacedLine> lines;
};

// Boxes of one group do not overlap, lie inside their container's padding, and stand in the order of their
// levels; levels that no box has take no room, and many boxes of one level without lines stand side by side.
// Lines leave and enter boxes at right angles, on the sides that face along the layers, and keep out of boxes
// that they do not end in or pass through, containers excepted that hold one of their ends; lines back to an
// earlier layer run between the sides that face each other. Boxes at a border stand in the first or last
// layer whatever their level says. Where lines would pass more layers or borders than can be drawn (see
// placement/README.md), the longest go around all layers, or straight through everything. A box that its
// line's other end touches has a stretch of one segment of no length. The same input gives the same answer;
// nothing else has an influence, except that the answer is soon there and empty once `cancel` is cancelled.
// Works in time n log n, with n the boxes, the lines and the places where lines cross layers; any nesting
// depth without recursion.
[[nodiscard]] Placement place(const PlacementInput& input, const Spacing& spacing,
                              const CancelToken& cancel = {});

}  // namespace tessera_draw
