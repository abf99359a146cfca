// What a layout is made of.
#pragma once

#include <vector>

#include "draw/layout.h"
#include "draw/read/diagram.h"
#include "draw/read/link_paths.h"
#include "draw/scene.h"
#include "draw/scene/box_sizes.h"
#include "draw/scene/display_types.h"
#include "draw/text_arena.h"

namespace tessera_draw {

// All texts are in `texts`; the diagram has no values.
struct LayoutData {
    struct Container {
        Index node;
        std::uint32_t depth;
    };

    TextArena texts;
    Diagram structure;
    LinkPaths linkPaths;
    std::vector<Index> pathOfLabel;  // by node: the link path that a label is on
    DisplayTypes types;
    BoxKinds kinds;
    std::vector<BoxSize> sizes;  // by node
    std::vector<Rect> boxes;     // by node, in the drawing's coordinates; of what is not drawn, empty
    std::vector<LineShape> lines;
    std::vector<Index> pathOfLine;
    std::vector<Container> containers;  // outer ones before what they contain
    Size content;                       // of all boxes and lines
    double width = 0;                   // of the whole drawing
    bool isEmpty = false;               // nothing is drawn but the heading and a note
};

inline constexpr double sceneMargin = 28;
inline constexpr double contentTop = 72;  // below the heading

}  // namespace tessera_draw
