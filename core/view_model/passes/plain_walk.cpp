#include "core/view_model/passes/plain_walk.h"

namespace tessera_1::view_model {

std::optional<WalkedLayers> walkPlainly(const LayerGraph& graph, std::uint32_t lastLayer,
                                        std::size_t& steps) {
    WalkedLayers walked;
    if (graph.roots.empty()) return walked;
    walked.layerOf.assign(graph.childrenStart.size() - 1, WalkedLayers::none);
    walked.arrivals = graph.roots;
    for (const std::uint32_t root : graph.roots)
        walked.layerOf[root] = 0;
    walked.starts.push_back(0);
    for (std::uint32_t layer = 0; walked.starts.size() == layer + 1; ++layer) {
        const std::size_t end = walked.arrivals.size();
        for (std::size_t i = walked.starts.back(); i < end; ++i) {
            const std::uint32_t node = walked.arrivals[i];
            if (walked.layerOf[node] != layer) continue;  // it has just moved on
            const auto children = childrenOf(graph, node);
            if (steps < 1 + children.size()) return std::nullopt;
            steps -= 1 + children.size();
            if (!children.empty() && walked.starts.size() == layer + 1) {
                walked.isBroken = layer + 1 > lastLayer;
                if (walked.isBroken) return walked;
                walked.starts.push_back(end);
            }
            for (const std::uint32_t child : children) {
                if (walked.layerOf[child] == layer + 1) continue;
                walked.layerOf[child] = layer + 1;
                walked.arrivals.push_back(child);
            }
        }
    }
    return walked;
}

}  // namespace tessera_1::view_model
