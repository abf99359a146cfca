#include "draw/placement/container_geometry.h"

#include <algorithm>
#include <limits>
#include <queue>

#include "draw/placement/block_graph.h"
#include "draw/placement/offsets.h"
#include "draw/placement/tracks.h"

namespace tessera_draw::placing {
namespace {

constexpr double middle = 0.5;  // the share of the free width before a box that stands around its column's axis

class GeometryBuilder {
  public:
    GeometryBuilder(const std::vector<BoxToPlace>& boxes, const Nesting& nesting, LayeredGraph& graph,
                    const Spacing& spacing, const CancelToken& cancel)
        : m_boxes(boxes),
          m_nesting(nesting),
          m_graph(graph),
          m_spacing(spacing),
          m_cancel(cancel),
          m_offsets(boxes, graph, nesting, spacing) {
        m_geometry.boxes.resize(boxes.size() + 1);
        m_width.resize(boxes.size());
        m_left.resize(boxes.size());
        m_portLabels.resize(graph.firstLayer.back(), 0);
        m_geometry.layerX.resize(graph.firstLayer.back(), 0);
        m_geometry.layerWidth.resize(graph.firstLayer.back(), 0);
        sortLanes();
    }

    ContainerGeometry build() {
        // From the inside out, as outer containers have lower numbers: a size needs those of the members.
        for (Index container = m_nesting.containerCount(); container-- > 0 && !m_cancel.isCancelled();)
            place(container);
        placeEndLabels();
        return std::move(m_geometry);
    }

  private:
    // What the container's own box requires; for the drawing all is 0.
    struct Limits {
        Size minSize;
        Insets padding;
        // The part of the title beside which lines cross the border: its width,
        // and its height below the padding.
        Size header;
    };

    [[nodiscard]] Limits limitsOf(Index container) const {
        const Index box = m_nesting.boxOf[container];
        if (box == m_nesting.drawing) return {};
        const BoxToPlace& own = m_boxes[box];
        Limits limits{own.size, own.padding, {}};
        const double reach = own.header.height - own.padding.top;
        if (reach > 0 && m_graph.sizeOf(m_graph.firstLayer[container]) > 0)
            limits.header = {std::min(own.header.width, own.padding.left), reach};
        return limits;
    }

    // Collects the edges to lanes by container.
    void sortLanes() {
        m_lanes.resize(m_nesting.containerCount());
        for (const EdgeChain& chain : m_graph.chains)
            if (m_graph.edges[chain.firstEdge].kind == Edge::Kind::toLane)
                m_lanes[chain.container].push_back(chain.firstEdge);
    }

    void place(Index container) {
        const Limits limits = limitsOf(container);
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            Rect& rect = m_geometry.boxes[box];
            // Containers among the members have their size already.
            if (m_nesting.containerOf[box] == nothing)
                rect = {0, 0, m_boxes[box].size.width, m_boxes[box].size.height};
            m_graph.height[box] = rect.height;
            m_width[box] = rect.width;
        }
        arrangeGrids(container);
        m_offsets.set(container, m_geometry.boxes);
        fillBlockGraph(m_blockGraph, m_graph, container, limits.header.height, m_spacing);
        std::vector<double> tops = alignedTops(m_blockGraph, m_cancel);
        // The title's vertex is the first; it starts at the height of the topmost one.
        if (limits.header.height > 0) tops.front() = *std::min_element(tops.begin(), tops.end());
        relax(m_blockGraph, tops, m_cancel);
        Rect& own = m_geometry.boxes[m_nesting.boxOf[container]];
        own.height = setTops(container, tops, limits);
        m_offsets.straighten(container);
        own.width = setColumns(container, limits);
        setLefts(container);
        placeBoxes(container);
    }

    // The leader has the size of the whole grid.
    void arrangeGrids(Index container) {
        const IsolatedGrids& grids = m_graph.grids;
        for (Index i = grids.firstInContainer[container]; i < grids.firstInContainer[container + 1]; ++i) {
            const Size size = arrange(grids, grids.grids[i], m_boxes, m_spacing, m_geometry.boxes);
            m_graph.height[grids.leader(grids.grids[i])] = size.height;
            m_width[grids.leader(grids.grids[i])] = size.width;
        }
    }

    // Returns the container's height.
    double setTops(Index container, const std::vector<double>& tops, const Limits& limits) {
        double top = std::numeric_limits<double>::infinity();
        double bottom = -std::numeric_limits<double>::infinity();
        for (Index i = 0; i < m_blockGraph.size(); ++i) {
            top = std::min(top, tops[i]);
            bottom = std::max(bottom, tops[i] + m_blockGraph.height[i]);
        }
        if (m_blockGraph.size() == 0) top = bottom = 0;
        const double lanes = setLanes(container, bottom);
        const Insets& padding = limits.padding;
        const double height = padding.top + (bottom - top) + lanes + padding.bottom;
        const double spare = std::max(limits.minSize.height - height, 0.0);
        const double move = padding.top + spare / 2 - top;
        for (Index i = 0; i < m_blockGraph.size(); ++i)
            if (m_blockGraph.vertex[i] != nothing) m_graph.top[m_blockGraph.vertex[i]] = tops[i] + move;
        for (const Index edge : m_lanes[container]) {
            m_graph.edges[edge].headOffset += move;
            m_graph.edges[edge + 1].tailOffset = m_graph.edges[edge].headOffset;
        }
        return height + spare;
    }

    // Places lanes below everything; those that share no layers get the same one. Returns the height that
    // they need.
    double setLanes(Index container, double bottom) {
        auto& lanes = m_lanes[container];
        const auto first = [&](Index edge) { return m_graph.layer[m_graph.edges[edge].tail]; };
        const auto last = [&](Index edge) { return m_graph.layer[m_graph.edges[edge + 1].head]; };
        std::sort(lanes.begin(), lanes.end(),
                  [&](Index a, Index b) { return first(a) != first(b) ? first(a) < first(b) : a < b; });
        // Lanes in use, the one that ends first on top: n log n for n lines.
        using EndAndLane = std::pair<Index, Index>;
        std::priority_queue<EndAndLane, std::vector<EndAndLane>, std::greater<>> used;
        Index count = 0;
        for (const Index edge : lanes) {
            Index lane = count;
            if (!used.empty() && used.top().first < first(edge)) {
                lane = used.top().second;
                used.pop();
            } else {
                ++count;
            }
            used.emplace(last(edge), lane);
            m_graph.edges[edge].headOffset = bottom + m_spacing.betweenBoxes + lane * m_spacing.betweenLines;
        }
        return count == 0 ? 0 : m_spacing.betweenBoxes + (count - 1) * m_spacing.betweenLines;
    }

    void collectGap(Index layer) {
        // All edges that may bend between this layer and the next one.
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

    void addToGap(Index index) {
        const Edge& edge = m_graph.edges[index];
        GapEdge inGap;
        inGap.edge = index;
        inGap.from = edge.tail == nothing ? edge.tailOffset : m_graph.tailY(edge);
        inGap.to = edge.head == nothing ? edge.headOffset : m_graph.headY(edge);
        inGap.isLoop = edge.kind == Edge::Kind::loop;
        m_gap.push_back(inGap);
    }

    // The gap's width without bends. At borders, bends may use the padding.
    [[nodiscard]] double minGap(Index container, Index layer, const Limits& limits, bool hasBends) const {
        const bool isFirst = layer == m_graph.firstLayer[container];
        const bool isLast = layer + 1 == m_graph.lastLayer(container);
        const double left = limits.padding.left - limits.header.width;
        const double before = m_portLabels[m_graph.firstLayer[container]] > 0 ? m_spacing.besideLabels : left;
        const double after =
            m_portLabels[m_graph.lastLayer(container)] > 0 ? m_spacing.besideLabels : limits.padding.right;
        if (isFirst && isLast) return before + after;
        if (isFirst) return before;
        if (isLast) return after;
        const bool isBesideLabels = hasOnlyLabels(layer) || hasOnlyLabels(layer + 1);
        return isBesideLabels && !hasBends ? m_spacing.besideLabels : m_spacing.betweenLayers;
    }

    // Of the boxes in the layer.
    [[nodiscard]] bool hasOnlyLabels(Index layer) const {
        return std::all_of(m_graph.order.begin() + m_graph.layerBegin[layer],
                           m_graph.order.begin() + m_graph.layerBegin[layer + 1], [&](Index vertex) {
                               return vertex >= m_graph.boxCount || m_boxes[vertex].isLabel;
                           });
    }

    // Returns the container's width.
    double setColumns(Index container, const Limits& limits) {
        const Index first = m_graph.firstLayer[container];
        const Index last = m_graph.lastLayer(container);
        std::vector<std::vector<GapEdge>> gaps;
        std::vector<double> widths;
        findPortLabels(first, last);
        // Labels inside the borders stand between the padding and the gap.
        m_geometry.layerWidth[last] = m_portLabels[last] > 0 ? m_portLabels[last] + limits.padding.right : 0;
        double all = m_geometry.layerWidth[last];
        for (Index layer = first; layer < last; ++layer) {
            collectGap(layer);
            GapPlan plan(m_gap, m_graph, m_spacing);
            const double bends = plan.width();
            const double width = std::max(bends, minGap(container, layer, limits, bends > 0));
            gaps.push_back(m_gap);
            widths.push_back(width);
            m_geometry.layerWidth[layer] = layer == first ? limits.header.width : columnWidth(layer);
            if (m_portLabels[layer] > 0 && layer == first)
                m_geometry.layerWidth[layer] =
                    std::max(limits.header.width, limits.padding.left + m_portLabels[layer]);
            all += width + m_geometry.layerWidth[layer];
        }
        const double spare = std::max(limits.minSize.width - all, 0.0);
        // What the minimum leaves is divided between both sides, so that the contents are centered.
        widths.front() += spare / 2;
        widths.back() += spare / 2;
        double x = 0;
        for (Index layer = first; layer < last; ++layer) {
            m_geometry.layerX[layer] = x;
            GapPlan(gaps[layer - first], m_graph, m_spacing).setTracks(widths[layer - first]);
            x += m_geometry.layerWidth[layer] + widths[layer - first];
        }
        m_geometry.layerX[last] = x;
        return x + m_geometry.layerWidth[last];
    }

    // The widest labels inside the borders before the first and after the last layer.
    void findPortLabels(Index first, Index last) {
        for (const Index layer : {first, last})
            for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
                const Index vertex = m_graph.order[i];
                const Index label = layer == first ? labelAfter(vertex) : labelBefore(vertex);
                if (label != nothing)
                    m_portLabels[layer] = std::max(m_portLabels[layer], m_boxes[label].size.width);
            }
    }
    // Of hierarchical ports, at which one edge ends.
    [[nodiscard]] Index labelAfter(Index port) const {
        const Index edge = m_graph.outBegin[port];
        return edge == m_graph.outBegin[port + 1] ? nothing : m_graph.edges[m_graph.outEdges[edge]].tailLabel;
    }
    [[nodiscard]] Index labelBefore(Index port) const {
        const Index edge = m_graph.inBegin[port];
        return edge == m_graph.inBegin[port + 1] ? nothing : m_graph.edges[m_graph.inEdges[edge]].headLabel;
    }

    // The boxes of a layer stand around an axis, with the labels beside them.
    struct Column {
        double before = 0;  // from its left side to the axis
        double after = 0;   // from the axis to its right side
        double widest = 0;  // box that stands at one of the sides
    };

    [[nodiscard]] Column columnOf(Index layer) const {
        Column column;
        for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
            const Index box = m_graph.order[i];
            if (box >= m_graph.boxCount) continue;
            const double share = shareInColumn(box);
            const double before = m_offsets.widthBefore(box) + m_width[box] / 2;
            const double after = m_offsets.widthAfter(box) + m_width[box] / 2;
            if (share == middle) {
                column.before = std::max(column.before, before);
                column.after = std::max(column.after, after);
            } else {
                column.widest = std::max(column.widest, before + after);
            }
        }
        return column;
    }

    [[nodiscard]] double columnWidth(Index layer) const {
        const Column column = columnOf(layer);
        return std::max(column.before + column.after, column.widest);
    }

    void placeBoxes(Index container) {
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            const Index grid = m_graph.grids.ofBox[box];
            const Index leader = grid == nothing ? box : m_graph.grids.leader(m_graph.grids.grids[grid]);
            const Index layer = m_graph.layer[box];
            Rect& rect = m_geometry.boxes[box];
            rect.x += m_geometry.layerX[layer] + m_left[leader];
            rect.y += m_graph.top[leader] + m_offsets.inset(leader);
        }
    }

    // Sets where each box or grid begins in its column.
    void setLefts(Index container) {
        const Index last = m_graph.lastLayer(container);
        for (Index layer = m_graph.firstLayer[container] + 1; layer < last; ++layer) {
            const Column column = columnOf(layer);
            const double width = m_geometry.layerWidth[layer];
            const double axis = column.before + (width - column.before - column.after) / 2;
            for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
                const Index box = m_graph.order[i];
                if (box >= m_graph.boxCount) continue;
                const double share = shareInColumn(box);
                m_left[box] = share == middle ? axis - m_width[box] / 2
                              : share < middle
                                  ? m_offsets.widthBefore(box)
                                  : width - m_offsets.widthAfter(box) - m_width[box];
            }
        }
    }

    // Labels beside boxes, and those inside of containers' borders, which stand at the padding.
    void placeEndLabels() {
        for (const Edge& edge : m_graph.edges) {
            if (edge.tailLabel != nothing) placeLabel(edge.tailLabel, edge.tail, m_graph.tailY(edge), true);
            if (edge.headLabel != nothing)
                placeLabel(edge.headLabel, edge.head, m_graph.headY(edge), edge.kind == Edge::Kind::loop);
        }
    }

    void placeLabel(Index label, Index vertex, double y, bool isAfter) {
        const Size size = m_boxes[label].size;
        Rect& rect = m_geometry.boxes[label];
        rect = {0, y - size.height / 2, size.width, size.height};
        if (vertex < m_graph.boxCount) {
            const Rect& box = m_geometry.boxes[vertex];
            rect.x = isAfter ? box.right() + m_spacing.besideLabels
                             : box.x - m_spacing.besideLabels - size.width;
            return;
        }
        const Index container = m_graph.hierarchicalPorts[vertex - m_graph.boxCount].box;
        const Insets& padding = m_boxes[container].padding;
        rect.x = isAfter ? padding.left : m_geometry.boxes[container].width - padding.right - size.width;
    }

    // In a column with a grid, which is wide, a box is moved to the side that its lines come from, or else to
    // the side that they lead to.
    [[nodiscard]] double shareInColumn(Index box) const {
        const Index layer = m_graph.layer[box];
        const Index last = m_graph.at(layer, m_graph.sizeOf(layer) - 1);
        const bool isBesideGrid =
            last != box && last < m_graph.boxCount && m_graph.grids.ofBox[last] != nothing;
        if (!isBesideGrid || m_boxes[box].along != BoxToPlace::Along::middle)
            return shareBefore(m_boxes[box]);
        if (m_graph.inBegin[box] < m_graph.inBegin[box + 1]) return 0;
        return m_graph.outBegin[box] < m_graph.outBegin[box + 1] ? 1 : middle;
    }

    const std::vector<BoxToPlace>& m_boxes;
    const Nesting& m_nesting;
    LayeredGraph& m_graph;
    const Spacing& m_spacing;
    const CancelToken& m_cancel;
    Offsets m_offsets;
    BlockGraph m_blockGraph;
    std::vector<double> m_width;  // by box: of the box, or of the grid that it leads
    std::vector<double> m_left;   // by box: from its column's left side
    std::vector<double> m_portLabels;  // by layer: the widest label inside a border
    std::vector<GapEdge> m_gap;
    std::vector<std::vector<Index>> m_lanes;  // by container: the edges to them
    ContainerGeometry m_geometry;
};

}  // namespace

ContainerGeometry containerGeometryOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                                      LayeredGraph& graph, const Spacing& spacing,
                                      const CancelToken& cancel) {
    return GeometryBuilder(boxes, nesting, graph, spacing, cancel).build();
}

}  // namespace tessera_draw::placing
