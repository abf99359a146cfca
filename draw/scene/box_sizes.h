// Sizes of boxes, and the positions of the texts in them. Sizes are computed from the structure and the
// reserved space only; drawing uses the same constants, so that texts fit. Lengths are pixels.
#pragma once

#include <string_view>
#include <vector>

#include "draw/geometry.h"
#include "draw/read/diagram.h"
#include "draw/read/link_paths.h"
#include "draw/reservation.h"
#include "draw/scene/shown_text.h"

namespace tessera_draw {

// Cards. "Line" and "row" constants are base lines, measured from the top of the box.
inline constexpr double cardLeft = 16;  // from the left edge to the texts
inline constexpr double cardRight = 12;
inline constexpr double cardNameLine = 22;   // of the name above rows
inline constexpr double cardNameAlone = 24;  // of the name without rows
inline constexpr double cardFirstRow = 42;
inline constexpr double rowStep = 18;
inline constexpr double changedRowStep = 26;  // with changes below the values
inline constexpr double columnGap = 14;       // minimum between a row's name and its value
inline constexpr double symbolSize = 8;
inline constexpr double symbolSpace = 14;  // with the gap beside it
inline constexpr double barWidth = 4;
inline constexpr double maxValueShare = 0.6;  // of a row's width, when its name is long

// Labels on links. Those with changes below their values are higher.
inline constexpr double labelSide = 10;  // from either edge to the texts
inline constexpr double labelTitleLine = 14;
inline constexpr double labelValueLine = 28;
inline constexpr double changedLabelValueLine = 33;  // before it is lifted
inline constexpr double labelFirstRow = 30;
inline constexpr double labelRowStep = 15;
inline constexpr double labelChangedRowStep = 23;

// Groups.
inline constexpr double groupSide = 16;
inline constexpr double groupTitleLine = 25;
inline constexpr double groupFirstRow = 45;

// The size of one box and of what is in it. Of nodes that are not drawn, all members are 0.
struct BoxSize {
    std::uint32_t rows = 0;   // number of rows that fit; further ones are counted in a last row, "+3 more"
    double rowStep = 0;       // between their base lines
    bool hasChanges = false;  // whether there is room for changes below values
    double nameColumn = 0;
    double valueColumn = 0;
    Size size;       // of a container: the minimum
    Insets padding;  // of a container: between its border and its members
    Size header;     // of a container: the space of its texts, from its upper left corner
};

// How a node is drawn. `none`: not as a box.
enum class BoxKind : std::uint8_t { none, card, label, container };

struct BoxKinds {
    std::vector<BoxKind> kinds;     // by node; `none` for dummies and for nodes with a group's values
    std::vector<Index> groupInfos;  // by node: of a group, the node with its values; else `nothing`
};

// Decides how each node of the diagram is drawn, by its type and by what contains what. A node that contains
// another is a container, whatever its type. Linear time.
[[nodiscard]] BoxKinds findKinds(const Diagram& diagram);

// The name that people read: the display name if it has a visible character, else the id.
[[nodiscard]] inline std::string_view captionOf(const Node& node) noexcept {
    return isBlank(node.name) ? node.id : node.name;
}

// Returns the size of every node's box, by node. `pathOfLabel` is that of pathsOfStops(). A null `reservation`
// means the usual space for every box; see draw/reservation.h for ids that it does not name. With `first`, the
// values by node, boxes are wide enough for these, and where they exceed the reserved space, for one more digit:
// numbers are whole with their units up to 280 pixels, other texts up to the usual width of boxes. Linear time.
[[nodiscard]] std::vector<BoxSize> boxSizesOf(const Diagram& diagram, const LinkPaths& linkPaths,
                                              const BoxKinds& kinds, const std::vector<Index>& pathOfLabel,
                                              const Reservation* reservation, const std::vector<Info>* first);

}  // namespace tessera_draw
