#include "bench/support/link_ends.h"

#include <algorithm>

namespace tessera_bench {

LinkEnds::Ends LinkEnds::nextTangled() {
    const std::size_t from = below(m_shape.nodes);
    const std::size_t groupEnd = std::min((from / groupSize + 1) * groupSize, m_shape.nodes);
    std::size_t to = below(20) != 0 ? from + below(groupEnd - from) : below(m_shape.nodes);
    if (to == from) to = from > 0 ? from - 1 : 1;  // a link to itself would be a cycle
    return {std::min(from, to), std::max(from, to)};
}

// First, each node outside the first rank gets a link from the rank before.
LinkEnds::Ends LinkEnds::nextBetweenRanks() {
    const bool isSpanning = m_nextTo < m_shape.nodes;
    const std::size_t to = isSpanning ? m_nextTo++ : below(m_shape.nodes);
    const bool isLocal = below(20) != 0;
    // A unit is what forms the ranks: nodes of a group, or groups inside a group.
    const std::size_t unit = isLocal || m_shape.isFlat ? 1 : groupSize;
    const std::size_t place = to / unit % groupSize;
    const std::size_t rank = place / rankSize;
    if (rank == 0) return nextBetweenRanks();
    const std::size_t above = rank > 1 && !isSpanning && below(5) == 0 ? 2 : 1;
    std::size_t first = to / unit - place;
    if (!isLocal && m_shape.isFlat) first = below(m_shape.nodes) / groupSize * groupSize;
    const std::size_t from = (first + (rank - above) * rankSize + below(rankSize)) * unit + below(unit);
    return from < m_shape.nodes ? Ends{from, to} : nextBetweenRanks();
}

}  // namespace tessera_bench
