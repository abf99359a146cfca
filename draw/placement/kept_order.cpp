#include "draw/placement/kept_order.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

namespace tessera_draw::placing {
namespace {

constexpr double unknown = std::numeric_limits<double>::quiet_NaN();
constexpr int sweeps = 4;  // in which new vertices come between their neighbours

// The line that a vertex is a point of, and which of the line's points in that layer it is.
struct LinePoint {
    Index line = nothing;
    std::uint32_t part = 0;
};

// By vertex; boxes have no line.
class LinePoints {
  public:
    LinePoints(const LayeredGraph& graph, const std::vector<RouteSegment>& routeSegments)
        : m_graph(graph), m_points(graph.vertexCount()) {
        for (std::size_t i = 0; i < routeSegments.size(); ++i) {
            const ChainRange& range = graph.ofRouteSegment[i];
            for (Index chain = range.begin; chain < range.end; ++chain)
                addChain(graph.chains[chain], routeSegments[i].line);
        }
    }

    [[nodiscard]] const LinePoint& of(Index vertex) const { return m_points[vertex]; }

  private:
    void addChain(const EdgeChain& chain, Index line) {
        for (Index i = chain.firstEdge; i < chain.firstEdge + chain.edgeCount; ++i) {
            const Edge& edge = m_graph.edges[i];
            add(edge.tail, line);
            if (edge.tailPort != nothing) add(m_graph.vertexOf(edge.tailPort), line);
            if (edge.headPort != nothing) add(m_graph.vertexOf(edge.headPort), line);
            add(edge.head, line);
        }
    }

    void add(Index vertex, Index line) {
        if (vertex == nothing || vertex < m_graph.boxCount || m_points[vertex].line != nothing) return;
        m_points[vertex] = {line, m_counts[{line, m_graph.layer[vertex]}]++};
    }

    const LayeredGraph& m_graph;
    std::vector<LinePoint> m_points;
    std::map<std::pair<Index, Index>, std::uint32_t> m_counts;  // by line and layer
};

class KeptOrder {
  public:
    KeptOrder(LayeredGraph& graph, const Nesting& nesting, const std::vector<RouteSegment>& routeSegments,
              const KeptLayers& kept)
        : m_graph(graph), m_nesting(nesting), m_points(graph, routeSegments), m_kept(kept) {}

    void run() {
        m_graph.kept.top.assign(m_graph.vertexCount(), unknown);
        m_graph.kept.middle.assign(m_graph.vertexCount(), unknown);
        m_graph.kept.contentTop.assign(m_nesting.containerCount(), unknown);
        m_graph.kept.isRowEnd.assign(m_graph.firstLayer.back(), 0);
        m_isRead.assign(m_graph.firstLayer.back(), 0);
        for (const ContainerLayers& container : m_kept)
            read(container);
        for (int i = 0; i < sweeps; ++i)
            placeNew(i % 2 == 0);
        for (Index layer = 0; layer < m_graph.firstLayer.back(); ++layer)
            sort(layer);
    }

  private:
    using LineKey = std::tuple<Index, std::uint32_t>;

    void read(const ContainerLayers& kept) {
        const Index box = kept.box == nothing ? m_nesting.drawing : kept.box;
        const Index container = box <= m_nesting.drawing ? m_nesting.containerOf[box] : nothing;
        if (container == nothing || kept.layers.empty()) return;
        const Index first = m_graph.firstLayer[container];
        const Index last = m_graph.lastLayer(container);
        m_graph.kept.contentTop[container] = kept.top;
        for (std::size_t i = 0; i < kept.layers.size(); ++i) {
            const Index layer = i == 0                        ? first
                                : i + 1 == kept.layers.size() ? last
                                                              : layerOf(kept.layers[i], first, last);
            if (layer == nothing) continue;
            readPoints(kept.layers[i], layer);
            if (kept.layers[i].isRowEnd && layer + 1 < last) m_graph.kept.isRowEnd[layer] = 1;
        }
    }

    // Where the boxes of the layer are now; `nothing` if none is left.
    [[nodiscard]] Index layerOf(const KeptLayer& kept, Index first, Index last) const {
        for (const LayerPoint& point : kept.points) {
            if (point.box == nothing || point.box >= m_graph.boxCount) continue;
            const Index layer = m_graph.layer[point.box];
            if (layer > first && layer < last) return layer;
        }
        return nothing;
    }

    void readPoints(const KeptLayer& kept, Index layer) {
        std::map<LineKey, const LayerPoint*> ofLines;
        for (const LayerPoint& point : kept.points) {
            if (!std::isfinite(point.top) || !std::isfinite(point.size)) continue;
            if (point.box == nothing)
                ofLines[{point.line, point.part}] = &point;
            else if (point.box < m_graph.boxCount && m_graph.layer[point.box] == layer)
                setKept(point.box, point);
        }
        // A file may name a layer very often.
        if (std::exchange(m_isRead[layer], 1) != 0) return;
        for (Index i = m_graph.layerBegin[layer]; i < m_graph.layerBegin[layer + 1]; ++i) {
            const LinePoint& own = m_points.of(m_graph.order[i]);
            if (own.line == nothing) continue;
            const auto found = ofLines.find({own.line, own.part});
            if (found != ofLines.end()) setKept(m_graph.order[i], *found->second);
        }
    }

    void setKept(Index vertex, const LayerPoint& point) {
        m_graph.kept.top[vertex] = point.top;
        m_graph.kept.middle[vertex] = point.top + point.size / 2;
    }

    [[nodiscard]] bool isNew(Index vertex) const { return std::isnan(m_graph.kept.top[vertex]); }

    // Gives new vertices the mean of what is known of their neighbours.
    void placeNew(bool isForwards) {
        const auto count = static_cast<Index>(m_graph.order.size());
        for (Index k = 0; k < count; ++k) {
            const Index vertex = m_graph.order[isForwards ? k : count - 1 - k];
            if (!isNew(vertex)) continue;
            double sum = 0;
            int known = 0;
            const auto add = [&](const EdgeEnd& end) {
                const double middle = middleOf(end);
                if (std::isnan(middle)) return;
                sum += middle;
                ++known;
            };
            for (Index i = m_graph.inBegin[vertex]; i < m_graph.inBegin[vertex + 1]; ++i)
                add(m_graph.inTails[i]);
            for (Index i = m_graph.outBegin[vertex]; i < m_graph.outBegin[vertex + 1]; ++i)
                add(m_graph.outHeads[i]);
            if (known > 0) m_graph.kept.middle[vertex] = sum / known;
        }
    }

    // At a container whose port is known, that of the port.
    [[nodiscard]] double middleOf(const EdgeEnd& end) const {
        const double middle = m_graph.kept.middle[end.vertex];
        if (end.port == nothing || isNew(end.vertex)) return middle;
        const double inside = m_graph.kept.middle[m_graph.vertexOf(end.port)];
        return std::isnan(inside) ? middle : m_graph.kept.top[end.vertex] + inside;
    }

    // New vertices of which nothing is known come last, but for grids, which stay behind all.
    void sort(Index layer) {
        const auto begin = m_graph.order.begin() + m_graph.layerBegin[layer];
        const auto end = m_graph.order.begin() + m_graph.layerBegin[layer + 1];
        const auto key = [&](Index vertex) {
            const double middle = m_graph.kept.middle[vertex];
            const bool isGrid = vertex < m_graph.boxCount && m_graph.grids.ofBox[vertex] != nothing;
            return std::pair(isGrid, std::isnan(middle) ? std::numeric_limits<double>::infinity() : middle);
        };
        std::stable_sort(begin, end, [&](Index a, Index b) { return key(a) < key(b); });
        for (auto at = begin; at != end; ++at)
            m_graph.place[*at] = static_cast<Index>(at - begin);
    }

    LayeredGraph& m_graph;
    const Nesting& m_nesting;
    const LinePoints m_points;
    const KeptLayers& m_kept;
    std::vector<char> m_isRead;  // by layer: its points of lines
};

// The other boxes of a grid are where its leader, the last of the points, is.
void addRestOfGrid(const LayeredGraph& graph, std::vector<LayerPoint>& points) {
    LayerPoint point = points.back();
    if (point.box == nothing || graph.grids.ofBox[point.box] == nothing) return;
    const IsolatedGrid& grid = graph.grids.grids[graph.grids.ofBox[point.box]];
    for (Index i = grid.begin + 1; i < grid.end; ++i) {
        point.box = graph.grids.members[i];
        points.push_back(point);
    }
}

}  // namespace

void orderAsKept(LayeredGraph& graph, const Nesting& nesting, const std::vector<RouteSegment>& routeSegments,
                 const KeptLayers& kept) {
    KeptOrder(graph, nesting, routeSegments, kept).run();
}

KeptLayers layersIn(const LayeredGraph& graph, const Nesting& nesting,
                    const std::vector<RouteSegment>& routeSegments, const ContainerGeometry& geometry) {
    const LinePoints points(graph, routeSegments);
    KeptLayers all(nesting.containerCount());
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        const Index box = nesting.boxOf[container];
        all[container].box = box == nesting.drawing ? nothing : box;
        all[container].top = geometry.contentTop[container];
        for (Index layer = graph.firstLayer[container]; layer < graph.firstLayer[container + 1]; ++layer) {
            KeptLayer& kept = all[container].layers.emplace_back();
            kept.isRowEnd = geometry.isRowEnd[layer] != 0;
            for (Index i = graph.layerBegin[layer]; i < graph.layerBegin[layer + 1]; ++i) {
                const Index vertex = graph.order[i];
                const LinePoint& point = points.of(vertex);
                kept.points.push_back({vertex < graph.boxCount ? vertex : nothing, point.line, point.part,
                                       graph.top[vertex], graph.height[vertex]});
                addRestOfGrid(graph, kept.points);
            }
        }
    }
    return all;
}

}  // namespace tessera_draw::placing
