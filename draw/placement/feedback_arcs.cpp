#include "draw/placement/feedback_arcs.h"

#include <cstdint>
#include <numeric>

namespace tessera_draw::placing {
namespace {

class DepthFirstSearch {
  public:
    DepthFirstSearch(Index vertexCount, const std::vector<Arc>& arcs)
        : m_arcs(arcs),
          m_begin(vertexCount + 1, 0),
          m_hasArcTo(vertexCount, 0),
          m_state(vertexCount, State::open),
          m_leadsBack(arcs.size(), 0) {
        for (const Arc& arc : m_arcs)
            ++m_begin[arc.from + 1];
        std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
        m_next.assign(m_begin.begin(), m_begin.end() - 1);
        m_out.resize(m_arcs.size());
        for (Index i = 0; i < m_arcs.size(); ++i) {
            m_out[m_next[m_arcs[i].from]++] = i;
            if (m_arcs[i].from != m_arcs[i].to) m_hasArcTo[m_arcs[i].to] = 1;
        }
        m_next.assign(m_begin.begin(), m_begin.end() - 1);
    }

    std::vector<char> run() {
        for (const bool onlySources : {true, false})
            for (Index vertex = 0; vertex < m_state.size(); ++vertex)
                if (m_state[vertex] == State::open && (!onlySources || m_hasArcTo[vertex] == 0))
                    visit(vertex);
        return std::move(m_leadsBack);
    }

  private:
    enum class State : std::uint8_t { open, onPath, done };

    void visit(Index start) {
        enter(start);
        while (!m_path.empty()) {
            const Index vertex = m_path.back();
            if (m_next[vertex] == m_begin[vertex + 1]) {
                m_state[vertex] = State::done;
                m_path.pop_back();
                continue;
            }
            const Index arc = m_out[m_next[vertex]++];
            const Index head = m_arcs[arc].to;
            if (m_state[head] == State::onPath && head != vertex) m_leadsBack[arc] = 1;
            if (m_state[head] == State::open) enter(head);
        }
    }

    void enter(Index vertex) {
        m_state[vertex] = State::onPath;
        m_path.push_back(vertex);
    }

    const std::vector<Arc>& m_arcs;
    std::vector<Index> m_begin;  // by vertex, in `m_out`
    std::vector<Index> m_out;
    std::vector<Index> m_next;  // the arc to look at next
    std::vector<char> m_hasArcTo;
    std::vector<State> m_state;
    std::vector<Index> m_path;
    std::vector<char> m_leadsBack;
};

}  // namespace

std::vector<char> feedbackArcs(Index vertexCount, const std::vector<Arc>& arcs) {
    return DepthFirstSearch(vertexCount, arcs).run();
}

}  // namespace tessera_draw::placing
