#include "core/view_model/passes/layer_sweeps.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessera_1::view_model {
namespace {

constexpr std::size_t stepsPerPoll = 1'000'000;

}  // namespace

Sweeps::Sweeps(const LayerGraph& graph, SweptNodes& nodes, const std::vector<Number>& first,
               std::int64_t level, std::size_t size, Arrival firstArrival)
    : m_graph(graph),
      m_nodes(nodes),
      m_hasManyWays(first.size() > 1),
      m_level(level),
      m_layer(size + 1),
      m_next(size + 1),
      m_size(first.size()),
      m_nextArrival(firstArrival) {
    std::copy(first.begin(), first.end(), m_layer.begin());
    for (std::size_t i = 0; i < first.size(); ++i)
        m_nodes.ways[first[i]] = static_cast<Number>(i);
    settle();
    remember();
}

bool Sweeps::run(std::int64_t lastLayer, const std::vector<bool>* passing,
                 const relay2::IProgress* progress) {
    const auto passes = [&](Number node) { return (*passing)[node]; };
    std::size_t steps = 0;
    while (m_level < lastLayer) {
        if (passing && std::none_of(layer().begin(), layer().end(), passes)) return true;
        steps += 1 + m_size;
        if (progress && steps > stepsPerPoll) {
            steps = 0;
            if (progress->isCancelled()) return false;
        }
        ++m_level;
        if (m_hasManyWays)
            sweep<true>();
        else
            sweep<false>();
        if (!passing && !m_hasJumped) jump(lastLayer);
    }
    return true;
}

std::int64_t Sweeps::levelOf(Number node) const {
    const Arrival arrival = m_nodes.arrivals[node];
    if (arrival < m_starts.front().first) return -1;
    const auto after =
        std::upper_bound(m_starts.begin(), m_starts.end(), arrival,
                         [](Arrival value, const Start& start) { return value < start.first; });
    return std::prev(after)->level;
}

// Records the arrival of the nodes in the present layer.
void Sweeps::settle() {
    m_starts.push_back({m_nextArrival, m_level});
    for (const Number node : layer())
        m_nodes.arrivals[node] = m_nextArrival++;
}

// Reads the present layer into the next one. With a single way, ways are not recorded.
template <bool hasManyWays>
void Sweeps::sweep() {
    const Arrival start = m_nextArrival;
    m_starts.push_back({start, m_level});
    Arrival nextArrival = start;
    Number* next = m_next.data();
    Arrival* const arrivals = m_nodes.arrivals.data();
    Number* const ways = m_nodes.ways.data();
    for (const Number node : layer()) {
        if (arrivals[node] >= start) continue;  // it has just moved on
        for (const Number child : childrenOf(m_graph, node)) {
            const Arrival before = arrivals[child];
            const bool isNew = before < start;  // unpredictable, so there is no branch
            *next = child;
            next += isNew ? 1 : 0;
            arrivals[child] = isNew ? nextArrival : before;
            nextArrival += isNew ? 1 : 0;
            if constexpr (hasManyWays) ways[child] = isNew ? ways[node] : ways[child];
        }
    }
    m_nextArrival = nextArrival;
    m_size = static_cast<std::size_t>(next - m_next.data());
    std::swap(m_layer, m_next);
}

void Sweeps::remember() {
    m_seen.assign(layer().begin(), layer().end());
    m_seenWays.clear();
    if (!m_hasManyWays) return;
    for (const Number node : layer())
        m_seenWays.push_back(m_nodes.ways[node]);
}

bool Sweeps::isAsRemembered() const {
    if (!std::equal(layer().begin(), layer().end(), m_seen.begin(), m_seen.end())) return false;
    for (std::size_t i = 0; i < m_seenWays.size(); ++i)
        if (m_nodes.ways[m_layer[i]] != m_seenWays[i]) return false;
    return true;
}

// A layer depends only on the one above it. When it has occurred before, all further rounds but one are skipped;
// that one gives every node its place. The layer to compare with is renewed at growing intervals, so a
// repetition is found soon after it begins.
void Sweeps::jump(std::int64_t lastLayer) {
    ++m_sinceSeen;
    if (isAsRemembered()) {
        const std::int64_t rounds = (lastLayer - m_level) / m_sinceSeen;
        if (rounds > 1) m_level += (rounds - 1) * m_sinceSeen;
        settle();
        m_hasJumped = true;
    } else if (m_sinceSeen == m_interval) {
        remember();
        m_interval *= 2;
        m_sinceSeen = 0;
    }
}

}  // namespace tessera_1::view_model
