#include "core/view_model/passes/plain_walk.h"

#include <algorithm>
#include <utility>

namespace tessera_1::view_model {
namespace {

using End = WalkedLayers::End;

constexpr std::size_t stepsPerPoll = 1'000'000;

class PlainWalk {
  public:
    PlainWalk(const LayerGraph& graph, std::uint32_t lastLayer, std::size_t maxSteps, std::size_t maxArrivals,
              const relay2::IProgress* progress)
        : m_graph(graph),
          m_lastLayer(lastLayer),
          m_maxSteps(maxSteps),
          m_maxArrivals(maxArrivals),
          m_progress(progress) {}

    WalkedLayers run() {
        m_walked.layerOf.assign(m_graph.childrenStart.size() - 1, WalkedLayers::none);
        m_walked.arrivals = m_graph.roots;
        for (const std::uint32_t root : m_graph.roots)
            m_walked.layerOf[root] = 0;
        if (!m_graph.roots.empty()) m_walked.starts.push_back(0);
        for (std::uint32_t layer = 0; layer < m_walked.starts.size() && m_walked.end == End::reached; ++layer)
            m_walked.end = sweep(layer);
        return std::move(m_walked);
    }

    [[nodiscard]] std::size_t steps() const noexcept { return m_steps; }

  private:
    // Reads the layer, which is the last one so far, into the next one.
    End sweep(std::uint32_t layer) {
        std::uint32_t* const layerOf = m_walked.layerOf.data();
        const std::size_t end = m_walked.arrivals.size();
        for (std::size_t i = m_walked.starts.back(); i < end; ++i) {
            const std::uint32_t node = m_walked.arrivals[i];
            if (layerOf[node] != layer) continue;  // it has just moved on
            const auto children = childrenOf(m_graph, node);
            m_steps += 1 + children.size();
            if (m_steps > m_maxSteps || m_walked.arrivals.size() > m_maxArrivals) return End::overBudget;
            if (isCancelled()) return End::cancelled;
            if (!children.empty() && m_walked.starts.size() == layer + 1) {
                if (layer == m_lastLayer) return End::cycle;
                m_walked.starts.push_back(end);
            }
            for (const std::uint32_t child : children) {
                if (layerOf[child] == layer + 1) continue;
                layerOf[child] = layer + 1;
                m_walked.arrivals.push_back(child);
            }
        }
        return End::reached;
    }

    bool isCancelled() {
        if (!m_progress || m_steps < m_nextPoll) return false;
        m_nextPoll = m_steps + stepsPerPoll;
        return m_progress->isCancelled();
    }

    const LayerGraph& m_graph;
    const std::uint32_t m_lastLayer;
    const std::size_t m_maxSteps;
    const std::size_t m_maxArrivals;
    const relay2::IProgress* const m_progress;
    WalkedLayers m_walked;
    std::size_t m_steps = 0;
    std::size_t m_nextPoll = stepsPerPoll;
};

// At most so much a walk takes.
struct WalkCost {
    std::uint64_t arrivals = 0;
    std::uint64_t steps = 0;
};

// A node arrives at most once in each layer between those of the shortest and of the longest path to it. After a
// cycle, there is no longest one.
WalkCost greatestCost(const LayerGraph& graph, std::uint32_t lastLayer) {
    const std::size_t size = graph.childrenStart.size() - 1;
    std::vector<std::uint32_t> first(size, WalkedLayers::none);
    std::vector<std::uint32_t> last(size, 0);
    std::vector<std::uint32_t> parents(size, 0);
    std::vector<std::uint32_t> reached = graph.roots;
    for (const std::uint32_t root : graph.roots)
        first[root] = 0;
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const std::uint32_t child : childrenOf(graph, reached[i])) {
            ++parents[child];
            if (first[child] != WalkedLayers::none) continue;
            first[child] = first[reached[i]] + 1;
            reached.push_back(child);
        }
    }
    std::vector<std::uint32_t> order = graph.roots;
    for (std::size_t i = 0; i < order.size(); ++i) {
        for (const std::uint32_t child : childrenOf(graph, order[i])) {
            last[child] = std::max(last[child], last[order[i]] + 1);
            if (--parents[child] == 0) order.push_back(child);
        }
    }
    WalkCost cost;
    for (const std::uint32_t node : reached) {
        const std::uint64_t arrivals = (parents[node] == 0 ? last[node] : lastLayer) - first[node] + 1;
        cost.arrivals += arrivals;
        cost.steps += arrivals * (1 + childrenOf(graph, node).size());
    }
    return cost;
}

}  // namespace

WalkedLayers walkPlainly(const LayerGraph& graph, std::uint32_t lastLayer, WalkBudget& budget,
                         const relay2::IProgress* progress) {
    const std::size_t members = graph.childrenStart.size() - 1;
    const std::size_t ownSteps = budget.perElement * (members + graph.children.size());
    const std::size_t ownArrivals = (1 + budget.perElement) * members;
    const std::size_t maxArrivals = budget.placeholders + ownArrivals;
    const auto spend = [](std::size_t& shared, std::size_t own, std::size_t used) {
        if (used > own) shared -= std::min(shared, used - own);
    };
    WalkedLayers walked = PlainWalk(graph, lastLayer, ownSteps, maxArrivals, progress).run();
    if (walked.end == End::overBudget && budget.foreseenSteps > 0) {
        const WalkCost cost = greatestCost(graph, lastLayer);
        if (cost.arrivals <= maxArrivals && cost.steps <= budget.foreseenSteps) {
            budget.foreseenSteps -= cost.steps;
            walked = PlainWalk(graph, lastLayer, cost.steps, cost.arrivals, progress).run();
        }
    }
    if (walked.end == End::overBudget && budget.steps > 0) {
        PlainWalk walk(graph, lastLayer, budget.steps + ownSteps, maxArrivals, progress);
        walked = walk.run();
        spend(budget.steps, ownSteps, walk.steps());
    }
    const bool isKept = walked.end == End::reached || walked.end == End::cycle;
    if (isKept) spend(budget.placeholders, ownArrivals, walked.arrivals.size());
    return walked;
}

}  // namespace tessera_1::view_model
