#include "draw/placement/frame.h"

#include <algorithm>
#include <limits>
#include <queue>

#include "draw/placement/offsets.h"
#include "draw/placement/strip.h"
#include "draw/placement/tracks.h"

namespace tessera_draw::placing {
namespace {

class FrameBuilder {
  public:
    FrameBuilder(const std::vector<BoxToPlace>& boxes, const Nesting& nesting, Net& net,
                 const Spacing& spacing, Watch& watch)
        : m_boxes(boxes),
          m_nesting(nesting),
          m_net(net),
          m_spacing(spacing),
          m_watch(watch),
          m_offsets(net, nesting, spacing) {
        m_frame.boxes.resize(boxes.size() + 1);
        m_width.resize(boxes.size());
        m_frame.layerX.resize(net.firstLayer.back(), 0);
        m_frame.layerWidth.resize(net.firstLayer.back(), 0);
        sortLanes();
    }

    Frame build() {
        for (Index container = m_nesting.containerCount(); container-- > 0 && !m_watch.isStopped();)
            place(container);
        return std::move(m_frame);
    }

  private:
    // What a container asks of its own frame.
    struct Limits {
        Size least;
        Insets padding;
        // The title, where lines come through the border beside it: how far in, and how far below the
        // padding.
        Size header;
    };

    [[nodiscard]] Limits limitsOf(Index container) const {
        const Index box = m_nesting.boxOf[container];
        if (box == m_nesting.drawing) return {};
        const BoxToPlace& own = m_boxes[box];
        Limits limits{own.size, own.padding, {}};
        const double reach = own.header.height - own.padding.top;
        if (reach > 0 && m_net.sizeOf(m_net.firstLayer[container]) > 0)
            limits.header = {std::min(own.header.width, own.padding.left), reach};
        return limits;
    }

    // Edges of lanes by container.
    void sortLanes() {
        m_lanes.resize(m_nesting.containerCount());
        for (const Piece& piece : m_net.pieces)
            if (m_net.edges[piece.firstEdge].kind == Edge::Kind::toLane)
                m_lanes[piece.container].push_back(piece.firstEdge);
    }

    void place(Index container) {
        const Limits limits = limitsOf(container);
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            Rect& rect = m_frame.boxes[box];
            if (m_nesting.containerOf[box] == nothing)
                rect = {0, 0, m_boxes[box].size.width, m_boxes[box].size.height};
            m_net.height[box] = rect.height;
            m_width[box] = rect.width;
        }
        arrangeBundles(container);
        m_offsets.set(container);
        fillStrip(m_strip, m_net, container, limits.header.height, m_spacing);
        std::vector<double> tops = alignedTops(m_strip, m_watch);
        if (limits.header.height > 0) tops.front() = *std::min_element(tops.begin(), tops.end());
        relax(m_strip, tops, m_watch);
        Rect& own = m_frame.boxes[m_nesting.boxOf[container]];
        own.height = setTops(container, tops, limits);
        m_offsets.straighten(container);
        own.width = setColumns(container, limits);
        placeBoxes(container);
    }

    // The leader stands for all of them.
    void arrangeBundles(Index container) {
        const Bundles& bundles = m_net.bundles;
        for (Index i = bundles.firstInContainer[container]; i < bundles.firstInContainer[container + 1];
             ++i) {
            const Size size = arrange(bundles, bundles.bundles[i], m_boxes, m_spacing, m_frame.boxes);
            m_net.height[bundles.leader(bundles.bundles[i])] = size.height;
            m_width[bundles.leader(bundles.bundles[i])] = size.width;
        }
    }

    // Answers the container's height.
    double setTops(Index container, const std::vector<double>& tops, const Limits& limits) {
        double top = std::numeric_limits<double>::infinity();
        double bottom = -std::numeric_limits<double>::infinity();
        for (Index i = 0; i < m_strip.size(); ++i) {
            top = std::min(top, tops[i]);
            bottom = std::max(bottom, tops[i] + m_strip.height[i]);
        }
        if (m_strip.size() == 0) top = bottom = 0;
        const double lanes = setLanes(container, bottom);
        const Insets& padding = limits.padding;
        const double height = padding.top + (bottom - top) + lanes + padding.bottom;
        const double spare = std::max(limits.least.height - height, 0.0);
        const double move = padding.top + spare / 2 - top;
        for (Index i = 0; i < m_strip.size(); ++i)
            if (m_strip.vertex[i] != nothing) m_net.top[m_strip.vertex[i]] = tops[i] + move;
        for (const Index edge : m_lanes[container]) {
            m_net.edges[edge].headOffset += move;
            m_net.edges[edge + 1].tailOffset = m_net.edges[edge].headOffset;
        }
        return height + spare;
    }

    // Lanes lie below everything, those apart along the layers in one. Answers the room that they take.
    double setLanes(Index container, double bottom) {
        auto& lanes = m_lanes[container];
        const auto first = [&](Index edge) { return m_net.layer[m_net.edges[edge].tail]; };
        const auto last = [&](Index edge) { return m_net.layer[m_net.edges[edge + 1].head]; };
        std::sort(lanes.begin(), lanes.end(),
                  [&](Index a, Index b) { return first(a) != first(b) ? first(a) < first(b) : a < b; });
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
            m_net.edges[edge].headOffset = bottom + m_spacing.betweenBoxes + lane * m_spacing.betweenLines;
        }
        return count == 0 ? 0 : m_spacing.betweenBoxes + (count - 1) * m_spacing.betweenLines;
    }

    void collectGap(Index layer) {
        m_gap.clear();
        const Index begin = m_net.layerBegin[layer];
        for (Index i = begin; i < m_net.layerBegin[layer + 1]; ++i) {
            const Index vertex = m_net.order[i];
            for (Index k = m_net.outBegin[vertex]; k < m_net.outBegin[vertex + 1]; ++k)
                addToGap(m_net.outEdges[k]);
            m_offsets.forOthers(vertex, [&](Index edge, bool isTail) {
                const bool isBehind = m_net.edges[edge].kind == Edge::Kind::toLane ||
                                      (m_net.edges[edge].kind == Edge::Kind::loop && isTail);
                if (isBehind) addToGap(edge);
            });
        }
        for (Index i = m_net.layerBegin[layer + 1]; i < m_net.layerBegin[layer + 2]; ++i)
            m_offsets.forOthers(m_net.order[i], [&](Index edge, bool) {
                if (m_net.edges[edge].kind == Edge::Kind::fromLane) addToGap(edge);
            });
    }

    void addToGap(Index index) {
        const Edge& edge = m_net.edges[index];
        GapEdge inGap;
        inGap.edge = index;
        inGap.from = edge.tail == nothing ? edge.tailOffset : m_net.tailY(edge);
        inGap.to = edge.head == nothing ? edge.headOffset : m_net.headY(edge);
        inGap.isLoop = edge.kind == Edge::Kind::loop;
        m_gap.push_back(inGap);
    }

    // The gap's width without bends. At borders the padding is there for them too.
    [[nodiscard]] double leastGap(Index container, Index layer, const Limits& limits) const {
        const bool isFirst = layer == m_net.firstLayer[container];
        const bool isLast = layer + 1 == m_net.lastLayer(container);
        const double left = limits.padding.left - limits.header.width;
        if (isFirst && isLast) return left + limits.padding.right;
        if (isFirst) return left;
        return isLast ? limits.padding.right : m_spacing.betweenLayers;
    }

    // Answers the container's width.
    double setColumns(Index container, const Limits& limits) {
        const Index first = m_net.firstLayer[container];
        const Index last = m_net.lastLayer(container);
        std::vector<std::vector<GapEdge>> gaps;
        std::vector<double> widths;
        double all = 0;
        for (Index layer = first; layer < last; ++layer) {
            collectGap(layer);
            GapPlan plan(m_gap, m_net, m_spacing);
            const double width = std::max(plan.width(), leastGap(container, layer, limits));
            gaps.push_back(m_gap);
            widths.push_back(width);
            m_frame.layerWidth[layer] = layer == first ? limits.header.width : columnWidth(layer);
            all += width + m_frame.layerWidth[layer];
        }
        const double spare = std::max(limits.least.width - all, 0.0);
        widths.front() += spare / 2;
        widths.back() += spare / 2;
        double x = 0;
        for (Index layer = first; layer < last; ++layer) {
            m_frame.layerX[layer] = x;
            GapPlan(gaps[layer - first], m_net, m_spacing).setTracks(widths[layer - first]);
            x += m_frame.layerWidth[layer] + widths[layer - first];
        }
        m_frame.layerX[last] = x;
        return x;
    }

    [[nodiscard]] double columnWidth(Index layer) const {
        double width = 0;
        for (Index i = m_net.layerBegin[layer]; i < m_net.layerBegin[layer + 1]; ++i)
            if (m_net.order[i] < m_net.boxCount) width = std::max(width, m_width[m_net.order[i]]);
        return width;
    }

    void placeBoxes(Index container) {
        for (Index i = m_nesting.memberBegin[container]; i < m_nesting.memberBegin[container + 1]; ++i) {
            const Index box = m_nesting.members[i];
            const Index bundle = m_net.bundles.ofBox[box];
            const Index leader =
                bundle == nothing ? box : m_net.bundles.leader(m_net.bundles.bundles[bundle]);
            const Index layer = m_net.layer[box];
            const double spare = m_frame.layerWidth[layer] - m_width[leader];
            Rect& rect = m_frame.boxes[box];
            rect.x += m_frame.layerX[layer] + spare * shareInColumn(leader);
            rect.y += m_net.top[leader];
        }
    }

    // Beside a bundle's many columns a box stands where its lines come from, or else where they lead to.
    [[nodiscard]] double shareInColumn(Index box) const {
        const Index layer = m_net.layer[box];
        const Index last = m_net.at(layer, m_net.sizeOf(layer) - 1);
        const bool isBesideBundle =
            last != box && last < m_net.boxCount && m_net.bundles.ofBox[last] != nothing;
        if (!isBesideBundle || m_boxes[box].along != BoxToPlace::Along::middle)
            return shareBefore(m_boxes[box]);
        if (m_net.inBegin[box] < m_net.inBegin[box + 1]) return 0;
        return m_net.outBegin[box] < m_net.outBegin[box + 1] ? 1 : 0.5;
    }

    const std::vector<BoxToPlace>& m_boxes;
    const Nesting& m_nesting;
    Net& m_net;
    const Spacing& m_spacing;
    Watch& m_watch;
    Offsets m_offsets;
    Strip m_strip;
    std::vector<double> m_width;  // by box: of the box, or the bundle that it stands for
    std::vector<GapEdge> m_gap;
    std::vector<std::vector<Index>> m_lanes;  // by container: the edges to them
    Frame m_frame;
};

}  // namespace

Frame frameOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting, Net& net, const Spacing& spacing,
              Watch& watch) {
    return FrameBuilder(boxes, nesting, net, spacing, watch).build();
}

}  // namespace tessera_draw::placing
