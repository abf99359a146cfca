// The finished drawing: flat lists of shapes, in the order in which they are drawn. This is the second of two
// steps (see draw/layout.h for the first); writers for SVG, PNG, PDF and JSON read it.
//
// Lengths and positions are pixels in the drawing's coordinates: (0, 0) is its upper left
// corner, y grows downwards. Texts are views into the scene or its layout, in the bytes of the
// document: possibly invalid UTF-8.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
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
    ColorRole bar = ColorRole::none;  // colour of the bar along the left edge; `none`: no bar
    // Of the level of its values: the colour of a wider border, or of the fill of a badge. `none`: no level.
    ColorRole level = ColorRole::none;
};

// The symbol of a display type, as wide and as high as `size`.
struct SymbolShape {
    Point center;
    double size = 0;
    TypeLook look;
};

struct TextShape {
    Point at;  // on the base line; the style's anchor says which part of the text is there
    TextRole role = TextRole::name;
    std::string_view text;
    bool isShortened = false;              // draw "…" after the text
    double width = 0;                      // as measured, with the "…"
    double maxWidth = 0;                   // the space that it may fill
    bool isExact = true;                   // false: may be drawn wider than measured; clip at maxWidth
    ColorRole textHalo = ColorRole::none;  // an outline that keeps lines below the text off its letters
    ColorRole color = ColorRole::none;     // of its level; `none`: that of the role
};

// An arrow head by its tip and its direction: one of the four directions along the axes, of length 1.
struct ArrowHead {
    Point tip;
    Point direction;
};

// The line of one link. Without stretches it is not drawn.
struct LineShape {
    std::vector<PlacedLine::Stretch> stretches;  // shortened to end just inside the arrow heads
    bool hasFromHead = false;
    bool hasToHead = false;
    ArrowHead fromHead;
    ArrowHead toHead;
};

// One line of a tooltip, in three parts that are shown one after the other: "name", "name: value", "a → b".
struct TooltipLine {
    std::string_view first;
    std::string_view between;
    std::string_view second;
};

// A range of consecutive entries in one of the scene's lists.
struct Span {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};

// The shapes that belong together: those of one node, one group, one link. Writers draw elements in order,
// and the shapes of each in the order boxes, symbols, lines, texts.
struct Element {
    // A group's title and rows are an element of their own, the header, because they are drawn above the
    // lines that enter the group.
    enum class Kind : std::uint8_t { group, line, header, node, label, heading, legend, note };

    Kind kind = Kind::node;
    std::string_view id;    // of the node or link; "" for heading, legend and note
    std::string_view from;  // of a line: the ids of its ends
    std::string_view to;
    std::string_view link;   // of a label: the id of its link
    std::string_view place;  // of a label: its place on the link, "from", "center" or "to"
    std::string_view type;   // display type of a node or group, as the document has it
    std::string_view level;  // the worst level of its values; "" for none
    Index index = nothing;   // of the node in the layout's structure, or of the link path
    Span boxes;
    Span symbols;
    Span lines;
    Span texts;
    Span tooltips;  // for pointers and screen readers
    Span rows;      // all values, also those that do not fit into the box
};

// One named value of an element, and the texts that show it. Together with the element's id, link and place
// it identifies what a value belongs to.
struct RowShape {
    std::string_view place;    // of a line: "from", "total" or "to"; else ""
    std::uint32_t number = 0;  // among the rows of its place, from 0
    std::string_view name;
    std::string_view value;
    Index nameText = nothing;  // in Scene::texts; `nothing` when only the tooltip shows it
    Index valueText = nothing;
    std::string_view level;   // of the value; "" for none
    std::string_view change;  // to another result, and that result's value; see Row
    std::string_view other;
    Index changeText = nothing;
};

// A level of values: how it is marked, and how many values are at it.
struct LevelLook {
    std::string_view name;
    Symbol sign = Symbol::none;
    ColorRole color = ColorRole::none;
    std::int64_t count = 0;
};

// Owns its texts, and shares ownership of the layout that it was made from: all views and spans are valid as
// long as the scene. Can be moved, not copied. May be read by several threads at once.
struct Scene {
    Size size;                  // of the whole drawing, legend included
    std::string_view name;      // the diagram's name, or its id
    std::string_view mode;      // display mode of the values; "" when the bag has none
    std::size_t nodeCount = 0;  // cards, without labels and groups
    std::size_t groupCount = 0;
    std::size_t lineCount = 0;
    std::vector<Element> elements;
    std::vector<BoxShape> boxes;
    std::vector<SymbolShape> symbols;
    std::span<const LineShape> lines;  // owned by the layout
    std::vector<TextShape> texts;
    std::vector<TooltipLine> tooltips;
    std::vector<RowShape> rows;
    std::vector<LevelLook> levels;  // the worst first; empty where values have none
    std::vector<std::uint8_t>
        lineSteps;  // by line: the place in lineWidths, from 0; empty where all are alike
    std::vector<std::uint8_t>
        goneLines;            // by line: 1 if only the other result has one of its values; or empty
    bool hasChanges = false;  // values are beside those of another result
    std::array<std::optional<Rgb>, ownLevelCount> ownColors;  // of the document's own levels
    TextArena ownedTexts;                                     // values, and texts made for this scene
    LayoutPointer layout;  // owns ids, names and lines; null only in a scene that was not filled

    // Null for a name that is not a level.
    [[nodiscard]] const LevelLook* levelOf(std::string_view level) const noexcept {
        for (const LevelLook& each : levels)
            if (!level.empty() && each.name == level) return &each;
        return nullptr;
    }
    [[nodiscard]] bool isGone(std::size_t line) const noexcept {
        return line < goneLines.size() && goneLines[line] != 0;
    }
    // The width of a line's stroke.
    [[nodiscard]] double widthOf(std::size_t line) const noexcept {
        return line < lineSteps.size() ? lineWidths[lineSteps[line]] : lineStrokeWidth;
    }
};

// The second step: fills the layout with the values of `bag`. Accepts any bag, which may be destroyed after
// the call. Nodes and links are matched by id. What only the layout has is drawn without values; what only
// the bag has is not drawn. The ids of both are appended to `differences`, unless that is null. Nothing
// moves: all scenes of one layout have the same boxes and lines. Any thread.
//
// REQUIRES: layout != nullptr.
[[nodiscard]] Scene fill(const LayoutPointer& layout, const basekit2::variant_bag_t& bag,
                         Differences* differences = nullptr);

// makeScene() takes the options of its layout step; filling has none.
using SceneOptions = LayoutOptions;

// Both steps for callers that draw a diagram once. Accepts any bag, which may be destroyed after the call.
// Positions and sizes depend on names, types, levels, links and reserved space; values only fill that space.
// When layOut() was cancelled, the scene is empty and its `layout` is null.
[[nodiscard]] Scene makeScene(const basekit2::variant_bag_t& bag, const SceneOptions& options);

}  // namespace tessera_draw
