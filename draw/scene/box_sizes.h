// How large boxes are, and where in them their texts stand.
#pragma once

#include <string_view>
#include <vector>

#include "draw/geometry.h"
#include "draw/read/diagram.h"
#include "draw/read/link_paths.h"
#include "draw/reservation.h"
#include "draw/scene/shown_text.h"

namespace tessera_draw {

inline constexpr double cardLeft = 16;  // from a card's edge to its texts
inline constexpr double cardRight = 12;
inline constexpr double cardNameLine = 22;  // base lines, from the top
inline constexpr double cardNameAlone = 24;
inline constexpr double cardFirstRow = 42;
inline constexpr double rowStep = 18;
inline constexpr double columnGap = 12;  // between a row's name and its value, at least
inline constexpr double symbolSize = 8;
inline constexpr double symbolSpace = 14;  // with the gap beside it
inline constexpr double barWidth = 4;

inline constexpr double labelSide = 10;
inline constexpr double labelTitleLine = 14;
inline constexpr double labelValueLine = 28;
inline constexpr double labelFirstRow = 30;
inline constexpr double labelRowStep = 15;

inline constexpr double groupSide = 16;
inline constexpr double groupTitleLine = 25;
inline constexpr double groupFirstRow = 45;

// The room of one box: how many rows, and how wide their two columns are, in pixels.
struct BoxSize {
    std::uint32_t rows = 0;
    double nameColumn = 0;
    double valueColumn = 0;
    Size size;       // of a container: the least
    Insets padding;  // of a container
    Size header;     // of a container: its texts, from its corner on
};

// What a box is in the drawing.
enum class BoxKind : std::uint8_t { none, card, label, container };

struct BoxKinds {
    std::vector<BoxKind> kinds;     // by node; `none` for dummies and for groups' values
    std::vector<Index> groupInfos;  // by node: the node whose rows are the group's own
};

[[nodiscard]] BoxKinds findKinds(const Diagram& diagram);

// The name that people read: the display name if there is anything to see, or else the id.
[[nodiscard]] inline std::string_view captionOf(const Node& node) noexcept {
    return isBlank(node.name) ? node.id : node.name;
}

// The room of every node, by node. Cards of one layer are equally wide.
[[nodiscard]] std::vector<BoxSize> boxSizesOf(const Diagram& diagram, const LinkPaths& linkPaths,
                                              const BoxKinds& kinds, const Reservation* reservation);

}  // namespace tessera_draw
