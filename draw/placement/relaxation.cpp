#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "draw/placement/block_graph.h"

namespace tessera_draw::placing {
namespace {

constexpr double straight = 1e-6;
constexpr int passes = 6;

// Moves bodies, groups of vertices that are joined by straight edges, to where their other edges cost least.
class Relaxation {
  public:
    Relaxation(const BlockGraph& blockGraph, const std::vector<char>& isFixed, std::vector<double>& tops)
        : m_blockGraph(blockGraph), m_isFixed(isFixed), m_tops(tops) {}

    // Bodies are straight runs of lines only, or all vertices joined by straight edges. Returns whether any
    // body has moved.
    bool run(bool onlyLines, bool isForwards) {
        m_hasMoved = false;
        findBodies(onlyLines);
        const Index count = static_cast<Index>(m_bodyBegin.size()) - 1;
        for (Index k = 0; k < count; ++k)
            settle(isForwards ? k : count - 1 - k);
        return m_hasMoved;
    }

  private:
    struct Wish {
        double move;
        double weight;
    };

    [[nodiscard]] double difference(Index i, const Adjacency& adjacency) const {
        return m_tops[adjacency.other] + adjacency.otherOffset - m_tops[i] - adjacency.ownOffset;
    }

    // Bodies are listed in the order of their first vertices.
    void findBodies(bool onlyLines) {
        m_body.assign(m_blockGraph.size(), nothing);
        m_bodyBegin.assign(1, 0);
        m_members.clear();
        for (Index start = 0; start < m_blockGraph.size(); ++start) {
            if (m_body[start] != nothing) continue;
            const Index body = static_cast<Index>(m_bodyBegin.size()) - 1;
            m_body[start] = body;
            m_members.push_back(start);
            for (std::size_t head = m_bodyBegin.back(); head < m_members.size(); ++head) {
                const Index i = m_members[head];
                for (Index k = m_blockGraph.inBegin[i]; k < m_blockGraph.inBegin[i + 1]; ++k)
                    join(i, m_blockGraph.in[k], body, onlyLines);
                for (Index k = m_blockGraph.outBegin[i]; k < m_blockGraph.outBegin[i + 1]; ++k)
                    join(i, m_blockGraph.out[k], body, onlyLines);
            }
            m_bodyBegin.push_back(static_cast<Index>(m_members.size()));
        }
    }

    void join(Index i, const Adjacency& adjacency, Index body, bool onlyLines) {
        if (m_body[adjacency.other] != nothing || (onlyLines && !adjacency.isInner)) return;
        if (std::abs(difference(i, adjacency)) > straight) return;
        m_body[adjacency.other] = body;
        m_members.push_back(adjacency.other);
    }

    void settle(Index body) {
        double up = -std::numeric_limits<double>::infinity();
        double down = std::numeric_limits<double>::infinity();
        m_wishes.clear();
        for (Index k = m_bodyBegin[body]; k < m_bodyBegin[body + 1]; ++k) {
            const Index i = m_members[k];
            if (m_isFixed[i] != 0) return;
            if (m_blockGraph.isFirst[i] == 0 && m_body[i - 1] != body)
                up = std::max(up, m_tops[i - 1] + m_blockGraph.step(i - 1) - m_tops[i]);
            if (m_blockGraph.isLast[i] == 0 && m_body[i + 1] != body)
                down = std::min(down, m_tops[i + 1] - m_blockGraph.step(i) - m_tops[i]);
            addWishes(i, body);
        }
        if (m_wishes.empty()) return;
        const double move = std::clamp(bestMove(), std::min(up, 0.0), std::max(down, 0.0));
        if (std::abs(move) <= straight) return;
        for (Index k = m_bodyBegin[body]; k < m_bodyBegin[body + 1]; ++k)
            m_tops[m_members[k]] += move;
        m_hasMoved = true;
    }

    // One wish for each side, so that a vertex with two equal neighbours is placed between them.
    void addWishes(Index i, Index body) {
        addWish(i, body, m_blockGraph.in, m_blockGraph.inBegin);
        addWish(i, body, m_blockGraph.out, m_blockGraph.outBegin);
    }

    void addWish(Index i, Index body, const std::vector<Adjacency>& adjacencies,
                 const std::vector<Index>& begin) {
        if (begin[i + 1] - begin[i] == 1) {  // as most have
            const Adjacency& only = adjacencies[begin[i]];
            if (m_body[only.other] != body) m_wishes.push_back({difference(i, only), only.weight});
            return;
        }
        m_side.clear();
        double weight = 0;
        for (Index k = begin[i]; k < begin[i + 1]; ++k) {
            if (m_body[adjacencies[k].other] == body) continue;
            m_side.push_back({difference(i, adjacencies[k]), adjacencies[k].weight});
            weight += adjacencies[k].weight;
        }
        if (m_side.empty()) return;
        m_wishes.push_back({median(m_side, weight, [](double a, double b) { return (a + b) / 2; }), weight});
    }

    [[nodiscard]] double bestMove() {
        if (m_wishes.size() == 1) return m_wishes.front().move;
        double weight = 0;
        for (const Wish& wish : m_wishes)
            weight += wish.weight;
        return median(m_wishes, weight, between);
    }

    // Weighted median; if two are in the middle, `choose` combines them.
    template <typename Choose>
    static double median(std::vector<Wish>& wishes, double all, Choose choose) {
        std::sort(wishes.begin(), wishes.end(), [](const Wish& a, const Wish& b) {
            return a.move != b.move ? a.move < b.move : a.weight < b.weight;
        });
        double sum = 0;
        for (std::size_t i = 0; i < wishes.size(); ++i) {
            sum += wishes[i].weight;
            if (2 * sum < all) continue;
            if (2 * sum > all || i + 1 == wishes.size()) return wishes[i].move;
            return choose(wishes[i].move, wishes[i + 1].move);
        }
        return 0;
    }

    // All moves between the two cost the same: keep a straight edge straight, else choose the middle.
    static double between(double a, double b) {
        if (std::abs(a) <= straight || std::abs(b) <= straight) return 0;
        return (a + b) / 2;
    }

    const BlockGraph& m_blockGraph;
    const std::vector<char>& m_isFixed;
    std::vector<double>& m_tops;
    bool m_hasMoved = false;
    std::vector<Index> m_body;
    std::vector<Index> m_bodyBegin;  // in m_members
    std::vector<Index> m_members;
    std::vector<Wish> m_wishes;
    std::vector<Wish> m_side;
};

// Restores minimum distances that rounding has violated.
void keepDistances(const BlockGraph& blockGraph, std::vector<double>& tops) {
    for (Index i = 0; i + 1 < blockGraph.size(); ++i)
        if (blockGraph.isLast[i] == 0) tops[i + 1] = std::max(tops[i + 1], tops[i] + blockGraph.step(i));
}

}  // namespace

void relax(const BlockGraph& blockGraph, const std::vector<char>& isFixed, std::vector<double>& tops,
           const CancelToken& cancel) {
    Relaxation relaxation(blockGraph, isFixed, tops);
    for (int pass = 0; pass < passes && !cancel.isCancelled(); ++pass) {
        const bool haveLinesMoved = relaxation.run(true, pass % 2 == 0);
        if (!relaxation.run(false, pass % 2 == 0) && !haveLinesMoved) break;
    }
    keepDistances(blockGraph, tops);
}

}  // namespace tessera_draw::placing
