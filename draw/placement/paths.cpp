#include "draw/placement/paths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessera_draw::placing {
namespace {

// A corner of a line, or a point that it passes.
struct Knot {
    Point at;
    bool isCurve = false;  // from the knot before to here
};

// Pixels that a line runs straight before and after a curve.
constexpr double curveLead = 8;
// The control points' distance that makes a cubic curve nearly a quarter of a circle.
constexpr double roundness = 0.5522847498;

bool isLevel(const Point& a, const Point& b) {
    return std::abs(a.y - b.y) < 1e-6;
}

// The point at this distance from the first one, in the direction of the second.
Point towards(const Point& from, const Point& to, double distance) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (length == 0) return from;
    return {from.x + (to.x - from.x) * distance / length, from.y + (to.y - from.y) * distance / length};
}

class PathMaker {
  public:
    PathMaker(const Nesting& nesting, const LayeredGraph& graph, const ContainerGeometry& geometry,
              const std::vector<Rect>& boxes, const Spacing& spacing)
        : m_nesting(nesting), m_graph(graph), m_geometry(geometry), m_boxes(boxes), m_spacing(spacing) {}

    PlacedLine::Stretch stretch(const RouteSegment& routeSegment, const ChainRange& chains) {
        m_knots.clear();
        if (routeSegment.isDirect) {
            addDirect(routeSegment);
        } else {
            for (Index i = chains.begin; i < chains.end; ++i)
                addPiece(m_graph.chains[i]);
        }
        return drawn();
    }

  private:
    // Straight from side to side, through whatever is between: for segments that would cross too many borders.
    void addDirect(const RouteSegment& routeSegment) {
        const Rect& from = m_boxes[routeSegment.from];
        const Rect& to = m_boxes[routeSegment.to];
        add({from.right(), from.y + from.height / 2}, false);
        add({to.x, to.y + to.height / 2}, true);
    }

    // The edges of a chain, in the direction of the line.
    void addPiece(const EdgeChain& chain) {
        for (Index k = 0; k < chain.edgeCount; ++k) {
            const Index index = chain.firstEdge + (chain.isReversed ? chain.edgeCount - 1 - k : k);
            setEdgeKnots(m_graph.edges[index], chain.container);
            if (chain.isReversed) reverseEdgeKnots();
            for (std::size_t i = 0; i < m_edgeKnotCount; ++i)
                add(m_edgeKnots.at(i).at, m_edgeKnots.at(i).isCurve);
        }
    }

    void setEdgeKnots(const Edge& edge, Index container) {
        const Index box = m_nesting.boxOf[container];
        m_origin = box == m_nesting.drawing ? Point{} : Point{m_boxes[box].x, m_boxes[box].y};
        m_edgeKnotCount = 0;
        const bool isLoop = edge.kind == Edge::Kind::loop;
        const double fromY = edge.tail == nothing ? edge.tailOffset : m_graph.tailY(edge);
        const double toY = edge.head == nothing ? edge.headOffset : m_graph.headY(edge);
        if (hasKnot(edge.tail)) addToEdge(afterTail(edge), fromY);
        if (edge.bend == Edge::Bend::curve) {
            // Arrow heads need a straight piece before the curve. Without heads it is the same, so that curves side by side
            // do not cross.
            const double lead = std::min(curveLead, (edge.bendEnd - edge.bendBegin) / 5);
            addToEdge(edge.bendBegin + lead, fromY);
            addToEdge(edge.bendEnd - lead, toY, true);
        } else if (edge.bend == Edge::Bend::track) {
            addToEdge(edge.bendBegin, fromY);
            addToEdge(edge.bendBegin, toY);
        } else if (edge.bend == Edge::Bend::fold) {
            const Fold& fold = m_geometry.folds[edge.fold];
            addToEdge(fold.right, fromY);
            addToEdge(fold.right, fold.lane);
            addToEdge(fold.left, fold.lane);
            addToEdge(fold.left, toY);
        }
        if (hasKnot(edge.head)) addToEdge(beforeHead(edge, isLoop), toY);
    }

    void addToEdge(double x, double y, bool isCurve = false) {
        m_edgeKnots.at(m_edgeKnotCount++) = {{m_origin.x + x, m_origin.y + y}, isCurve};
    }

    void reverseEdgeKnots() {
        std::reverse(m_edgeKnots.begin(), m_edgeKnots.begin() + static_cast<std::ptrdiff_t>(m_edgeKnotCount));
        // The flag belongs to the part that leads to a knot, so it moves by one when the order is reversed.
        for (std::size_t i = m_edgeKnotCount; i-- > 1;)
            m_edgeKnots.at(i).isCurve = m_edgeKnots.at(i - 1).isCurve;
        if (m_edgeKnotCount > 0) m_edgeKnots.at(0).isCurve = false;
    }

    // Lines pass straight through dummy vertices.
    [[nodiscard]] bool hasKnot(Index vertex) const { return vertex < m_graph.firstDummyVertex; }

    // Where an edge leaves and enters its vertices, or the labels beside them.
    [[nodiscard]] double afterTail(const Edge& edge) const {
        return rightOf(edge.tailLabel == nothing ? edge.tail : edge.tailLabel);
    }
    [[nodiscard]] double beforeHead(const Edge& edge, bool isLoop) const {
        const Index vertex = edge.headLabel == nothing ? edge.head : edge.headLabel;
        return isLoop ? rightOf(vertex) : leftOf(vertex);
    }

    // Ports stand at their container's border, and have no width.
    [[nodiscard]] double leftOf(Index vertex) const {
        if (vertex < m_graph.boxCount) return m_geometry.boxes[vertex].x;
        const HierarchicalPort& port = m_graph.hierarchicalPorts[vertex - m_graph.boxCount];
        return port.isAtEnd ? m_geometry.boxes[port.box].width : 0;
    }
    [[nodiscard]] double rightOf(Index vertex) const {
        return vertex < m_graph.boxCount ? m_geometry.boxes[vertex].right() : leftOf(vertex);
    }

    // Leaves out points that are not needed: equal ones, and those inside a level run.
    void add(const Point& at, bool isCurve) {
        const std::size_t count = m_knots.size();
        if (!isCurve && count > 0) {
            if (m_knots.back().at == at) return;
            const bool isStraightOn = count > 1 && !m_knots.back().isCurve &&
                                      isLevel(m_knots[count - 2].at, m_knots.back().at) &&
                                      isLevel(m_knots.back().at, at);
            if (isStraightOn) m_knots.pop_back();
        }
        m_knots.push_back({at, isCurve});
    }

    [[nodiscard]] PlacedLine::Stretch drawn() const {
        PlacedLine::Stretch stretch;
        if (m_knots.empty()) return stretch;
        stretch.start = m_knots.front().at;
        // A box may touch the border that its line leads to.
        if (m_knots.size() == 1) stretch.segments.push_back({false, {}, {}, stretch.start});
        for (std::size_t i = 1; i < m_knots.size(); ++i) {
            const Point& from = m_knots[i - 1].at;
            const Knot& to = m_knots[i];
            if (to.isCurve) {
                const double middle = (from.x + to.at.x) / 2;
                stretch.segments.push_back({true, {middle, from.y}, {middle, to.at.y}, to.at});
                continue;
            }
            const double radius = radiusAt(i);
            if (radius > 0) {
                const Point& next = m_knots[i + 1].at;
                addCorner(stretch, from, to.at, next, radius);
            } else {
                stretch.segments.push_back({false, {}, {}, to.at});
            }
        }
        return stretch;
    }

    [[nodiscard]] double radiusAt(std::size_t i) const {
        if (i + 1 >= m_knots.size() || m_knots[i].isCurve || m_knots[i + 1].isCurve) return 0;
        const Point& a = m_knots[i - 1].at;
        const Point& b = m_knots[i].at;
        const Point& c = m_knots[i + 1].at;
        if (isLevel(a, b) && isLevel(b, c)) return 0;
        const double before = std::hypot(b.x - a.x, b.y - a.y);
        const double after = std::hypot(c.x - b.x, c.y - b.y);
        return std::min(m_spacing.cornerRadius, std::min(before, after) / 2);
    }

    static void addCorner(PlacedLine::Stretch& stretch, const Point& from, const Point& corner,
                          const Point& next, double radius) {
        const Point begin = towards(corner, from, radius);
        const Point end = towards(corner, next, radius);
        stretch.segments.push_back({false, {}, {}, begin});
        const double away = radius * (1 - roundness);
        stretch.segments.push_back({true, towards(corner, from, away), towards(corner, next, away), end});
    }

    const Nesting& m_nesting;
    const LayeredGraph& m_graph;
    const ContainerGeometry& m_geometry;
    const std::vector<Rect>& m_boxes;
    const Spacing& m_spacing;
    Point m_origin;
    std::array<Knot, 6> m_edgeKnots;
    std::size_t m_edgeKnotCount = 0;
    std::vector<Knot> m_knots;
};

// The straight stretch between a box and the end label beside it; `at` is where the line goes on at the label.
PlacedLine::Stretch upToLabel(const Rect& box, const Rect& label, const Point& at, bool isFromBox) {
    const bool isOnRight = label.x >= box.right();
    const bool isInside = label.x >= box.x && label.right() <= box.right();
    const bool goesOnRight = std::abs(at.x - label.right()) < std::abs(at.x - label.x);
    // Outside of a box, the line goes on at the label's far side. Inside of a container, it goes on away from the border.
    const bool isAtRightBorder = isInside ? !goesOnRight : isOnRight;
    const Point border{isAtRightBorder ? box.right() : box.x, at.y};
    const Point near{goesOnRight ? label.x : label.right(), at.y};
    PlacedLine::Stretch stretch;
    stretch.start = isFromBox ? border : near;
    stretch.segments.push_back({false, {}, {}, isFromBox ? near : border});
    return stretch;
}

}  // namespace

std::vector<PlacedLine> pathsOf(const PlacementInput& input, const Nesting& nesting,
                                const std::vector<RouteSegment>& routeSegments, const LayeredGraph& graph,
                                const ContainerGeometry& geometry, const std::vector<Rect>& boxes,
                                const Spacing& spacing) {
    std::vector<PlacedLine> lines(input.lines.size());
    PathMaker maker(nesting, graph, geometry, boxes, spacing);
    for (std::size_t i = 0; i < routeSegments.size(); ++i) {
        const RouteSegment& segment = routeSegments[i];
        PlacedLine::Stretch stretch = maker.stretch(segment, graph.ofRouteSegment[i]);
        auto& stretches = lines[segment.line].stretches;
        const Point end = stretch.segments.empty() ? stretch.start : stretch.segments.back().end;
        if (segment.fromLabel != nothing)
            stretches.push_back(
                upToLabel(boxes[segment.from], boxes[segment.fromLabel], stretch.start, true));
        stretches.push_back(std::move(stretch));
        if (segment.toLabel != nothing)
            stretches.push_back(upToLabel(boxes[segment.to], boxes[segment.toLabel], end, false));
    }
    return lines;
}

}  // namespace tessera_draw::placing
