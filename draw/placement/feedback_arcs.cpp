#include "draw/placement/feedback_arcs.h"

#include <cstdint>
#include <functional>
#include <numeric>
#include <queue>
#include <tuple>

namespace tessera_draw::placing {
namespace {

// Takes vertices off the graph, one by one: those that nothing leads to go to the front of the order, those that
// lead to nothing to its back, and when there are neither, the one that leads to the most vertices beyond those
// that lead to it goes to the front.
class FeedbackArcs {
  public:
    FeedbackArcs(Index vertexCount, const std::vector<Arc>& arcs)
        : m_arcs(arcs), m_begin(vertexCount + 1, 0), m_in(vertexCount, 0), m_out(vertexCount, 0) {
        for (const Arc& arc : m_arcs) {
            if (arc.from == arc.to) continue;
            ++m_begin[arc.from + 1];
            ++m_begin[arc.to + 1];
            ++m_out[arc.from];
            ++m_in[arc.to];
        }
        std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
        m_incident.resize(m_begin.back());
        std::vector<Index> next(m_begin.begin(), m_begin.end() - 1);
        for (Index i = 0; i < m_arcs.size(); ++i) {
            if (m_arcs[i].from == m_arcs[i].to) continue;
            m_incident[next[m_arcs[i].from]++] = i;
            m_incident[next[m_arcs[i].to]++] = i;
        }
    }

    std::vector<char> find() {
        const auto count = static_cast<Index>(m_in.size());
        m_place.assign(count, nothing);
        for (Index vertex = 0; vertex < count; ++vertex)
            enqueue(vertex);
        Index front = 0;
        Index back = count;
        while (front < back) {
            const Entry entry = m_queue.top();
            m_queue.pop();
            const Index vertex = std::get<Index>(entry);
            if (m_place[vertex] != nothing || entry != entryOf(vertex)) continue;  // another entry is newer
            m_place[vertex] = m_out[vertex] == 0 && m_in[vertex] != 0 ? --back : front++;
            remove(vertex);
        }
        std::vector<char> isReversed(m_arcs.size(), 0);
        for (std::size_t i = 0; i < m_arcs.size(); ++i)
            isReversed[i] = m_place[m_arcs[i].from] > m_place[m_arcs[i].to] ? 1 : 0;
        return isReversed;
    }

  private:
    using Entry = std::tuple<int, std::int64_t, Index>;  // what to take first, smallest first

    [[nodiscard]] Entry entryOf(Index vertex) const {
        if (m_in[vertex] == 0) return {0, 0, vertex};
        if (m_out[vertex] == 0) return {1, 0, vertex};
        return {2, std::int64_t{m_in[vertex]} - std::int64_t{m_out[vertex]}, vertex};
    }

    void enqueue(Index vertex) { m_queue.push(entryOf(vertex)); }

    void remove(Index vertex) {
        for (Index i = m_begin[vertex]; i < m_begin[vertex + 1]; ++i) {
            const Arc& arc = m_arcs[m_incident[i]];
            const Index far = arc.from == vertex ? arc.to : arc.from;
            if (m_place[far] != nothing) continue;
            --(arc.from == vertex ? m_in[far] : m_out[far]);
            enqueue(far);
        }
    }

    const std::vector<Arc>& m_arcs;
    std::vector<Index> m_begin;  // by vertex, in `m_incident`
    std::vector<Index> m_incident;
    std::vector<Index> m_in;  // arcs from vertices that are still there
    std::vector<Index> m_out;
    std::vector<Index> m_place;  // in the order; `nothing` while the vertex is still there
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> m_queue;
};

}  // namespace

std::vector<char> feedbackArcs(Index vertexCount, const std::vector<Arc>& arcs) {
    return FeedbackArcs(vertexCount, arcs).find();
}

}  // namespace tessera_draw::placing
