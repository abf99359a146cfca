// Computes four layouts. Each aligns vertices with the median of their neighbours in the layer on one side,
// preferring one of the two medians, and packs the resulting blocks towards the top or the bottom. The result
// is the mean of the two middle ones of the four. After Brandes and Koepf, with sizes and offsets, and with
// blocks packed in topological order.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "draw/placement/block_graph.h"

namespace tessera_draw::placing {
namespace {

// A layout may be this many times as high as its fullest layer before blocks of boxes, and then straight runs
// of lines, are cut.
constexpr double growthForBoxes = 1.25;
constexpr double growthForLines = 1.8;
constexpr double lineWeight = 8;
constexpr int maxCuts = 6;

// The adjacency to the layer before that joins two points of one line, or `nothing`.
Index innerAdjacency(const BlockGraph& blockGraph, Index i) {
    for (Index k = blockGraph.inBegin[i]; k < blockGraph.inBegin[i + 1]; ++k)
        if (blockGraph.in[k].isInner) return k;
    return nothing;
}

// Marks adjacencies that cross an inner one, so that lines stay straight rather than edges at boxes.
void markCrossed(BlockGraph& blockGraph) {
    for (Index layer = 1; layer < blockGraph.layers(); ++layer) {
        const Index end = blockGraph.layerBegin[layer + 1];
        Index scan = blockGraph.layerBegin[layer];
        Index from = blockGraph.layerBegin[layer - 1];
        for (Index i = scan; i < end; ++i) {
            Index to = blockGraph.layerBegin[layer];  // after all of the layer before
            const Index inner = innerAdjacency(blockGraph, i);
            if (inner != nothing) to = blockGraph.in[inner].other;
            if (inner == nothing && i + 1 < end) continue;
            for (; scan <= i; ++scan)
                for (Index k = blockGraph.inBegin[scan]; k < blockGraph.inBegin[scan + 1]; ++k) {
                    Adjacency& adjacency = blockGraph.in[k];
                    if (!adjacency.isInner && (adjacency.other < from || adjacency.other > to))
                        adjacency.isCrossed = true;
                }
            from = to;
        }
    }
}

// Copies the marks to the adjacencies at the other ends.
void copyMarks(BlockGraph& blockGraph) {
    std::vector<Index> next(blockGraph.outBegin.begin(), blockGraph.outBegin.end() - 1);
    for (Index i = 0; i < blockGraph.size(); ++i)
        for (Index k = blockGraph.inBegin[i]; k < blockGraph.inBegin[i + 1]; ++k)
            blockGraph.out[next[blockGraph.in[k].other]++].isCrossed = blockGraph.in[k].isCrossed;
}

class Layout {
  public:
    Layout(const BlockGraph& blockGraph, bool fromStart, bool fromTop)
        : m_blockGraph(blockGraph),
          m_fromStart(fromStart),
          m_fromTop(fromTop),
          m_root(blockGraph.size()),
          m_next(blockGraph.size()),
          m_shift(blockGraph.size(), 0),
          m_rootStep(blockGraph.size(), 0),
          m_place(blockGraph.size(), 0),
          m_weight(blockGraph.size(), 0) {
        for (Index i = 0; i < blockGraph.size(); ++i)
            m_root[i] = m_next[i] = i;
    }

    std::vector<double> tops() {
        for (Index k = 0; k < m_blockGraph.layers(); ++k)
            alignLayer(m_fromStart ? k : m_blockGraph.layers() - 1 - k);
        cutLongWays();
        pull();
        std::vector<double> tops(m_blockGraph.size());
        for (Index i = 0; i < m_blockGraph.size(); ++i)
            tops[i] = topOf(i);
        return tops;
    }

  private:
    [[nodiscard]] double topOf(Index i) const { return m_place[m_root[i]] + m_shift[i]; }

    // Blocks never cross: the partners of aligned vertices are in the order of the vertices.
    void alignLayer(Index layer) {
        const Index begin = m_blockGraph.layerBegin[layer];
        const Index end = m_blockGraph.layerBegin[layer + 1];
        std::int64_t reached = m_fromTop ? -1 : std::numeric_limits<std::int64_t>::max();
        const auto& adjacencyBegin = m_fromStart ? m_blockGraph.inBegin : m_blockGraph.outBegin;
        const auto& adjacencies = m_fromStart ? m_blockGraph.in : m_blockGraph.out;
        for (Index k = 0; k < end - begin; ++k) {
            const Index i = m_fromTop ? begin + k : end - 1 - k;
            const Index count = adjacencyBegin[i + 1] - adjacencyBegin[i];
            if (count == 0) continue;
            std::array medians{(count - 1) / 2, count / 2};
            if (!m_fromTop) std::swap(medians[0], medians[1]);
            for (const Index median : medians) {
                const Adjacency& adjacency = adjacencies[adjacencyBegin[i] + median];
                const auto other = static_cast<std::int64_t>(adjacency.other);
                if (adjacency.isCrossed || (m_fromTop ? other <= reached : other >= reached)) continue;
                m_next[adjacency.other] = i;
                m_root[i] = m_root[adjacency.other];
                m_shift[i] = m_shift[adjacency.other] + adjacency.otherOffset - adjacency.ownOffset;
                m_weight[i] = adjacency.weight;
                reached = other;
                break;
            }
        }
    }

    [[nodiscard]] bool hasBefore(Index i, bool fromTop) const {
        return fromTop ? m_blockGraph.isFirst[i] == 0 : m_blockGraph.isLast[i] == 0;
    }

    template <typename Visit>
    void forBlock(Index root, Visit visit) const {
        Index i = root;
        while (true) {
            visit(i);
            if (m_next[i] == i) break;
            i = m_next[i];
        }
    }

    // Places each block as near to the top, or to the bottom, as the blocks before it allow. `reasons` are
    // the vertices of blocks at which these stop them.
    void pack(bool fromTop, std::vector<double>& places, std::vector<Index>& reasons) {
        m_open.assign(m_blockGraph.size(), 0);
        reasons.assign(m_blockGraph.size(), nothing);
        std::fill(places.begin(), places.end(), 0);
        for (Index i = 0; i < m_blockGraph.size(); ++i)
            if (hasBefore(i, fromTop)) ++m_open[m_root[i]];
        m_order.clear();
        for (Index i = 0; i < m_blockGraph.size(); ++i)
            if (m_root[i] == i && m_open[i] == 0) m_order.push_back(i);
        for (std::size_t head = 0; head < m_order.size(); ++head) {
            const double place = places[m_order[head]];
            forBlock(m_order[head], [&](Index i) {
                if (!hasBefore(i, !fromTop)) return;
                const Index next = fromTop ? i + 1 : i - 1;
                const Index root = m_root[next];
                const double nearest = fromTop ? place + m_rootStep[i] : place - m_rootStep[next];
                if (reasons[root] == nothing || (fromTop ? nearest > places[root] : nearest < places[root])) {
                    places[root] = nearest;
                    reasons[root] = next;
                }
                if (--m_open[root] == 0) m_order.push_back(root);
            });
        }
    }

    // Minimum distance from the root of each vertex's block to the root of the next vertex's block.
    void findRootSteps() {
        for (Index i = 0; i + 1 < m_blockGraph.size(); ++i)
            m_rootStep[i] = m_shift[i] + m_blockGraph.step(i) - m_shift[i + 1];
    }

    // Chains of blocks that push each other through many layers make the drawing much higher than its fullest
    // layer. Cuts such blocks where that costs least. Leaves all blocks packed.
    void cutLongWays() {
        double fullest = 0;
        for (Index layer = 0; layer < m_blockGraph.layers(); ++layer) {
            double sum = 0;
            for (Index i = m_blockGraph.layerBegin[layer]; i < m_blockGraph.layerBegin[layer + 1]; ++i)
                sum += m_blockGraph.step(i);
            fullest = std::max(fullest, sum);
        }
        findRootSteps();
        std::vector<double> opposite(m_blockGraph.size());
        std::vector<Index> oppositeReason;
        for (int round = 0; round < maxCuts; ++round) {
            pack(!m_fromTop, opposite, oppositeReason);
            pack(m_fromTop, m_place, m_reason);
            bool hasCut = false;
            for (const Index root : m_order) {
                const Index reason = m_reason[root];
                const Index other = oppositeReason[root];
                if (reason == nothing || other == nothing) continue;
                const double both = std::abs(m_place[root] - opposite[root]);
                if (both <= fullest * growthForBoxes) continue;
                const bool mayCutLines = both > fullest * growthForLines;
                if (cutBetween(root, reason, other, mayCutLines)) hasCut = true;
            }
            if (!hasCut) return;
            findRoots();
        }
        pack(m_fromTop, m_place, m_reason);
    }

    // Cuts the block at the weakest edge between its two vertices.
    bool cutBetween(Index root, Index a, Index b, bool mayCutLines) {
        if (a == b) return false;
        Index i = root;
        while (i != a && i != b)
            i = m_next[i];
        const Index last = i == a ? b : a;
        Index weakest = nothing;
        while (i != last) {
            const Index next = m_next[i];
            if (weakest == nothing || m_weight[next] < m_weight[m_next[weakest]]) weakest = i;
            i = next;
        }
        if (!mayCutLines && m_weight[m_next[weakest]] >= lineWeight) return false;
        m_next[weakest] = weakest;
        return true;
    }

    void findRoots() {
        m_open.assign(m_blockGraph.size(), 0);
        for (Index i = 0; i < m_blockGraph.size(); ++i)
            if (m_next[i] != i) m_open[m_next[i]] = 1;
        for (Index root = 0; root < m_blockGraph.size(); ++root) {
            if (m_open[root] != 0) continue;
            const double shift = m_shift[root];
            forBlock(root, [&](Index i) {
                m_root[i] = root;
                m_shift[i] -= shift;
            });
        }
        findRootSteps();
    }

    // Moves packed blocks back towards their neighbours, the last packed first, since only these have space.
    void pull() {
        for (std::size_t k = m_order.size(); k-- > 0;) {
            const Index root = m_order[k];
            double space = std::numeric_limits<double>::infinity();
            m_wishes.clear();
            forBlock(root, [&](Index i) {
                if (hasBefore(i, !m_fromTop)) space = std::min(space, spaceBefore(i));
                addWishes(i);
            });
            if (m_wishes.empty()) continue;
            const std::size_t half = m_fromTop ? (m_wishes.size() - 1) / 2 : m_wishes.size() / 2;
            const auto middle = m_wishes.begin() + static_cast<std::ptrdiff_t>(half);
            std::nth_element(m_wishes.begin(), middle, m_wishes.end());
            const double wish = std::clamp(m_fromTop ? *middle : -*middle, 0.0, space);
            m_place[root] += m_fromTop ? wish : -wish;
        }
    }

    [[nodiscard]] double spaceBefore(Index i) const {
        const double space = m_fromTop ? topOf(i + 1) - topOf(i) - m_blockGraph.step(i)
                                       : topOf(i) - topOf(i - 1) - m_blockGraph.step(i - 1);
        return std::max(space, 0.0);
    }

    void addWishes(Index i) {
        const auto add = [&](const Adjacency& adjacency) {
            if (m_root[adjacency.other] == m_root[i]) return;
            m_wishes.push_back(topOf(adjacency.other) + adjacency.otherOffset - topOf(i) -
                               adjacency.ownOffset);
        };
        for (Index k = m_blockGraph.inBegin[i]; k < m_blockGraph.inBegin[i + 1]; ++k)
            add(m_blockGraph.in[k]);
        for (Index k = m_blockGraph.outBegin[i]; k < m_blockGraph.outBegin[i + 1]; ++k)
            add(m_blockGraph.out[k]);
    }

    const BlockGraph& m_blockGraph;
    bool m_fromStart;
    bool m_fromTop;
    std::vector<Index> m_root;
    std::vector<Index> m_next;    // in the block; the last one's is itself
    std::vector<double> m_shift;  // from the root's top
    std::vector<double> m_rootStep;
    std::vector<double> m_place;   // of roots: the top
    std::vector<double> m_weight;  // of the edge to the one before in the block
    std::vector<Index> m_reason;
    std::vector<Index> m_open;
    std::vector<Index> m_order;  // of blocks, as they were packed
    std::vector<double> m_wishes;
};

struct Extent {
    double top = std::numeric_limits<double>::infinity();
    double bottom = -std::numeric_limits<double>::infinity();
};

Extent extentOf(const BlockGraph& blockGraph, const std::vector<double>& tops) {
    Extent extent;
    for (Index i = 0; i < blockGraph.size(); ++i) {
        extent.top = std::min(extent.top, tops[i]);
        extent.bottom = std::max(extent.bottom, tops[i] + blockGraph.height[i]);
    }
    return extent;
}

}  // namespace

std::vector<double> alignedTops(BlockGraph& blockGraph, const CancelToken& cancel) {
    if (blockGraph.size() == 0) return {};
    markCrossed(blockGraph);
    copyMarks(blockGraph);
    std::array<std::vector<double>, 4> layouts;
    std::array<Extent, 4> extents;
    std::size_t smallest = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        if (cancel.isCancelled()) return std::vector<double>(blockGraph.size(), 0);
        layouts.at(i) = Layout(blockGraph, i < 2, i % 2 == 0).tops();
        extents.at(i) = extentOf(blockGraph, layouts.at(i));
        const auto size = [&](std::size_t k) { return extents.at(k).bottom - extents.at(k).top; };
        if (size(i) < size(smallest)) smallest = i;
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const double move = i % 2 == 0 ? extents.at(smallest).top - extents.at(i).top
                                       : extents.at(smallest).bottom - extents.at(i).bottom;
        for (double& top : layouts.at(i))
            top += move;
    }
    std::vector<double> tops(blockGraph.size());
    for (Index i = 0; i < blockGraph.size(); ++i) {
        std::array four{layouts[0][i], layouts[1][i], layouts[2][i], layouts[3][i]};
        std::sort(four.begin(), four.end());
        tops[i] = (four[1] + four[2]) / 2;
    }
    return tops;
}

}  // namespace tessera_draw::placing
