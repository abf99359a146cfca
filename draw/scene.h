// The finished drawing: a flat list of shapes, in the order in which they are drawn.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "draw/geometry.h"
#include "draw/placement/placement.h"
#include "draw/reservation.h"
#include "draw/scene/display_types.h"
#include "draw/theme.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_draw {

struct BoxShape {
    Rect rect;
    BoxRole role = BoxRole::card;
    ColorRole bar = ColorRole::none;  // the bar along the left edge
};

// The sign of a display type, as wide and as high as `size`.
struct SymbolShape {
    Point center;
    double size = 0;
    TypeLook look;
};

struct TextShape {
    Point at;  // on the base line; where in the text is the style's anchor
    TextRole role = TextRole::name;
    std::string_view text;
    bool isShortened = false;              // "…" follows
    double width = 0;                      // as measured
    double maxWidth = 0;                   // what it must not be wider than
    bool isExact = true;                   // else it may turn out wider, and is to be clipped there
    ColorRole textHalo = ColorRole::none;  // keeps lines behind the text away from its letters
};

// The tip, and where it points: one of the four directions, of length 1.
struct ArrowHead {
    Point tip;
    Point direction;
};

struct LineShape {
    std::vector<PlacedLine::Stretch> stretches;  // end where the arrow heads begin
    bool hasFromHead = false;
    bool hasToHead = false;
    ArrowHead fromHead;
    ArrowHead toHead;
};

// "first", "first: second", "first → second".
struct TooltipLine {
    std::string_view first;
    std::string_view between;
    std::string_view second;
};

// Some of a list's members, one behind the other.
struct Span {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

// What belongs together: the shapes of one node, one group, one link.
struct Element {
    // A group's title and rows are a header of their own: they stand over the lines that enter the group.
    enum class Kind : std::uint8_t { group, line, header, node, label, heading, legend, note };

    Kind kind = Kind::node;
    std::string_view id;    // of the node or link; "" for what stands for neither
    std::string_view from;  // of a line, the ids of its ends
    std::string_view to;
    std::string_view link;   // of a label, the id of its link
    std::string_view place;  // and where it stands on that: "from", "center", "to"
    std::string_view type;   // display type
    Index index = nothing;   // the node's, or the link path's
    Span boxes;
    Span symbols;
    Span lines;
    Span texts;
    Span tooltips;  // what a pointer at it, or a screen reader, is told
};

struct Scene {
    Size size;
    std::string_view name;
    std::string_view mode;
    std::size_t nodeCount = 0;  // as people count: boxes with a name, and lines
    std::size_t groupCount = 0;
    std::size_t lineCount = 0;
    std::vector<Element> elements;
    std::vector<BoxShape> boxes;
    std::vector<SymbolShape> symbols;
    std::vector<LineShape> lines;
    std::vector<TextShape> texts;
    std::vector<TooltipLine> tooltips;
    std::deque<std::string> ownedTexts;  // those that are not the bag's
};

enum class Direction : std::uint8_t { leftToRight, topToBottom };

struct SceneOptions {
    Direction direction = Direction::leftToRight;
    // Null: every box keeps room for what is usual. Null or not, sizes never depend on values.
    const Reservation* reservation = nullptr;
    tessera_support::CancelToken cancel = {};
};

// Draws the diagram in `bag`, which must outlive the scene. Where things stand and how large they are depends
// on names, types, levels, links and reserved room; values only fill that room. Any bag will do. The scene is
// empty once `cancel` is cancelled.
[[nodiscard]] Scene makeScene(const basekit2::variant_bag_t& bag, const SceneOptions& options);

}  // namespace tessera_draw
