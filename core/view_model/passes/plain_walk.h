// The layer walk of one group, step by step, on numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/view_model/passes/layer_walk.h"

namespace tessera_1::view_model {

// Where every node of a group has been: the walk with its placeholders.
struct WalkedLayers {
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    std::vector<std::uint32_t> arrivals;  // the nodes in the order of their arrivals, layer after layer
    std::vector<std::size_t> starts;      // of each layer in `arrivals`
    std::vector<std::uint32_t> layerOf;   // the last layer of each node; `none` for one that was not reached
    bool isBroken = false;                // it would have gone beyond `lastLayer`: there is a cycle
};

// The walk of Graph::calculateHierarchicalLevelsForGroup over an empty manager. Each sweep reads a layer and
// moves the children of its nodes to the next one. The arrival of a node that has moved on stays as a
// placeholder. Takes a step for each arrival and each link of it, out of `steps`. Nothing when they are
// not enough.
[[nodiscard]] std::optional<WalkedLayers> walkPlainly(const LayerGraph& graph, std::uint32_t lastLayer,
                                                      std::size_t& steps);

}  // namespace tessera_1::view_model
