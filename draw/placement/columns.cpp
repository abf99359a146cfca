#include "draw/placement/columns.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tessera_draw::placing {
namespace {

constexpr double middle =
    0.5;  // the share of the free width before a box that stands around its column's axis

}  // namespace

double labelInset(double padding, const Spacing& spacing) {
    return std::min(padding, spacing.besideLabels);
}

Columns::Columns(const std::vector<BoxToPlace>& boxes, LayeredGraph& graph, const Spacing& spacing,
                 const Offsets& offsets, const std::vector<double>& widths, ContainerGeometry& geometry)
    : m_boxes(boxes),
      m_graph(graph),
      m_spacing(spacing),
      m_offsets(offsets),
      m_widths(widths),
      m_geometry(geometry),
      m_left(boxes.size(), 0),
      m_layerWidth(graph.firstLayer.back(), 0),
      m_portLabels(graph.firstLayer.back(), 0) {}

void Columns::begin(Index container, const Limits& limits) {
    m_first = m_graph.firstLayer[container];
    m_last = m_graph.lastLayer(container);
    m_limits = limits;
    // Those of an earlier placement.
    const auto ends = m_geometry.isRowEnd.begin();
    m_hasFolds = std::find(ends + m_first, ends + m_last, 1) != ends + m_last;
    findPortLabels();
    m_width = measure();
}

Size Columns::place(double height) {
    Size size{0, height};
    if (m_hasFolds) {
        size.height = std::max(m_limits.minSize.height, stackRows());
        // The tops have changed.
        (void)measure();
        size.width = setRows();
    } else {
        size.width = setRow();
    }
    return size;
}

// Returns the width of all layers and gaps.
double Columns::measure() {
    m_gaps.resize(m_last - m_first);
    // Labels inside the borders stand between the padding and the gap.
    m_layerWidth[m_last] =
        m_portLabels[m_last] > 0 ? m_portLabels[m_last] + labelInset(m_limits.padding.right, m_spacing) : 0;
    double all = m_layerWidth[m_last];
    for (Index layer = m_first; layer < m_last; ++layer) {
        Gap& gap = gapAfter(layer);
        collectGap(layer);
        gap.lines = static_cast<Index>(
            std::count_if(m_gap.begin(), m_gap.end(), [](const GapEdge& edge) { return !edge.isLoop; }));
        gap.bends.clear();
        if (!isFold(layer)) gap.bends = GapPlan(m_gap, m_graph, m_spacing).bends();
        gap.width = minGap(layer, !gap.bends.empty());
        for (const Bends& bends : gap.bends)
            gap.width = std::max(gap.width, bends.width);
        gap.edges = m_gap;
        const Column column = columnOf(layer);
        m_layerWidth[layer] = std::max(column.before + column.after, column.widest);
        if (layer == m_first)
            m_layerWidth[layer] = std::max(
                m_limits.header.width,
                m_portLabels[layer] > 0 ? labelInset(m_limits.padding.left, m_spacing) + m_portLabels[layer]
                                        : 0);
        all += gap.width + m_layerWidth[layer];
    }
    return all;
}

// All edges that may bend between this layer and the next one.
void Columns::collectGap(Index layer) {
    m_gap.clear();
    const Index begin = m_graph.layerBegin[layer];
    for (Index i = begin; i < m_graph.layerBegin[layer + 1]; ++i) {
        const Index vertex = m_graph.order[i];
        for (Index k = m_graph.outBegin[vertex]; k < m_graph.outBegin[vertex + 1]; ++k)
            addToGap(m_graph.outEdges[k]);
        m_offsets.forOthers(vertex, [&](Index edge, bool isTail) {
            const bool isAfterLayer = m_graph.edges[edge].kind == Edge::Kind::toLane ||
                                      (m_graph.edges[edge].kind == Edge::Kind::loop && isTail);
            if (isAfterLayer) addToGap(edge);
        });
    }
    for (Index i = m_graph.layerBegin[layer + 1]; i < m_graph.layerBegin[layer + 2]; ++i)
        m_offsets.forOthers(m_graph.order[i], [&](Index edge, bool) {
            if (m_graph.edges[edge].kind == Edge::Kind::fromLane) addToGap(edge);
        });
}

void Columns::addToGap(Index index) {
    Edge& edge = m_graph.edges[index];
    edge.bend = Edge::Bend::none;
    GapEdge inGap;
    inGap.edge = index;
    inGap.from = edge.tail == nothing ? edge.tailOffset : m_graph.tailY(edge);
    inGap.to = edge.head == nothing ? edge.headOffset : m_graph.headY(edge);
    inGap.isLoop = edge.kind == Edge::Kind::loop;
    m_gap.push_back(inGap);
}

// The gap's width without bends. At borders, bends may use the padding.
double Columns::minGap(Index layer, bool hasBends) const {
    const bool isFirst = layer == m_first;
    const bool isLast = layer + 1 == m_last;
    const double before =
        m_portLabels[m_first] > 0 ? m_spacing.besideLabels : m_limits.padding.left - m_limits.header.width;
    const double after = m_portLabels[m_last] > 0 ? m_spacing.besideLabels : m_limits.padding.right;
    if (isFirst && isLast) return before + after;
    if (isFirst) return before;
    if (isLast) return after;
    const bool isBesideLabels = hasOnlyLabels(layer) || hasOnlyLabels(layer + 1);
    return isBesideLabels && !hasBends ? m_spacing.besideLabels : m_spacing.betweenLayers;
}

// Of the boxes in the layer.
bool Columns::hasOnlyLabels(Index layer) const {
    return std::all_of(m_graph.order.begin() + m_graph.layerBegin[layer],
                       m_graph.order.begin() + m_graph.layerBegin[layer + 1],
                       [&](Index vertex) { return vertex >= m_graph.boxCount || m_boxes[vertex].isLabel; });
}

// The widest labels inside the borders before the first and after the last layer.
void Columns::findPortLabels() {
    for (const Index layer : {m_first, m_last})
        for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
            const Index vertex = m_graph.order[i];
            const Index label = layer == m_first ? labelAfter(vertex) : labelBefore(vertex);
            if (label != nothing)
                m_portLabels[layer] = std::max(m_portLabels[layer], m_boxes[label].size.width);
        }
}

// Of hierarchical ports, at which one edge ends.
Index Columns::labelAfter(Index port) const {
    const Index edge = m_graph.outBegin[port];
    return edge == m_graph.outBegin[port + 1] ? nothing : m_graph.edges[m_graph.outEdges[edge]].tailLabel;
}
Index Columns::labelBefore(Index port) const {
    const Index edge = m_graph.inBegin[port];
    return edge == m_graph.inBegin[port + 1] ? nothing : m_graph.edges[m_graph.inEdges[edge]].headLabel;
}

Columns::Column Columns::columnOf(Index layer) const {
    Column column;
    for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
        const Index box = m_graph.order[i];
        if (box >= m_graph.boxCount) continue;
        const double before = m_offsets.widthBefore(box) + m_widths[box] / 2;
        const double after = m_offsets.widthAfter(box) + m_widths[box] / 2;
        if (shareInColumn(box) == middle) {
            column.before = std::max(column.before, before);
            column.after = std::max(column.after, after);
        } else {
            column.widest = std::max(column.widest, before + after);
        }
    }
    return column;
}

// In a column with a grid, which is wide, a box is moved to the side that its lines come from, or else to
// the side that they lead to.
double Columns::shareInColumn(Index box) const {
    const Index layer = m_graph.layer[box];
    const Index last = m_graph.at(layer, m_graph.sizeOf(layer) - 1);
    const bool isBesideGrid = last != box && last < m_graph.boxCount && m_graph.grids.ofBox[last] != nothing;
    if (!isBesideGrid || m_boxes[box].along != BoxToPlace::Along::middle) return shareBefore(m_boxes[box]);
    if (m_graph.inBegin[box] < m_graph.inBegin[box + 1]) return 0;
    return m_graph.outBegin[box] < m_graph.outBegin[box + 1] ? 1 : middle;
}

// All layers in one row. Returns the container's width.
double Columns::setRow() {
    const double width = packRow(m_first, m_last, 0) + borderAfter();
    const double spare = m_limits.minSize.width - width;
    if (spare <= 0) return width;
    // What the minimum leaves is divided between both sides, so that the contents are centered.
    (void)packRow(m_first, m_last, spare / 2);
    return m_limits.minSize.width;
}

// The width between what packRow() returned and the container's right side.
double Columns::borderAfter() const {
    const double least = m_boxesEnd + minGap(m_last - 1, false);
    return std::max(least, m_bendsEnd) - std::max(m_boxesEnd, m_bendsEnd) + m_layerWidth[m_last];
}

// Moves the columns from this one to the one before `end`, and the bends after each, to the left as far as nothing is in their way.
// Returns where the last of them ends.
double Columns::packRow(Index begin, Index end, double x) {
    Reach start{x, x, x};
    if (begin == m_first) {
        start.bend += m_layerWidth[m_first];
        start.box = start.label = start.bend + minGap(m_first, false);
    }
    Skyline skyline(start);
    m_lastMiddle = -std::numeric_limits<double>::infinity();
    m_boxesEnd = m_bendsEnd = start.bend;
    for (Index layer = begin; layer < end; ++layer) {
        if (layer > m_first) packColumn(layer, skyline);
        packBends(layer, skyline);
    }
    return std::max(m_boxesEnd, m_bendsEnd);
}

// All boxes of a layer move together. Boxes of later layers may be above and below it, but no box's middle is before that of a
// box in an earlier layer.
void Columns::packColumn(Index layer, Skyline& skyline) {
    const Column column = columnOf(layer);
    const double width = m_layerWidth[layer];
    const auto forBoxes = [&](auto visit) {
        for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
            const Index box = m_graph.order[i];
            if (box >= m_graph.boxCount) continue;
            const double left = leftInColumn(box, column, width);
            const Rect rect{left - m_offsets.widthBefore(box), m_graph.top[box],
                            m_offsets.widthBefore(box) + m_widths[box] + m_offsets.widthAfter(box),
                            m_graph.height[box]};
            visit(box, left, rect);
        }
    };
    // Grids are beside all other columns.
    const auto middle = [&](Index box, double left, double side) {
        return m_graph.grids.ofBox[box] == nothing ? left + m_widths[box] / 2 : side;
    };
    double x = -std::numeric_limits<double>::infinity();
    forBoxes([&](Index box, double left, const Rect& rect) {
        const bool isLabel = m_boxes[box].isLabel;
        const double air = isLabel ? m_spacing.betweenLines : m_spacing.betweenBoxes;
        const Reach reach = skyline.over(rect.y - air, rect.bottom() + air);
        x = std::max({x, (isLabel ? reach.label : reach.box) - rect.x,
                      m_lastMiddle + m_spacing.betweenLayers - middle(box, left, rect.x)});
    });
    forBoxes([&](Index box, double left, const Rect& rect) {
        m_left[box] = x + left;
        const double right = x + rect.right();
        const double gap = m_boxes[box].isLabel ? m_spacing.besideLabels : m_spacing.betweenLayers;
        skyline.raise(rect.y, rect.bottom(), {right + gap, right + m_spacing.besideLabels, right});
        m_boxesEnd = std::max(m_boxesEnd, right);
        m_lastMiddle = std::max(m_lastMiddle, middle(box, x + left, right));
    });
}

// After this layer.
void Columns::packBends(Index layer, Skyline& skyline) {
    Gap& gap = gapAfter(layer);
    GapPlan plan(gap.edges, m_graph, m_spacing);
    for (const Bends& bends : gap.bends) {
        const double x =
            skyline.over(bends.upper - m_spacing.betweenLines, bends.lower + m_spacing.betweenLines).bend;
        plan.place(bends, x);
        const double end = x + bends.width;
        skyline.raise(bends.upper, bends.lower, {end, end, end});
        m_bendsEnd = std::max(m_bendsEnd, end);
    }
}

// Fills each row up to the width, and ends it where few lines lead on.
bool Columns::fold(double foldWidth) {
    constexpr double leastFilled = 0.55;
    constexpr double emptiness = 8;  // as many lines are worth a row that is empty
    if (m_width <= foldWidth) return false;
    // Packed columns need less.
    const double packed = packRow(m_first, m_last, 0) + borderAfter();
    if (packed <= foldWidth) return false;
    foldWidth *= m_width / packed;
    double x = 0;
    double best = std::numeric_limits<double>::infinity();
    Index bestLayer = nothing;
    double afterBest = 0;  // the width of what follows the best end so far
    // The border's layers stay in the rows of their neighbours.
    for (Index layer = m_first; layer + 1 < m_last; ++layer) {
        x += m_layerWidth[layer];
        const Gap& gap = gapAfter(layer);
        afterBest += m_layerWidth[layer];
        if (layer > m_first && x >= leastFilled * foldWidth) {
            const double cost = gap.lines + emptiness * (1 - x / foldWidth);
            if (cost <= best || bestLayer == nothing) {
                best = cost;
                bestLayer = layer;
                afterBest = 0;
            }
        }
        x += gap.width;
        if (bestLayer != layer) afterBest += gap.width;
        const Index next = layer + 1;
        const bool isFull = x + m_layerWidth[next] > foldWidth;
        if (!isFull || bestLayer == nothing || next == m_last) continue;
        m_geometry.isRowEnd[bestLayer] = 1;
        m_hasFolds = true;
        x = afterBest;
        best = std::numeric_limits<double>::infinity();
        bestLayer = nothing;
    }
    return m_hasFolds;
}

// Moves the rows below one another, with lanes for the lines between them. Returns the container's height.
double Columns::stackRows() {
    m_firstLanes.clear();
    double bottom = m_limits.padding.top + m_limits.header.height;
    double y = m_limits.padding.top;
    Index lines = 0;
    for (Index begin = m_first; begin <= m_last;) {
        Index end = begin;
        while (end < m_last && !isFold(end))
            ++end;
        double top = std::numeric_limits<double>::infinity();
        for (Index i = m_graph.layerBegin[begin]; i < m_graph.layerBegin[end + 1]; ++i)
            top = std::min(top, m_graph.top[m_graph.order[i]]);
        if (begin == m_first) {
            top = std::min(top, y);
        } else {
            m_firstLanes.push_back(bottom + m_spacing.betweenBoxes);
            y = bottom + 2 * m_spacing.betweenBoxes + (lines == 0 ? 0 : lines - 1) * m_spacing.betweenLines;
        }
        for (Index i = m_graph.layerBegin[begin]; i < m_graph.layerBegin[end + 1]; ++i) {
            const Index vertex = m_graph.order[i];
            m_graph.top[vertex] += y - top;
            bottom = std::max(bottom, m_graph.top[vertex] + m_graph.height[vertex]);
        }
        if (end < m_last) lines = gapAfter(end).lines;
        begin = end + 1;
    }
    return bottom + m_limits.padding.bottom;
}

// Returns the container's width.
double Columns::setRows() {
    double x = 0;
    double width = m_limits.minSize.width;
    std::size_t row = 0;
    for (Index begin = m_first; begin < m_last;) {
        Index end = begin;
        while (end < m_last && !isFold(end))
            ++end;
        if (end == m_last) {
            // The last layer stands at the border, which may be beyond its row.
            width = std::max(width, packRow(begin, m_last, x) + borderAfter());
            break;
        }
        const double right = packRow(begin, end + 1, x);
        width = std::max(width, foldGap(end, right, {m_limits.padding.left, m_firstLanes[row++]}) +
                                    m_spacing.betweenBoxes + m_limits.padding.right);
        const double tracks =
            gapAfter(end).lines == 0 ? 0 : (gapAfter(end).lines - 1) * m_spacing.betweenLines;
        x = m_limits.padding.left + tracks + m_spacing.betweenBoxes;
        begin = end + 1;
    }
    return width;
}

// Leads the lines after this layer to the right of their row, through lanes below it and up to the left of the next.
// Of two lines that keep their order the lower one is the inner one at the right, and has the upper lane: so they do
// not cross. Returns the row's right end.
double Columns::foldGap(Index layer, double rowRight, const Point& firstLane) {
    Gap& gap = gapAfter(layer);
    m_foldEdges.clear();
    for (const GapEdge& edge : gap.edges)
        if (!edge.isLoop) m_foldEdges.push_back({edge.edge, edge.from, edge.to});
    std::erase_if(gap.edges, [](const GapEdge& edge) { return !edge.isLoop; });
    GapPlan loops(gap.edges, m_graph, m_spacing);
    double x = rowRight + m_spacing.betweenBoxes;
    for (const Bends& bends : loops.bends()) {
        loops.place(bends, rowRight);
        x = std::max(x, rowRight + bends.width);
    }
    std::sort(m_foldEdges.begin(), m_foldEdges.end(), [](const FoldEdge& a, const FoldEdge& b) {
        return a.from != b.from ? a.from > b.from : a.edge < b.edge;
    });
    double lane = firstLane.y;
    for (const FoldEdge& edge : m_foldEdges) {
        m_graph.edges[edge.edge].bend = Edge::Bend::fold;
        m_graph.edges[edge.edge].fold = static_cast<Index>(m_geometry.folds.size());
        m_geometry.folds.push_back({x, lane, 0});
        x += m_spacing.betweenLines;
        lane += m_spacing.betweenLines;
    }
    std::sort(m_foldEdges.begin(), m_foldEdges.end(), [](const FoldEdge& a, const FoldEdge& b) {
        return a.to != b.to ? a.to > b.to : a.edge < b.edge;
    });
    double left = firstLane.x;
    for (const FoldEdge& edge : m_foldEdges) {
        m_geometry.folds[m_graph.edges[edge.edge].fold].left = left;
        left += m_spacing.betweenLines;
    }
    return x;
}

// Where the box or grid begins in its column.
double Columns::leftInColumn(Index box, const Column& column, double width) const {
    const double axis = column.before + (width - column.before - column.after) / 2;
    const double share = shareInColumn(box);
    if (share == middle) return axis - m_widths[box] / 2;
    return share < middle ? m_offsets.widthBefore(box) : width - m_offsets.widthAfter(box) - m_widths[box];
}

}  // namespace tessera_draw::placing
