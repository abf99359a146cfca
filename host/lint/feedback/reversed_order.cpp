#include <algorithm>

#include "host/lint/feedback/node_order.h"

namespace tessera_host {

// Takes nodes that no arc forbids to take, always the one that stands last.
std::vector<std::size_t> reversedOrder(const ArcGraph& graph, const std::vector<std::size_t>& order,
                                       const CancelToken& token) {
    using Index = std::size_t;
    std::vector<Index> place(order.size());
    for (Index i = 0; i < order.size(); ++i)
        place[order[i]] = i;
    std::vector<Index> before(order.size());  // nodes to be taken before it; by arc
    for (Index arc = 0; arc < graph.arcCount() && !token.isCancelled(); ++arc)
        if (place[graph[arc].from] < place[graph[arc].to]) ++before[graph[arc].to];
    std::vector<Index> free;  // places, as a heap
    const auto release = [&](Index node) {
        free.push_back(place[node]);
        std::push_heap(free.begin(), free.end());
    };
    for (const Index node : order)
        if (before[node] == 0) release(node);
    std::vector<Index> out;
    while (!free.empty() && !token.isCancelled()) {
        std::pop_heap(free.begin(), free.end());
        const Index node = order[free.back()];
        free.pop_back();
        out.push_back(node);
        for (const Index arc : graph.leaving(node)) {
            const Index to = graph[arc].to;
            if (place[node] < place[to] && --before[to] == 0) release(to);
        }
    }
    return out;
}

}  // namespace tessera_host
