#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>

#include "host/lint/feedback/node_order.h"

namespace tessera_host {
namespace {

using Index = std::size_t;
using Place = std::int64_t;

constexpr Place gap = Place{1} << 32;  // between nodes next to each other, at first
constexpr int maxRounds = 12;
constexpr int maxSpreadings = 24;  // beyond what rounds need: makes gaps where many nodes went to one place

// Places are numbers with gaps between them, so that a node moves without the others. Nodes that no arc joins
// may share a place.
class Sifting {
  public:
    Sifting(const ArcGraph& graph, std::vector<Index> order, const CancelToken& token)
        : m_graph(graph), m_order(std::move(order)), m_place(graph.nodeCount()), m_token(token) {
        spread();
    }

    std::vector<Index> run() {
        bool hasMoved = true;
        for (int round = 0; round < maxRounds && hasMoved; ++round) {
            hasMoved = false;
            const std::vector<Index> order = m_order;
            for (const Index node : order) {
                if (m_token.isCancelled()) return {};
                hasMoved = sift(node) || hasMoved;
            }
            sortAndSpread();
        }
        return std::move(m_order);
    }

  private:
    // Where the cost of standing there changes: after a node that an arc joins with the sifted one.
    struct Step {
        Place place;
        int change;
    };

    void spread() {
        Place place = 0;
        for (const Index node : m_order)
            m_place[node] = place += gap;
    }

    void sortAndSpread() {
        std::sort(m_order.begin(), m_order.end(), [&](Index a, Index b) {
            return m_place[a] != m_place[b] ? m_place[a] < m_place[b] : a < b;
        });
        spread();
    }

    void collectSteps(Index node) {
        m_steps.clear();
        for (const Index arc : m_graph.leaving(node))
            m_steps.push_back({m_place[m_graph[arc].to], 1});
        for (const Index arc : m_graph.entering(node))
            m_steps.push_back({m_place[m_graph[arc].from], -1});
        std::sort(m_steps.begin(), m_steps.end(), [](Step a, Step b) { return a.place < b.place; });
    }

    // The step before which the fewest arcs run backwards, or none when the node stands well.
    [[nodiscard]] std::optional<std::size_t> bestStep(Place ownPlace) const {
        std::int64_t cost = 0;  // compared with the place before all steps
        std::int64_t least = 0;
        std::int64_t own = 0;
        std::size_t best = 0;
        for (std::size_t i = 0; i < m_steps.size(); ++i) {
            cost += m_steps[i].change;
            if (m_steps[i].place < ownPlace) own = cost;
            const bool isLast = i + 1 == m_steps.size() || m_steps[i + 1].place != m_steps[i].place;
            if (!isLast || cost >= least) continue;
            least = cost;
            best = i + 1;
        }
        return least < own ? std::optional(best) : std::nullopt;
    }

    // Moves the node when that is a gain; returns whether it did.
    bool sift(Index node) {
        collectSteps(node);
        const auto step = bestStep(m_place[node]);
        if (!step) return false;
        if (!hasGapBefore(*step)) {
            if (m_spreadings == maxSpreadings) return false;
            ++m_spreadings;
            sortAndSpread();
            collectSteps(node);
        }
        if (*step == 0)
            m_place[node] = m_steps.front().place - gap;
        else if (*step == m_steps.size())
            m_place[node] = m_steps.back().place + gap;
        else
            m_place[node] = std::midpoint(m_steps[*step - 1].place, m_steps[*step].place);
        return true;
    }

    [[nodiscard]] bool hasGapBefore(std::size_t step) const {
        return step == 0 || step == m_steps.size() || m_steps[step].place - m_steps[step - 1].place >= 2;
    }

    const ArcGraph& m_graph;
    std::vector<Index> m_order;
    std::vector<Place> m_place;
    std::vector<Step> m_steps;
    const CancelToken& m_token;
    int m_spreadings = 0;
};

}  // namespace

std::vector<std::size_t> siftedOrder(const ArcGraph& graph, std::vector<std::size_t> order,
                                     const CancelToken& token) {
    if (token.isCancelled()) return order;
    return Sifting(graph, std::move(order), token).run();
}

}  // namespace tessera_host
