#include "draw/placement/layers.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>

namespace tessera_draw::placing {
namespace {

using Rank = std::int64_t;

// Finds ranks for boxes without a level from the route segments between members.
class FreeRanks {
  public:
    FreeRanks(const std::vector<BoxToPlace>& boxes, const std::vector<RouteSegment>& routeSegments,
              std::vector<Rank>& ranks)
        : m_ranks(ranks) {
        m_isFree.resize(boxes.size());
        for (std::size_t i = 0; i < boxes.size(); ++i)
            m_isFree[i] = boxes[i].level == -1 ? 1 : 0;
        for (const RouteSegment& routeSegment : routeSegments)
            if (concerns(routeSegment)) m_arrows.push_back({routeSegment.fromMember, routeSegment.toMember});
    }

    void find() {
        sortByTail();
        orderByDepth();
        for (const Index box : m_order)
            pushFrom(box);
        std::for_each(m_order.rbegin(), m_order.rend(), [&](Index box) { pullBack(box); });
    }

  private:
    struct Arrow {
        Index from;
        Index to;
        bool isCut = false;
    };

    [[nodiscard]] bool concerns(const RouteSegment& routeSegment) const {
        if (routeSegment.fromMember == nothing || routeSegment.toMember == nothing ||
            routeSegment.fromMember == routeSegment.toMember)
            return false;
        return m_isFree[routeSegment.fromMember] || m_isFree[routeSegment.toMember];
    }

    void sortByTail() {
        m_begin.assign(m_isFree.size() + 1, 0);
        for (const Arrow& arrow : m_arrows)
            ++m_begin[arrow.from + 1];
        std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
        std::stable_sort(m_arrows.begin(), m_arrows.end(),
                         [](const Arrow& a, const Arrow& b) { return a.from < b.from; });
    }

    // Topological order by an iterative depth-first search: boxes with a level first, then the others. Arrows
    // that close a cycle are cut.
    void orderByDepth() {
        std::vector<Index> next(m_begin.begin(), m_begin.end() - 1);
        std::vector<char> state(m_isFree.size(), 0);  // 1: on the current path, 2: done
        std::vector<Index> way;
        for (Index start = 0; start < m_isFree.size(); ++start) {
            if (!m_isFree[start] || state[start] != 0) continue;
            way.push_back(start);
            state[start] = 1;
            while (!way.empty()) {
                const Index box = way.back();
                if (next[box] == m_begin[box + 1]) {
                    state[box] = 2;
                    m_order.push_back(box);
                    way.pop_back();
                    continue;
                }
                Arrow& arrow = m_arrows[next[box]++];
                if (!m_isFree[arrow.to]) continue;
                if (state[arrow.to] == 1) arrow.isCut = true;
                if (state[arrow.to] != 0) continue;
                state[arrow.to] = 1;
                way.push_back(arrow.to);
            }
        }
        for (Index box = 0; box < m_isFree.size(); ++box)
            if (!m_isFree[box]) m_order.push_back(box);
        std::reverse(m_order.begin(), m_order.end());
        m_isAnchored.assign(m_isFree.size(), 0);
    }

    void pushFrom(Index box) {
        const bool isAnchor = !m_isFree[box] || m_isAnchored[box];
        for (Index i = m_begin[box]; i < m_begin[box + 1]; ++i) {
            const Arrow& arrow = m_arrows[i];
            if (arrow.isCut || !m_isFree[arrow.to]) continue;
            // Boxes with a level take precedence over boxes without one.
            if (isAnchor && !m_isAnchored[arrow.to]) m_ranks[arrow.to] = m_ranks[box] + 1;
            if (isAnchor || !m_isAnchored[arrow.to])
                m_ranks[arrow.to] = std::max(m_ranks[arrow.to], m_ranks[box] + 1);
            if (isAnchor) m_isAnchored[arrow.to] = 1;
        }
    }

    void pullBack(Index box) {
        // Boxes that no box with a level leads to move next to what they lead to, which shortens their lines.
        if (!m_isFree[box] || m_isAnchored[box]) return;
        Rank nearest = std::numeric_limits<Rank>::max();
        for (Index i = m_begin[box]; i < m_begin[box + 1]; ++i)
            if (!m_arrows[i].isCut) nearest = std::min(nearest, m_ranks[m_arrows[i].to]);
        if (nearest != std::numeric_limits<Rank>::max()) m_ranks[box] = nearest - 1;
    }

    std::vector<Rank>& m_ranks;
    std::vector<char> m_isFree;
    std::vector<char> m_isAnchored;  // of a free box: a box with a level leads to it
    std::vector<Arrow> m_arrows;     // by `from`
    std::vector<Index> m_begin;
    std::vector<Index> m_order;
};

using Members = std::vector<Index>;

// Renumbers the members' ranks to 0, 1, 2, ...; of all members, or only of those with a level. Returns how
// many ranks there are.
Index compress(Members& members, const std::vector<BoxToPlace>& boxes, std::vector<Rank>& ranks,
               bool onlyWithLevel) {
    if (onlyWithLevel) std::erase_if(members, [&](Index box) { return boxes[box].level == -1; });
    std::sort(members.begin(), members.end(), [&](Index a, Index b) { return ranks[a] < ranks[b]; });
    Rank next = 0;
    for (std::size_t i = 0; i < members.size();) {
        const Rank rank = ranks[members[i]];
        for (; i < members.size() && ranks[members[i]] == rank; ++i)
            ranks[members[i]] = next;
        ++next;
    }
    return static_cast<Index>(next);
}

// If all boxes of a border are in the outermost rank, they stay; else they get one beyond it.
void moveToBorders(const Members& members, const std::vector<BoxToPlace>& boxes, std::vector<Rank>& ranks) {
    using Border = BoxToPlace::Border;
    Rank first = std::numeric_limits<Rank>::max();
    Rank last = std::numeric_limits<Rank>::min();
    for (const Index box : members) {
        if (boxes[box].border != Border::start) last = std::max(last, ranks[box]);
        if (boxes[box].border != Border::end) first = std::min(first, ranks[box]);
    }
    const auto isBetween = [&](Index box) { return boxes[box].border == Border::none; };
    if (std::none_of(members.begin(), members.end(), isBetween)) first = 0, last = 1;
    Rank firstOwn = first;
    Rank lastOwn = last;
    for (const Index box : members) {
        if (boxes[box].border == Border::start && ranks[box] > first) firstOwn = first - 1;
        if (boxes[box].border == Border::end && ranks[box] < last) lastOwn = last + 1;
    }
    for (const Index box : members) {
        if (boxes[box].border == Border::start) ranks[box] = firstOwn;
        if (boxes[box].border == Border::end) ranks[box] = lastOwn;
    }
}

Members membersOf(const Nesting& nesting, Index container) {
    const auto at = [&](Index i) { return nesting.members.begin() + nesting.memberBegin[i]; };
    return {at(container), at(container + 1)};
}

}  // namespace

Layers layersOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                const std::vector<RouteSegment>& routeSegments) {
    std::vector<Rank> ranks(boxes.size(), 0);
    for (std::size_t i = 0; i < boxes.size(); ++i)
        if (boxes[i].level != -1) ranks[i] = boxes[i].level;
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        Members members = membersOf(nesting, container);
        (void)compress(members, boxes, ranks, true);
    }
    FreeRanks(boxes, routeSegments, ranks).find();
    Layers layers;
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        Members members = membersOf(nesting, container);
        moveToBorders(members, boxes, ranks);
        layers.inContainer.push_back(compress(members, boxes, ranks, false));
    }
    layers.ofBox.assign(ranks.begin(), ranks.end());
    return layers;
}

}  // namespace tessera_draw::placing
