// Places boxes in nested layers and routes lines between them. Knows nothing of diagrams, texts or formats.
//
// Lengths are pixels. Indices are positions in the lists of the input.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "draw/geometry.h"
#include "draw/index.h"
#include "draw/placement/kept_layers.h"
#include "support/cancel_token.h"

namespace tessera_draw {

using tessera_support::CancelToken;

// A box to place. Layers follow one another along x, from left to right; for layers that run downwards the
// caller exchanges x and y before and after. REQUIRES: all lengths are finite and not negative.
struct BoxToPlace {
    Index group = nothing;    // the box that contains it, anywhere in the list; `nothing` at top level
    std::int32_t level = -1;  // layer inside the group; -1: derived from its lines
    Size size;  // the minimum: containers grow for their content, others in height for ends of lines
    bool isContainer = false;  // may be false for a box that others name as their group; it is one anyway
    // Of a container: the distance between its border and its content, space for a title included.
    Insets padding;
    // Of a container: the size of its title, in its upper left corner. Lines keep out of it.
    Size header;
    // Position within its layer's column if that is wider than the box.
    enum class Along : std::uint8_t { start, middle, end };
    Along along = Along::middle;
    bool isPart = false;   // a container without lines to it: it stands in a row with others
    bool isLabel = false;  // lines pass straight through it
    // Of a label: where on its line it stands. Labels of ends stand beside the box; `none` is where its level is.
    enum class LabelEnd : std::uint8_t { none, from, center, to };
    LabelEnd labelEnd = LabelEnd::none;
    // The side of its group at whose border the box is placed, as interfaces are; wins over `level`.
    enum class Border : std::uint8_t { none, start, end };
    Border border = Border::none;
};

// A line from a box through others to a box. Any two boxes may be its ends: also a box and its container, or
// one box twice. A line that names an index outside the list is not drawn: it gets no stretches.
struct LineToPlace {
    Index from = nothing;
    Index to = nothing;
    std::vector<Index> through;  // labels, in order; each label is on one line only
};

// The input of place(). Order matters for the result where nothing else decides.
struct PlacementInput {
    std::vector<BoxToPlace> boxes;  // containers may come before or after what they contain
    std::vector<LineToPlace> lines;
    // The layers of an earlier placement, which order and places begin with; see keepLevels() for its levels. Unknown
    // boxes, lines and layers are ignored. Empty: there is none.
    KeptLayers kept;
    bool wantsLayers = false;  // whether the result has its layers
};

// Distances in pixels.
struct Spacing {
    double betweenLayers = 40;  // minimum gap between two columns of boxes
    double besideLabels = 24;   // the same beside a column of labels only, where all lines are straight
    double betweenBoxes = 24;   // minimum gap between boxes of one layer
    double betweenLines = 10;   // between parallel lines, and between a line and a box that it passes
    double cornerRadius = 12;   // maximum radius of the bends of lines
};

// The shape that a drawing should have. Layers that need much more width than height can go on in further rows, below one
// another. Layers that need much more height than width can be divided, and parts of a container's members that no line connects
// can stand beside one another.
struct Shape {
    double above =
        std::numeric_limits<double>::infinity();  // width divided by height, beyond which there are rows
    double below = 0;            // width divided by height, down to which layers are not divided
    Size around;                 // added to the drawing for its shape
    double leastSize = 0;        // a drawing of this width or height is not too wide or high
    bool changesLayers = false;  // whether layers may be divided, and parts stand beside one another
};

// A segment of a line, from the end of the one before: straight to `end`, or a cubic Bézier curve to it with
// two control points.
struct Segment {
    bool isCurve = false;
    Point control1;
    Point control2;
    Point end;
};

// A line from the border of its first box to the border of its last box.
struct PlacedLine {
    // One stretch between each two consecutive boxes of the line: from - first label, first label - second
    // label, ..., last label - to.
    struct Stretch {
        Point start;
        std::vector<Segment> segments;
    };
    std::vector<Stretch> stretches;
};

// The result, in coordinates of the drawing: also boxes in containers count from (0, 0) of the whole.
struct Placement {
    Size size;                      // everything lies between (0, 0) and here
    std::vector<Rect> boxes;        // by box of the input
    std::vector<PlacedLine> lines;  // by line of the input
    KeptLayers layers;              // for a later placement, if the input wants them
};

// Boxes of one group do not overlap, and lie inside their container's padding. They are ordered by their levels, in each row of
// a folded container: a box is on the right of those of lower levels that share heights with it, and its middle is not before
// the middle of any of them. Labels of ends stand beside the boxes that their lines end in, labels of centers near the middle
// of their lines. Levels without boxes take no space. Many boxes of one level without lines are arranged in a grid. Boxes at
// a border are in the first or last layer whatever their level is. A box whose group does not exist, and one
// box of each cycle of groups, is placed at top level.
//
// Lines leave and enter boxes at right angles, on the left and right sides. They keep out of boxes that they
// do not end in or pass through, except the containers of their ends. Lines back to an earlier layer connect
// the sides that face each other. Where lines would cross too many layers or borders (see
// placement/README.md), the longest are routed around all layers, or straight through everything. Where the
// two ends of a stretch touch, it has one segment of length 0.
//
// The result depends on the input, the spacing and the shape only. Once `cancel` is cancelled, returns soon with an
// empty placement, without boxes and lines. Any thread. Takes n log n time, where n counts boxes, lines and
// the layers that lines cross. No recursion, so any nesting depth works.
[[nodiscard]] Placement place(const PlacementInput& input, const Spacing& spacing, const Shape& shape = {},
                              const CancelToken& cancel = {});

}  // namespace tessera_draw
