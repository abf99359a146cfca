#include "host/lint/feedback/feedback_arcs.h"

#include <algorithm>
#include <random>

#include "host/lint/feedback/node_order.h"

namespace tessera_host {
namespace {

using Index = std::size_t;
using Order = std::vector<Index>;

constexpr Index maxTries = 200;    // to improve an order, for each graph
constexpr Index effort = 200'000;  // nodes and arcs that all tries may visit, in total

std::vector<Index> arcsAgainst(const ArcGraph& graph, const Order& order) {
    std::vector<Index> place(order.size());
    for (Index i = 0; i < order.size(); ++i)
        place[order[i]] = i;
    std::vector<Index> arcs;
    for (Index arc = 0; arc < graph.arcCount(); ++arc)
        if (place[graph[arc].to] < place[graph[arc].from]) arcs.push_back(arc);
    return arcs;
}

// The best order that can be reached from this one without making it worse.
Order settled(const ArcGraph& graph, Order order, const CancelToken& token) {
    for (int i = 0; i < 2; ++i) {
        order = siftedOrder(graph, std::move(order), token);
        if (token.isCancelled()) return {};
        order = reversedOrder(graph, order, token);
        if (token.isCancelled()) return {};
    }
    return minimalOrder(graph, order, token);
}

// Some nodes of the order at other places.
Order shaken(const Order& order, std::minstd_rand& random) {
    constexpr Index moved = 10;  // percent
    const auto below = [&](Index n) { return static_cast<Index>(random()) % n; };
    std::vector<std::pair<Index, Index>> places;  // twice the place, and the node
    places.reserve(order.size());
    for (Index i = 0; i < order.size(); ++i)
        places.emplace_back(below(100) < moved ? 2 * below(order.size()) + 1 : 2 * i, order[i]);
    std::sort(places.begin(), places.end());
    Order out;
    for (const auto& [place, node] : places)
        out.push_back(node);
    return out;
}

std::vector<Index> fewArcs(const ArcGraph& graph, Index tries, const CancelToken& token) {
    if (graph.nodeCount() <= maxExactNodes) return arcsAgainst(graph, exactOrder(graph));
    std::minstd_rand random;
    Order best = settled(graph, greedyOrder(graph, token), token);
    if (token.isCancelled()) return {};
    std::vector<Index> fewest = arcsAgainst(graph, best);
    for (; tries > 0 && fewest.size() > 1; --tries) {
        Order order = settled(graph, shaken(best, random), token);
        if (token.isCancelled()) return {};
        std::vector<Index> arcs = arcsAgainst(graph, order);
        if (arcs.size() > fewest.size()) continue;
        if (arcs.size() < fewest.size()) fewest = std::move(arcs);
        best = std::move(order);
    }
    return fewest;
}

}  // namespace

std::vector<std::vector<std::size_t>> feedbackArcs(const std::vector<const ArcGraph*>& graphs,
                                                   const CancelToken& token) {
    Index all = 1;
    for (const ArcGraph* graph : graphs)
        if (graph->nodeCount() > maxExactNodes) all += graph->nodeCount() + graph->arcCount();
    std::vector<std::vector<Index>> arcs;
    for (const ArcGraph* graph : graphs) {
        if (token.isCancelled()) break;
        arcs.push_back(fewArcs(*graph, std::min(maxTries, effort / all), token));
    }
    return arcs;
}

}  // namespace tessera_host
