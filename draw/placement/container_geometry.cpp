#include "draw/placement/container_geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>

#include "draw/placement/block_graph.h"
#include "draw/placement/columns.h"
#include "draw/placement/offsets.h"

namespace tessera_draw::placing {
namespace {

class GeometryBuilder {
  public:
    GeometryBuilder(const std::vector<BoxToPlace>& boxes, const Nesting& nesting, LayeredGraph& graph,
                    const Spacing& spacing, double foldWidth, const CancelToken& cancel)
        : m_boxes(boxes),
          m_nesting(nesting),
          m_graph(graph),
          m_spacing(spacing),
          m_cancel(cancel),
          m_offsets(boxes, graph, nesting, spacing),
          m_columns(boxes, graph, spacing, m_offsets, m_width, m_geometry) {
        m_geometry.boxes.resize(boxes.size() + 1);
        m_width.resize(boxes.size());
        m_geometry.isRowEnd.resize(graph.firstLayer.back(), 0);
        m_geometry.contentTop.resize(nesting.containerCount(), 0);
        sortLanes();
        setFoldWidths(foldWidth);
    }

    ContainerGeometry build() {
        // From the inside out, as outer containers have lower numbers: a size needs those of the members.
        for (Index container = m_nesting.containerCount(); container-- > 0 && !m_cancel.isCancelled();)
            place(container);
        placeEndLabels();
        return std::move(m_geometry);
    }

  private:
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

    // Containers have less space than what is around them.
    void setFoldWidths(double foldWidth) {
        constexpr double leastWidth = 300;  // a row of one card with labels
        m_foldWidths.assign(m_nesting.containerCount(), foldWidth);
        for (Index container = 1; container < m_nesting.containerCount(); ++container) {
            const Index box = m_nesting.boxOf[container];
            const Insets& padding = m_boxes[box].padding;
            m_foldWidths[container] = std::max(
                m_foldWidths[m_nesting.containerAround(box)] - padding.left - padding.right, leastWidth);
        }
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
        if (!m_graph.kept.isRowEnd.empty()) keepRows(container);
        double height = align(container, limits);
        m_columns.begin(container, limits);
        // Lanes run below all layers, so that these stay in one row.
        if (m_lanes[container].empty() && m_columns.fold(m_foldWidths[container]))
            height = align(container, limits);
        const Size size = m_columns.place(height);
        Rect& own = m_geometry.boxes[m_nesting.boxOf[container]];
        own.width = size.width;
        own.height = size.height;
        placeBoxes(container);
    }

    // As they were, unless there are lanes now.
    void keepRows(Index container) {
        if (!m_lanes[container].empty()) return;
        const auto begin = m_graph.kept.isRowEnd.begin();
        std::copy(begin + m_graph.firstLayer[container], begin + m_graph.firstLayer[container + 1],
                  m_geometry.isRowEnd.begin() + m_graph.firstLayer[container]);
    }

    // Sets the tops and offsets in the container, and returns its height.
    double align(Index container, const Limits& limits) {
        m_offsets.set(container, m_geometry.boxes);
        fillBlockGraph(m_blockGraph, m_graph, container, limits.header.height, m_geometry.isRowEnd,
                       m_spacing);
        std::vector<char> isFixed = keptVertices(m_blockGraph, m_graph);
        const bool isKept = std::find(isFixed.begin(), isFixed.end(), 1) != isFixed.end();
        std::vector<double> tops = isKept
                                       ? keptTops(m_blockGraph, m_graph, m_graph.kept.contentTop[container])
                                       : alignedTops(m_blockGraph, m_cancel);
        // The title's vertex is the first; it starts at the height of the topmost one.
        if (limits.header.height > 0) tops.front() = *std::min_element(tops.begin(), tops.end());
        // Where nothing is new, nothing moves. Else lines may become straight again, between boxes that stay.
        if (!isKept || hasChanged(isFixed, tops)) {
            for (Index i = 0; i < m_blockGraph.size(); ++i)
                if (m_blockGraph.isOnLine[i] != 0) isFixed[i] = 0;
            relax(m_blockGraph, isFixed, tops, m_cancel);
        }
        const double height = setTops(container, tops, limits);
        m_offsets.straighten(container);
        return height;
    }

    [[nodiscard]] bool hasChanged(const std::vector<char>& isKept, const std::vector<double>& tops) const {
        constexpr double unseen = 1e-6;
        for (Index i = 0; i < m_blockGraph.size(); ++i) {
            const Index vertex = m_blockGraph.vertex[i];
            if (vertex != nothing &&
                (isKept[i] == 0 || std::abs(tops[i] - m_graph.kept.top[vertex]) > unseen))
                return true;
        }
        return false;
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
        // Contents that stay begin where they did.
        constexpr double rounding = 1e-9;
        if (!m_graph.kept.contentTop.empty() && m_graph.kept.contentTop[container] < top + rounding)
            top = m_graph.kept.contentTop[container];
        const double lanes = setLanes(container, bottom);
        const Insets& padding = limits.padding;
        const double height = padding.top + (bottom - top) + lanes + padding.bottom;
        const double spare = std::max(limits.minSize.height - height, 0.0);
        const double move = padding.top + spare / 2 - top;
        m_geometry.contentTop[container] = padding.top + spare / 2;
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

    void placeBoxes(Index container) {
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            const Index grid = m_graph.grids.ofBox[box];
            const Index leader = grid == nothing ? box : m_graph.grids.leader(m_graph.grids.grids[grid]);
            Rect& rect = m_geometry.boxes[box];
            rect.x += m_columns.left(leader);
            rect.y += m_graph.top[leader] + m_graph.inset[leader];
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
            rect.x =
                isAfter ? box.right() + m_spacing.besideLabels : box.x - m_spacing.besideLabels - size.width;
            return;
        }
        const Index container = m_graph.hierarchicalPorts[vertex - m_graph.boxCount].box;
        const Insets& padding = m_boxes[container].padding;
        rect.x = isAfter
                     ? labelInset(padding.left, m_spacing)
                     : m_geometry.boxes[container].width - labelInset(padding.right, m_spacing) - size.width;
    }

    const std::vector<BoxToPlace>& m_boxes;
    const Nesting& m_nesting;
    LayeredGraph& m_graph;
    const Spacing& m_spacing;
    const CancelToken& m_cancel;
    Offsets m_offsets;
    BlockGraph m_blockGraph;
    std::vector<double> m_width;  // by box: of the box, or of the grid that it leads
    ContainerGeometry m_geometry;
    Columns m_columns;
    std::vector<double> m_foldWidths;         // by container
    std::vector<std::vector<Index>> m_lanes;  // by container: the edges to them
};

}  // namespace

ContainerGeometry containerGeometryOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                                      LayeredGraph& graph, const Spacing& spacing, double foldWidth,
                                      const CancelToken& cancel) {
    return GeometryBuilder(boxes, nesting, graph, spacing, foldWidth, cancel).build();
}

}  // namespace tessera_draw::placing
