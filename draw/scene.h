// The finished drawing: a flat list of shapes, in the order in which they are drawn.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "draw/geometry.h"
#include "draw/layout.h"
#include "draw/placement/placement.h"
#include "draw/read/values.h"
#include "draw/scene/display_types.h"
#include "draw/text_arena.h"
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
    Span tooltips;  // for pointers and screen readers
    Span rows;
};

// One labelled value of an element, and the texts that show it: with the element's id, link and place it says
// what a value belongs to.
struct RowShape {
    std::string_view place;    // of a line, the end: "from", "total", "to"; else ""
    std::uint32_t number = 0;  // among the rows of its place, from 0
    std::string_view name;
    std::string_view value;
    Index nameText = nothing;  // in Scene::texts; `nothing` where it is not shown, but in tooltips only
    Index valueText = nothing;
};

// Owns its texts, together with the layout that it was made from. Can be moved, not copied.
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
    std::span<const LineShape> lines;  // the layout's
    std::vector<TextShape> texts;
    std::vector<TooltipLine> tooltips;
    std::vector<RowShape> rows;
    TextArena ownedTexts;  // values, and texts made for this scene
    LayoutPointer layout;  // keeps ids, names and lines
};

// The second step: the layout with the values of `bag`, which may be any bag, and is not needed any more after
// the call. Nodes and links are matched by id. What only the layout has is drawn without values, and what only
// the bag has is not drawn; `differences`, unless null, is told which those are. Nothing moves: all scenes of
// one layout have the same boxes and lines. Any thread.
//
// REQUIRES: layout != nullptr.
[[nodiscard]] Scene fill(const LayoutPointer& layout, const basekit2::variant_bag_t& bag,
                         Differences* differences = nullptr);

using SceneOptions = LayoutOptions;

// Both steps: draws the diagram in `bag`, which may be any bag. Positions and sizes depend on names, types,
// levels, links and reserved space; values only fill that space. The scene is empty once `options.cancel` is
// cancelled.
[[nodiscard]] Scene makeScene(const basekit2::variant_bag_t& bag, const SceneOptions& options);

}  // namespace tessera_draw
