#include "draw/placement/network_simplex.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <queue>
#include <utility>

namespace tessera_draw::placing {
namespace {

using Rank = std::int32_t;

// A spanning forest of tight edges. Each vertex has a number in postorder, and the smallest one in its subtree:
// a subtree is a range of numbers.
class NetworkSimplex {
  public:
    NetworkSimplex(Index vertexCount, const std::vector<RankEdge>& edges)
        : m_edges(edges), m_ranks(vertexCount, 0), m_begin(vertexCount + 1, 0) {
        for (const RankEdge& edge : m_edges) {
            ++m_begin[edge.tail + 1];
            ++m_begin[edge.head + 1];
        }
        std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
        m_incident.resize(2 * m_edges.size());
        std::vector<Index> next(m_begin.begin(), m_begin.end() - 1);
        for (Index i = 0; i < m_edges.size(); ++i) {
            m_incident[next[m_edges[i].tail]++] = i;
            m_incident[next[m_edges[i].head]++] = i;
        }
    }

    std::vector<Rank> find() {
        layByLongestPath();
        growTrees();
        numberAll();
        findCutValues();
        improve();
        beginAtZero();
        return std::move(m_ranks);
    }

  private:
    [[nodiscard]] Index other(const RankEdge& edge, Index vertex) const {
        return edge.tail == vertex ? edge.head : edge.tail;
    }

    [[nodiscard]] Rank slack(const RankEdge& edge) const {
        return m_ranks[edge.head] - m_ranks[edge.tail] - edge.minLength;
    }

    [[nodiscard]] bool isInSubtree(Index top, Index inner) const {
        return m_low[top] <= m_number[inner] && m_number[inner] <= m_number[top];
    }

    template <class Visit>
    void forEachEdge(Index vertex, Visit visit) {
        m_work += m_begin[vertex + 1] - m_begin[vertex];
        for (Index i = m_begin[vertex]; i < m_begin[vertex + 1]; ++i)
            visit(m_incident[i]);
    }

    // In topological order, each vertex as near to the start as its edges allow.
    void layByLongestPath() {
        std::vector<Index> missing(m_ranks.size(), 0);
        for (const RankEdge& edge : m_edges)
            ++missing[edge.head];
        std::vector<Index> ready;
        for (Index vertex = 0; vertex < m_ranks.size(); ++vertex)
            if (missing[vertex] == 0) ready.push_back(vertex);
        for (std::size_t i = 0; i < ready.size(); ++i) {
            forEachEdge(ready[i], [&](Index at) {
                const RankEdge& edge = m_edges[at];
                if (edge.tail != ready[i]) return;
                m_ranks[edge.head] = std::max(m_ranks[edge.head], m_ranks[edge.tail] + edge.minLength);
                if (--missing[edge.head] == 0) ready.push_back(edge.head);
            });
        }
    }

    using Entry = std::pair<Rank, Index>;  // slack before the shift, edge
    using Queue = std::priority_queue<Entry, std::vector<Entry>, std::greater<>>;

    // A tree that grows. Shifting it changes the slack of all edges that leave it by the same amount, and of all that
    // enter it by the opposite one, so that the queues keep their order.
    struct Tree {
        std::vector<Index> members;  // their ranks lack the shift
        Queue leaving;
        Queue entering;
        Rank shift = 0;
    };

    // From one vertex of each connected part: always along the edge with the least slack to a vertex outside, after
    // the whole tree was shifted so that the edge is tight.
    void growTrees() {
        m_isTree.assign(m_edges.size(), 0);
        m_parentEdge.assign(m_ranks.size(), nothing);
        m_isInside.assign(m_ranks.size(), 0);
        for (Index root = 0; root < m_ranks.size(); ++root) {
            if (m_isInside[root] != 0) continue;
            m_roots.push_back(root);
            Tree tree;
            addTo(tree, root);
            while (growOnce(tree)) {
            }
            for (const Index vertex : tree.members)
                m_ranks[vertex] += tree.shift;
        }
    }

    void addTo(Tree& tree, Index vertex) {
        m_isInside[vertex] = 1;
        tree.members.push_back(vertex);
        m_ranks[vertex] -= tree.shift;
        forEachEdge(vertex, [&](Index at) {
            const RankEdge& edge = m_edges[at];
            if (m_isInside[other(edge, vertex)] == 0)
                (edge.tail == vertex ? tree.leaving : tree.entering).emplace(slack(edge), at);
        });
    }

    bool growOnce(Tree& tree) {
        dropInner(tree.leaving);
        dropInner(tree.entering);
        if (tree.leaving.empty() && tree.entering.empty()) return false;
        const bool isLeaving =
            tree.entering.empty() || (!tree.leaving.empty() && tree.leaving.top().first - tree.shift <=
                                                                   tree.entering.top().first + tree.shift);
        const auto [key, at] = isLeaving ? tree.leaving.top() : tree.entering.top();
        tree.shift = isLeaving ? key : -key;
        m_isTree[at] = 1;
        addTo(tree, isLeaving ? m_edges[at].head : m_edges[at].tail);
        return true;
    }

    void dropInner(Queue& queue) const {
        while (!queue.empty() && m_isInside[m_edges[queue.top().second].tail] != 0 &&
               m_isInside[m_edges[queue.top().second].head] != 0)
            queue.pop();
    }

    void numberAll() {
        m_number.assign(m_ranks.size(), 0);
        m_low.assign(m_ranks.size(), 0);
        m_atNumber.assign(m_ranks.size(), 0);
        m_nextEdge.assign(m_ranks.size(), 0);
        Index next = 0;
        for (const Index root : m_roots)
            next = numberFrom(root, next);
    }

    // Numbers the subtree of `top` in postorder, from `next` on; sets the edges to parents below `top`.
    Index numberFrom(Index top, Index next) {
        m_path.assign(1, top);
        m_low[top] = next;
        m_nextEdge[top] = m_begin[top];
        while (!m_path.empty()) {
            const Index vertex = m_path.back();
            if (m_nextEdge[vertex] == m_begin[vertex + 1]) {
                m_atNumber[next] = vertex;
                m_number[vertex] = next++;
                m_path.pop_back();
                continue;
            }
            ++m_work;
            const Index at = m_incident[m_nextEdge[vertex]++];
            if (m_isTree[at] == 0 || at == m_parentEdge[vertex]) continue;
            const Index child = other(m_edges[at], vertex);
            m_parentEdge[child] = at;
            m_low[child] = next;
            m_nextEdge[child] = m_begin[child];
            m_path.push_back(child);
        }
        return next;
    }

    // The cut value of a tree edge: what the sum of lengths grows by when the part at its tail moves one rank
    // away from the other. From the leaves up, each from those below it.
    void findCutValues() {
        m_cutValues.assign(m_edges.size(), 0);
        for (const Index vertex : m_atNumber) {
            const Index up = m_parentEdge[vertex];
            if (up == nothing) continue;
            const bool isTail = m_edges[up].tail == vertex;
            std::int64_t sum = 0;
            forEachEdge(vertex, [&](Index at) {
                const RankEdge& edge = m_edges[at];
                const bool isAlong = (edge.tail == vertex) == isTail;
                const std::int64_t below =
                    m_isTree[at] != 0 && isInSubtree(vertex, other(edge, vertex)) ? m_cutValues[at] : 0;
                sum += isAlong ? edge.weight - below : below - edge.weight;
            });
            m_cutValues[up] = sum;
        }
    }

    // Exchanges tree edges with negative cut values, until there are none or the work is too much.
    void improve() {
        std::vector<Index> tree;
        for (Index at = 0; at < m_edges.size(); ++at)
            if (m_isTree[at] != 0) tree.push_back(at);
        constexpr std::uint64_t workForEach = 100;
        constexpr std::uint64_t least = 200'000;
        const std::uint64_t limit = m_work + least + workForEach * (m_edges.size() + m_ranks.size());
        std::size_t place = 0;
        for (std::size_t unchanged = 0; unchanged < tree.size() && m_work < limit; ++place, ++unchanged) {
            ++m_work;
            Index& leaving = tree[place % tree.size()];
            if (m_cutValues[leaving] >= 0) continue;
            const Index entering = enteringFor(leaving);
            if (entering == nothing) continue;
            exchange(leaving, entering);
            leaving = entering;
            unchanged = 0;
        }
    }

    // The end of a tree edge that is further from the root.
    [[nodiscard]] Index lowerEnd(Index at) const {
        const RankEdge& edge = m_edges[at];
        return m_number[edge.tail] < m_number[edge.head] ? edge.tail : edge.head;
    }

    // The edge with the least slack that leads over the cut in the opposite direction.
    Index enteringFor(Index leaving) {
        const Index top = lowerEnd(leaving);
        const bool isTail = m_edges[leaving].tail == top;
        Index best = nothing;
        Rank least = std::numeric_limits<Rank>::max();
        for (Index number = m_low[top]; number <= m_number[top] && least > 0; ++number) {
            const Index vertex = m_atNumber[number];
            forEachEdge(vertex, [&](Index at) {
                const RankEdge& edge = m_edges[at];
                if ((edge.head == vertex) != isTail || isInSubtree(top, other(edge, vertex))) return;
                if (slack(edge) < least) best = at, least = slack(edge);
            });
        }
        return best;
    }

    void exchange(Index leaving, Index entering) {
        const Rank distance = slack(m_edges[entering]);
        const Index top = lowerEnd(leaving);
        const Rank shift = m_edges[leaving].tail == top ? -distance : distance;
        m_work += m_number[top] - m_low[top];
        for (Index number = m_low[top]; shift != 0 && number <= m_number[top]; ++number)
            m_ranks[m_atNumber[number]] += shift;
        const std::int64_t value = m_cutValues[leaving];
        const Index meeting = addAlong(m_edges[entering].tail, m_edges[entering].head, value, true);
        (void)addAlong(m_edges[entering].head, m_edges[entering].tail, value, false);
        m_cutValues[entering] = -value;
        m_cutValues[leaving] = 0;
        m_isTree[leaving] = 0;
        m_isTree[entering] = 1;
        (void)numberFrom(meeting, m_low[meeting]);
    }

    // Goes up from `vertex` to the first vertex whose subtree holds `goal`, and changes the cut values of the edges
    // that it passes. Returns that vertex.
    Index addAlong(Index vertex, Index goal, std::int64_t value, bool isTailSide) {
        while (!isInSubtree(vertex, goal)) {
            const Index up = m_parentEdge[vertex];
            const bool isPlus = (m_edges[up].tail == vertex) == isTailSide;
            m_cutValues[up] += isPlus ? value : -value;
            vertex = other(m_edges[up], vertex);
            ++m_work;
        }
        return vertex;
    }

    void beginAtZero() {
        for (const Index root : m_roots) {
            Rank least = std::numeric_limits<Rank>::max();
            for (Index number = m_low[root]; number <= m_number[root]; ++number)
                least = std::min(least, m_ranks[m_atNumber[number]]);
            for (Index number = m_low[root]; number <= m_number[root]; ++number)
                m_ranks[m_atNumber[number]] -= least;
        }
    }

    const std::vector<RankEdge>& m_edges;
    std::vector<Rank> m_ranks;
    std::vector<Index> m_begin;  // by vertex, in `m_incident`
    std::vector<Index> m_incident;
    std::vector<char> m_isTree;
    std::vector<char> m_isInside;  // by vertex: in a tree
    std::vector<Index> m_roots;
    std::vector<Index> m_parentEdge;
    std::vector<Index> m_number;
    std::vector<Index> m_low;
    std::vector<Index> m_atNumber;
    std::vector<Index> m_nextEdge;
    std::vector<Index> m_path;
    std::vector<std::int64_t> m_cutValues;  // by edge
    std::uint64_t m_work = 0;
};

}  // namespace

std::vector<std::int32_t> shortestRanks(Index vertexCount, const std::vector<RankEdge>& edges) {
    return NetworkSimplex(vertexCount, edges).find();
}

}  // namespace tessera_draw::placing
