// The data of a layout, for the steps that draw it. Positions are pixels in the drawing's coordinates.
#pragma once

#include <vector>

#include "draw/layout.h"
#include "draw/read/diagram.h"
#include "draw/read/link_paths.h"
#include "draw/saved_layout.h"
#include "draw/scene.h"
#include "draw/scene/box_sizes.h"
#include "draw/scene/display_types.h"
#include "draw/text_arena.h"

namespace tessera_draw {

// Written once by layOut(), then immutable. `texts` owns all texts; every view in the other members points
// into it. Lists "by node" have one entry for each node of `structure`.
struct LayoutData {
    // A group that is drawn, and the number of groups around it.
    struct Container {
        Index node;
        std::uint32_t depth;
    };

    TextArena texts;
    Diagram structure;  // without values
    LinkPaths linkPaths;
    std::vector<Index> pathOfLabel;  // by node: the link path that a label is on, or `nothing`
    DisplayTypes types;
    BoxKinds kinds;
    std::vector<BoxSize> sizes;  // by node
    std::vector<Rect> boxes;     // by node; empty if not drawn as a box
    std::vector<LineShape> lines;
    std::vector<Index> pathOfLine;      // by line: its link path
    std::vector<Container> containers;  // outer ones before what they contain
    Size content;                       // extent of all boxes and lines
    double badge = 0;                   // width of the badge in the heading
    double width = 0;                   // of the whole drawing, margins included
    SavedLayout saved;                  // if the options wanted it
    bool isEmpty = false;               // only the heading and a note are drawn
    bool isDownward = false;            // links lead from top to bottom
};

inline constexpr double sceneMargin = 24;
// Pixels: drawings up to this size can be shown whole on most screens, whatever their shape.
inline constexpr double fitsAnywhere = 1200;
// Boxes: larger drawings are not folded, as they are not seen as a whole and take longer.
inline constexpr std::size_t mostFolded = 5'000;
// Width to height, and height to width, beyond which a drawing is a band that is hard to look at.
inline constexpr double widestShape = 4;
inline constexpr double highestShape = 3;
inline constexpr double contentTop = 68;  // below the heading

}  // namespace tessera_draw
