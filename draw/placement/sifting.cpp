#include "draw/placement/sifting.h"

#include <algorithm>

namespace tessera_draw::placing {

std::uint64_t Sifting::sift(Index layer, Index reach) {
    if (m_graph.sizeOf(layer) < 2) return 0;
    collect(layer);
    const auto count = static_cast<Index>(m_layer.size());
    std::uint64_t gained = 0;
    for (Index next = 0; next < count; ++next) {
        // Vertices move by a few places only, so the next one is usually found close to its old place.
        Index place = next;
        for (Index away = 0; m_order[place] != next;) {
            ++away;
            if (next >= away && m_order[next - away] == next) place = next - away;
            if (next + away < count && m_order[next + away] == next) place = next + away;
        }
        gained += moveBest(place, reach);
    }
    if (gained == 0) return 0;
    const Index begin = m_graph.layerBegin[layer];
    for (Index i = 0; i < count; ++i)
        m_graph.order[begin + i] = m_layer[m_order[i]].vertex;
    return gained;
}

void Sifting::collect(Index layer) {
    m_neighbours.clear();
    m_layer.clear();
    m_order.clear();
    for (Index i = 0; i < m_graph.sizeOf(layer); ++i) {
        appendRanks(m_graph.at(layer, i));
        m_order.push_back(i);
    }
}

void Sifting::appendRanks(Index vertex) {
    Sifted sifted;
    sifted.vertex = vertex;
    sifted.begin = static_cast<Index>(m_neighbours.size());
    for (Index k = m_graph.inBegin[vertex]; k < m_graph.inBegin[vertex + 1]; ++k)
        m_neighbours.push_back(m_ranks.ofTail(m_graph.inTails[k]));
    sifted.middle = static_cast<Index>(m_neighbours.size());
    for (Index k = m_graph.outBegin[vertex]; k < m_graph.outBegin[vertex + 1]; ++k)
        m_neighbours.push_back(m_ranks.ofHead(m_graph.outHeads[k]));
    sifted.end = static_cast<Index>(m_neighbours.size());
    const auto at = [&](Index i) { return m_neighbours.begin() + i; };
    if (sifted.middle - sifted.begin > 1) std::sort(at(sifted.begin), at(sifted.middle));
    if (sifted.end - sifted.middle > 1) std::sort(at(sifted.middle), at(sifted.end));
    m_layer.push_back(sifted);
}

// #(a < b) - #(a > b) over all pairs.
inline std::int64_t Sifting::balance(Index a, Index endA, Index b, Index endB) const {
    const Index* ranks = m_neighbours.data();
    if (endA - a > 4 && endB - b > 4) return balanceOfMany(a, endA, b, endB);
    std::int64_t sum = 0;
    for (; a < endA; ++a)
        for (Index k = b; k < endB; ++k)
            sum += static_cast<int>(ranks[a] < ranks[k]) - static_cast<int>(ranks[a] > ranks[k]);
    return sum;
}

// The same in linear time: both lists are sorted.
std::int64_t Sifting::balanceOfMany(Index a, Index endA, Index b, Index endB) const {
    const Index* ranks = m_neighbours.data();
    std::int64_t sum = 0;
    Index less = b;  // the first of b that is not less than the current a
    Index notMore = b;
    for (; a < endA; ++a) {
        while (less < endB && ranks[less] < ranks[a])
            ++less;
        while (notMore < endB && ranks[notMore] <= ranks[a])
            ++notMore;
        sum += static_cast<std::int64_t>(endB - notMore) - static_cast<std::int64_t>(less - b);
    }
    return sum;
}

// The number of crossings added by moving `vertex` from before `other` to after
// it; negative if they decrease.
inline std::int64_t Sifting::lossOfPassing(const Sifted& vertex, const Sifted& other) const {
    return balance(vertex.begin, vertex.middle, other.begin, other.middle) +
           balance(vertex.middle, vertex.end, other.middle, other.end);
}

// An estimate of the comparisons that lossOfPassing makes.
inline Index Sifting::workOf(const Sifted& vertex, const Sifted& other) {
    return 2 + std::max(vertex.end - vertex.begin, other.end - other.begin);
}

std::uint64_t Sifting::moveBest(Index place, Index reach) {
    const Index index = m_order[place];
    const Sifted vertex = m_layer[index];
    const Index first = place > reach ? place - reach : 0;
    const Index last = std::min(place + reach, static_cast<Index>(m_order.size()) - 1);
    Index best = place;
    // Passing one neighbour after the other adds up, so each place costs only one comparison of two vertices.
    std::int64_t minLoss = 0;
    std::int64_t loss = 0;
    for (Index i = place + 1; i <= last; ++i) {
        const Sifted& other = m_layer[m_order[i]];
        loss += lossOfPassing(vertex, other);
        m_work += workOf(vertex, other);
        if (loss >= minLoss) continue;
        minLoss = loss;
        best = i;
    }
    loss = 0;
    for (Index i = place; i-- > first;) {
        const Sifted& other = m_layer[m_order[i]];
        loss -= lossOfPassing(vertex, other);
        m_work += workOf(vertex, other);
        if (loss >= minLoss) continue;
        minLoss = loss;
        best = i;
    }
    if (best == place) return 0;
    const auto at = [&](Index i) { return m_order.begin() + i; };
    if (best > place)
        std::rotate(at(place), at(place + 1), at(best + 1));
    else
        std::rotate(at(best), at(place), at(place + 1));
    return static_cast<std::uint64_t>(-minLoss);
}

}  // namespace tessera_draw::placing
