// Four layouts, each of which aligns vertices with the median of their neighbours in the layer on one side,
// preferring one of the two medians, and packs the blocks that this makes towards one side; the mean of the
// two middle ones of the four is the answer. After Brandes and Koepf, with sizes and offsets, and with blocks
// packed by the order among them.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "draw/placement/strip.h"

namespace tessera_draw::placing {
namespace {

// Of the height beyond that of the fullest layer, before boxes, and before lines' straight runs, are cut.
constexpr double growthForBoxes = 1.25;
constexpr double growthForLines = 1.8;
constexpr double lineWeight = 8;
constexpr int mostCuts = 6;

// To the layer before, between points of one line.
Index innerTie(const Strip& strip, Index i) {
    for (Index k = strip.inBegin[i]; k < strip.inBegin[i + 1]; ++k)
        if (strip.in[k].isInner) return k;
    return nothing;
}

// Marks ties that cross one between two points of a line.
void markCrossed(Strip& strip) {
    for (Index layer = 1; layer < strip.layers(); ++layer) {
        const Index end = strip.layerBegin[layer + 1];
        Index scan = strip.layerBegin[layer];
        Index from = strip.layerBegin[layer - 1];
        for (Index i = scan; i < end; ++i) {
            Index to = strip.layerBegin[layer];  // behind all of the layer before
            const Index inner = innerTie(strip, i);
            if (inner != nothing) to = strip.in[inner].other;
            if (inner == nothing && i + 1 < end) continue;
            for (; scan <= i; ++scan)
                for (Index k = strip.inBegin[scan]; k < strip.inBegin[scan + 1]; ++k) {
                    Tie& tie = strip.in[k];
                    if (!tie.isInner && (tie.other < from || tie.other > to)) tie.isCrossed = true;
                }
            from = to;
        }
    }
}

// The other ends see the same.
void copyMarks(Strip& strip) {
    std::vector<Index> next(strip.outBegin.begin(), strip.outBegin.end() - 1);
    for (Index i = 0; i < strip.size(); ++i)
        for (Index k = strip.inBegin[i]; k < strip.inBegin[i + 1]; ++k)
            strip.out[next[strip.in[k].other]++].isCrossed = strip.in[k].isCrossed;
}

class Layout {
  public:
    Layout(const Strip& strip, bool fromStart, bool fromTop)
        : m_strip(strip),
          m_fromStart(fromStart),
          m_fromTop(fromTop),
          m_root(strip.size()),
          m_next(strip.size()),
          m_shift(strip.size(), 0),
          m_rootStep(strip.size(), 0),
          m_place(strip.size(), 0),
          m_weight(strip.size(), 0) {
        for (Index i = 0; i < strip.size(); ++i)
            m_root[i] = m_next[i] = i;
    }

    std::vector<double> tops() {
        for (Index k = 0; k < m_strip.layers(); ++k)
            alignLayer(m_fromStart ? k : m_strip.layers() - 1 - k);
        cutLongWays();
        pull();
        std::vector<double> tops(m_strip.size());
        for (Index i = 0; i < m_strip.size(); ++i)
            tops[i] = topOf(i);
        return tops;
    }

  private:
    [[nodiscard]] double topOf(Index i) const { return m_place[m_root[i]] + m_shift[i]; }

    // Blocks never cross: behind each aligned vertex only what is aligned behind its partner may follow.
    void alignLayer(Index layer) {
        const Index begin = m_strip.layerBegin[layer];
        const Index end = m_strip.layerBegin[layer + 1];
        std::int64_t reached = m_fromTop ? -1 : std::numeric_limits<std::int64_t>::max();
        const auto& tieBegin = m_fromStart ? m_strip.inBegin : m_strip.outBegin;
        const auto& ties = m_fromStart ? m_strip.in : m_strip.out;
        for (Index k = 0; k < end - begin; ++k) {
            const Index i = m_fromTop ? begin + k : end - 1 - k;
            const Index count = tieBegin[i + 1] - tieBegin[i];
            if (count == 0) continue;
            std::array medians{(count - 1) / 2, count / 2};
            if (!m_fromTop) std::swap(medians[0], medians[1]);
            for (const Index median : medians) {
                const Tie& tie = ties[tieBegin[i] + median];
                const auto other = static_cast<std::int64_t>(tie.other);
                if (tie.isCrossed || (m_fromTop ? other <= reached : other >= reached)) continue;
                m_next[tie.other] = i;
                m_root[i] = m_root[tie.other];
                m_shift[i] = m_shift[tie.other] + tie.otherOffset - tie.ownOffset;
                m_weight[i] = tie.weight;
                reached = other;
                break;
            }
        }
    }

    [[nodiscard]] bool hasBefore(Index i, bool fromTop) const {
        return fromTop ? m_strip.isFirst[i] == 0 : m_strip.isLast[i] == 0;
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

    // Each block as near to the top, or to the bottom, as those before it allow; `reasons` are the vertices
    // of blocks that do not let them go further.
    void pack(bool fromTop, std::vector<double>& places, std::vector<Index>& reasons) {
        m_open.assign(m_strip.size(), 0);
        reasons.assign(m_strip.size(), nothing);
        std::fill(places.begin(), places.end(), 0);
        for (Index i = 0; i < m_strip.size(); ++i)
            if (hasBefore(i, fromTop)) ++m_open[m_root[i]];
        m_order.clear();
        for (Index i = 0; i < m_strip.size(); ++i)
            if (m_root[i] == i && m_open[i] == 0) m_order.push_back(i);
        for (std::size_t head = 0; head < m_order.size(); ++head) {
            const double place = places[m_order[head]];
            forBlock(m_order[head], [&](Index i) {
                if (!hasBefore(i, !fromTop)) return;
                const Index next = fromTop ? i + 1 : i - 1;
                const Index root = m_root[next];
                const double least = fromTop ? place + m_rootStep[i] : place - m_rootStep[next];
                if (reasons[root] == nothing || (fromTop ? least > places[root] : least < places[root])) {
                    places[root] = least;
                    reasons[root] = next;
                }
                if (--m_open[root] == 0) m_order.push_back(root);
            });
        }
    }

    // Least distance from the root of each vertex's block to that of the next one's.
    void findRootSteps() {
        for (Index i = 0; i + 1 < m_strip.size(); ++i)
            m_rootStep[i] = m_shift[i] + m_strip.step(i) - m_shift[i + 1];
    }

    // Where blocks lean on one another in many layers in turn, the drawing grows far beyond its fullest
    // layer. Cuts such blocks where that costs least. Leaves them packed.
    void cutLongWays() {
        double fullest = 0;
        for (Index layer = 0; layer < m_strip.layers(); ++layer) {
            double sum = 0;
            for (Index i = m_strip.layerBegin[layer]; i < m_strip.layerBegin[layer + 1]; ++i)
                sum += m_strip.step(i);
            fullest = std::max(fullest, sum);
        }
        findRootSteps();
        std::vector<double> opposite(m_strip.size());
        std::vector<Index> oppositeReason;
        for (int round = 0; round < mostCuts; ++round) {
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

    // At the weakest link between the two vertices of the block.
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
        m_open.assign(m_strip.size(), 0);
        for (Index i = 0; i < m_strip.size(); ++i)
            if (m_next[i] != i) m_open[m_next[i]] = 1;
        for (Index root = 0; root < m_strip.size(); ++root) {
            if (m_open[root] != 0) continue;
            const double shift = m_shift[root];
            forBlock(root, [&](Index i) {
                m_root[i] = root;
                m_shift[i] -= shift;
            });
        }
        findRootSteps();
    }

    // Then back towards their neighbours, the last ones first.
    void pull() {
        for (std::size_t k = m_order.size(); k-- > 0;) {
            const Index root = m_order[k];
            double room = std::numeric_limits<double>::infinity();
            m_wishes.clear();
            forBlock(root, [&](Index i) {
                if (hasBefore(i, !m_fromTop)) room = std::min(room, roomBefore(i));
                addWishes(i);
            });
            if (m_wishes.empty()) continue;
            const std::size_t half = m_fromTop ? (m_wishes.size() - 1) / 2 : m_wishes.size() / 2;
            const auto middle = m_wishes.begin() + static_cast<std::ptrdiff_t>(half);
            std::nth_element(m_wishes.begin(), middle, m_wishes.end());
            const double wish = std::clamp(m_fromTop ? *middle : -*middle, 0.0, room);
            m_place[root] += m_fromTop ? wish : -wish;
        }
    }

    [[nodiscard]] double roomBefore(Index i) const {
        const double room = m_fromTop ? topOf(i + 1) - topOf(i) - m_strip.step(i)
                                      : topOf(i) - topOf(i - 1) - m_strip.step(i - 1);
        return std::max(room, 0.0);
    }

    void addWishes(Index i) {
        const auto add = [&](const Tie& tie) {
            if (m_root[tie.other] == m_root[i]) return;
            m_wishes.push_back(topOf(tie.other) + tie.otherOffset - topOf(i) - tie.ownOffset);
        };
        for (Index k = m_strip.inBegin[i]; k < m_strip.inBegin[i + 1]; ++k)
            add(m_strip.in[k]);
        for (Index k = m_strip.outBegin[i]; k < m_strip.outBegin[i + 1]; ++k)
            add(m_strip.out[k]);
    }

    const Strip& m_strip;
    bool m_fromStart;
    bool m_fromTop;
    std::vector<Index> m_root;
    std::vector<Index> m_next;    // in the block; the last one's is itself
    std::vector<double> m_shift;  // from the root's top
    std::vector<double> m_rootStep;
    std::vector<double> m_place;   // of roots: the top
    std::vector<double> m_weight;  // of the link to the one before in the block
    std::vector<Index> m_reason;
    std::vector<Index> m_open;
    std::vector<Index> m_order;  // of blocks, as they were packed
    std::vector<double> m_wishes;
};

struct Extent {
    double top = std::numeric_limits<double>::infinity();
    double bottom = -std::numeric_limits<double>::infinity();
};

Extent extentOf(const Strip& strip, const std::vector<double>& tops) {
    Extent extent;
    for (Index i = 0; i < strip.size(); ++i) {
        extent.top = std::min(extent.top, tops[i]);
        extent.bottom = std::max(extent.bottom, tops[i] + strip.height[i]);
    }
    return extent;
}

}  // namespace

std::vector<double> alignedTops(Strip& strip, Watch& watch) {
    if (strip.size() == 0) return {};
    markCrossed(strip);
    copyMarks(strip);
    std::array<std::vector<double>, 4> layouts;
    std::array<Extent, 4> extents;
    std::size_t smallest = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        if (watch.isStopped()) return std::vector<double>(strip.size(), 0);
        layouts.at(i) = Layout(strip, i < 2, i % 2 == 0).tops();
        extents.at(i) = extentOf(strip, layouts.at(i));
        const auto size = [&](std::size_t k) { return extents.at(k).bottom - extents.at(k).top; };
        if (size(i) < size(smallest)) smallest = i;
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const double move = i % 2 == 0 ? extents.at(smallest).top - extents.at(i).top
                                       : extents.at(smallest).bottom - extents.at(i).bottom;
        for (double& top : layouts.at(i))
            top += move;
    }
    std::vector<double> tops(strip.size());
    for (Index i = 0; i < strip.size(); ++i) {
        std::array four{layouts[0][i], layouts[1][i], layouts[2][i], layouts[3][i]};
        std::sort(four.begin(), four.end());
        tops[i] = (four[1] + four[2]) / 2;
    }
    return tops;
}

}  // namespace tessera_draw::placing
