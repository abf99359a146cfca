// Places the layers of a container side by side: columns of boxes, gaps in which edges bend, and rows of columns.
#pragma once

#include <vector>

#include "draw/placement/container_geometry.h"
#include "draw/placement/offsets.h"
#include "draw/placement/tracks.h"

namespace tessera_draw::placing {

// What a container's own box requires; for the drawing all is 0.
struct Limits {
    Size minSize;
    Insets padding;
    // The part of the title beside which lines cross the border: its width, and its height below the padding.
    Size header;
};

class Columns {
  public:
    // `widths` are those of the boxes, and of the grids that they lead.
    Columns(const std::vector<BoxToPlace>& boxes, LayeredGraph& graph, const Spacing& spacing,
            const Offsets& offsets, const std::vector<double>& widths, ContainerGeometry& geometry);

    // Sets where the container's layers begin and how its edges bend. Where the layers need more than `foldWidth`, they
    // go on in further rows below: that changes the tops of vertices. Returns the container's size. REQUIRES: the tops
    // and offsets in the container are set; `height` is its height in one row.
    [[nodiscard]] Size place(Index container, const Limits& limits, double height, double foldWidth);

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
        double width = 0;
        Index lines = 0;      // that lead through it
        bool isFold = false;  // the layers after it are in the next row
    };
    struct FoldEdge {
        Index edge = 0;
        double from = 0;
        double to = 0;
    };

    [[nodiscard]] double measure(const Limits& limits);
    void findPortLabels();
    void collectGap(Index layer);
    void addToGap(Index edge);
    [[nodiscard]] double minGap(Index layer, const Limits& limits, bool hasBends) const;
    [[nodiscard]] bool hasOnlyLabels(Index layer) const;
    [[nodiscard]] Index labelAfter(Index port) const;
    [[nodiscard]] Index labelBefore(Index port) const;
    [[nodiscard]] Column columnOf(Index layer) const;
    [[nodiscard]] double shareInColumn(Index box) const;
    void chooseFolds(double foldWidth);
    [[nodiscard]] double stackRows(const Limits& limits);
    [[nodiscard]] double foldGap(Index layer, double rowRight, const Point& firstLane);
    [[nodiscard]] double setRow(double spare);
    [[nodiscard]] double setRows(const Limits& limits);
    void setLefts();
    [[nodiscard]] Gap& gapAfter(Index layer) { return m_gaps[layer - m_first]; }

    const std::vector<BoxToPlace>& m_boxes;
    LayeredGraph& m_graph;
    const Spacing& m_spacing;
    const Offsets& m_offsets;
    const std::vector<double>& m_widths;
    ContainerGeometry& m_geometry;
    std::vector<double> m_left;        // by box
    std::vector<double> m_portLabels;  // by layer: the widest label inside a border
    // Of the container at work:
    Index m_first = 0;
    Index m_last = 0;
    bool m_hasFolds = false;
    std::vector<Gap> m_gaps;
    std::vector<double> m_firstLanes;  // by row but the first: the y of the uppermost lane above it
    std::vector<GapEdge> m_gap;
    std::vector<FoldEdge> m_foldEdges;
};

}  // namespace tessera_draw::placing
