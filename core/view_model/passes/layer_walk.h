// Index-based layering of one group; used when the plain walk would exceed its budget.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/relay2/progress.h"

namespace tessera_1::view_model {

// What a walk starts from. Nodes are counted from 0.
struct LayerGraph {
    std::vector<std::uint32_t>
        childrenStart;                    // of each node in `children`; one entry more than there are nodes
    std::vector<std::uint32_t> children;  // of all nodes, in order
    std::vector<std::uint32_t> roots;     // in order
};

[[nodiscard]] inline std::span<const std::uint32_t> childrenOf(const LayerGraph& graph, std::uint32_t node) {
    const auto* begin = graph.children.data();
    return {begin + graph.childrenStart[node], begin + graph.childrenStart[node + 1]};
}

struct Layers {
    std::vector<std::vector<std::uint32_t>> nodes;  // of each layer, in the order of their last arrival
    bool isBroken = false;     // the walk would have gone beyond the last layer allowed: there is a cycle
    bool isCancelled = false;  // the layers are not whole
};

// The walk of Graph::calculateHierarchicalLevelsForGroup without its placeholders: each sweep reads a layer
// and moves the children of its nodes into the next one; layer `lastLayer` is the deepest. Linear time when no
// cycle can be reached. With one it takes a step for each node of each sweep, until a layer repeats an earlier
// one: from there the rest is known. Polls `progress`, which may be null, every few milliseconds.
[[nodiscard]] Layers walkLayers(const LayerGraph& graph, std::uint32_t lastLayer,
                                const relay2::IProgress* progress = nullptr);

}  // namespace tessera_1::view_model
