#include "host/lint/cycles/components.h"

#include <algorithm>

namespace tessera_host {

using tessera_support::CancelToken;

// Tarjan's strongly connected components, with a stack of its own.
std::vector<std::size_t> componentsOf(std::size_t nodeCount, const GroupEdges& edges,
                                      const CancelToken& token) {
    using Index = std::size_t;
    struct Open {
        Index node;
        Index edge;
    };
    std::vector<Index> component(nodeCount, noIndex), order(nodeCount, noIndex), low(nodeCount);
    // Entered nodes whose component is not yet known.
    std::vector<Index> waiting;
    std::vector<Open> open;
    Index nextOrder = 0;
    Index nextComponent = 0;
    const auto enter = [&](Index node) {
        order[node] = low[node] = nextOrder++;
        waiting.push_back(node);
        open.push_back({node, edges.begin(node)});
    };
    for (Index root = 0; root < nodeCount; ++root) {
        if (order[root] != noIndex) continue;
        enter(root);
        while (!open.empty()) {
            // Nodes whose component is not known by then keep `noIndex`.
            if (token.isCancelled()) return component;
            const Index node = open.back().node;
            if (open.back().edge < edges.end(node)) {
                const Index to = edges[open.back().edge++].to;
                if (order[to] == noIndex)
                    enter(to);
                else if (component[to] == noIndex)
                    low[node] = std::min(low[node], order[to]);
                continue;
            }
            open.pop_back();
            if (!open.empty()) low[open.back().node] = std::min(low[open.back().node], low[node]);
            if (low[node] != order[node]) continue;
            for (Index member = noIndex; member != node; waiting.pop_back())
                component[member = waiting.back()] = nextComponent;
            ++nextComponent;
        }
    }
    return component;
}

}  // namespace tessera_host
