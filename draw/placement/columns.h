// Places the layers of a container side by side: columns of boxes, gaps in which edges bend, and rows of columns.
#pragma once

#include <vector>

#include "draw/placement/container_geometry.h"
#include "draw/placement/offsets.h"
#include "draw/placement/skyline.h"
#include "draw/placement/tracks.h"

namespace tessera_draw::placing {

// What a container's own box requires; for the drawing all is 0.
struct Limits {
    Size minSize;
    Insets padding;
    // The part of the title beside which lines cross the border: its width, and its height below the padding.
    Size header;
};

// The distance between a container's border and end labels inside of it. Lines cross the border beside its title, even where
// that needs a large padding.
[[nodiscard]] double labelInset(double padding, const Spacing& spacing);

class Columns {
  public:
    // `widths` are those of the boxes, and of the grids that they lead.
    Columns(const std::vector<BoxToPlace>& boxes, LayeredGraph& graph, const Spacing& spacing,
            const Offsets& offsets, const std::vector<double>& widths, ContainerGeometry& geometry);

    // Measures the layers of a container. REQUIRES: the tops and offsets in it are set.
    void begin(Index container, const Limits& limits);

    // Where the layers need more than this width, and are not in rows yet, chooses the ends of rows in which they go on
    // below one another. Returns whether there are any; tops and offsets are best set again then, for each row on its own.
    [[nodiscard]] bool fold(double foldWidth);

    // Sets where the layers begin and how edges bend. Moves the tops of vertices to their rows. Returns the container's
    // size; `height` is its height in one row.
    [[nodiscard]] Size place(double height);

    // From the container's left side, after place().
    [[nodiscard]] double left(Index box) const { return m_left[box]; }

  private:
    // The boxes of a layer stand around an axis, with the labels beside them.
    struct Column {
        double before = 0;  // from its left side to the axis
        double after = 0;   // from the axis to its right side
        double widest = 0;  // box that stands at one of the sides
    };
    struct Gap {
        std::vector<GapEdge> edges;  // those that bend
        std::vector<Bends> bends;
        double width = 0;  // of the widest bends, or the least that boxes need
        Index lines = 0;   // that lead through it
    };
    struct FoldEdge {
        Index edge = 0;
        double from = 0;
        double to = 0;
    };

    [[nodiscard]] double measure();
    void findPortLabels();
    void collectGap(Index layer);
    void addToGap(Index index);
    [[nodiscard]] double minGap(Index layer, bool hasBends) const;
    [[nodiscard]] bool hasOnlyLabels(Index layer) const;
    [[nodiscard]] Index labelAfter(Index port) const;
    [[nodiscard]] Index labelBefore(Index port) const;
    [[nodiscard]] Column columnOf(Index layer) const;
    [[nodiscard]] double leftInColumn(Index box, const Column& column, double width) const;
    [[nodiscard]] double shareInColumn(Index box) const;
    [[nodiscard]] double stackRows();
    [[nodiscard]] double foldGap(Index layer, double rowRight, const Point& firstLane);
    [[nodiscard]] double setRow();
    [[nodiscard]] double setRows();
    [[nodiscard]] double packRow(Index begin, Index end, double x);
    void packColumn(Index layer, Skyline& skyline);
    void packBends(Index layer, Skyline& skyline);
    [[nodiscard]] double borderAfter() const;
    [[nodiscard]] bool isFold(Index layer) const { return m_geometry.isRowEnd[layer] != 0; }
    [[nodiscard]] Gap& gapAfter(Index layer) { return m_gaps[layer - m_first]; }

    const std::vector<BoxToPlace>& m_boxes;
    LayeredGraph& m_graph;
    const Spacing& m_spacing;
    const Offsets& m_offsets;
    const std::vector<double>& m_widths;
    ContainerGeometry& m_geometry;
    std::vector<double> m_left;        // by box
    std::vector<double> m_layerWidth;  // by layer
    std::vector<double> m_portLabels;  // by layer: the widest label inside a border
    // Of the container at work:
    Index m_first = 0;
    Index m_last = 0;
    Limits m_limits;
    double m_width = 0;  // of all layers in one row
    bool m_hasFolds = false;
    std::vector<Gap> m_gaps;
    double m_lastMiddle = 0;  // of the boxes packed so far
    double m_boxesEnd = 0;    // the right side of what is in the row, its bends apart
    double m_bendsEnd = 0;
    std::vector<double> m_firstLanes;  // by row but the first: the y of the uppermost lane above it
    std::vector<GapEdge> m_gap;
    std::vector<FoldEdge> m_foldEdges;
};

}  // namespace tessera_draw::placing
