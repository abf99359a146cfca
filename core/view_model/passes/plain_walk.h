// The layer walk of one group, step by step, on numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/view_model/passes/layer_walk.h"
#include "platform/relay2/progress.h"

namespace tessera_1::view_model {

// What the plain walks of a graph may take: so much for each member and each link of the group at hand, and some
// more that all groups share. Two things need much of it: a cycle, and many paths of different lengths to the
// same nodes. A node leaves a placeholder of 16 bytes in each layer that it passes through.
struct WalkBudget {
    std::size_t perElement = 16;
    std::size_t foreseenSteps = 256'000'000;  // taken when they are known to be enough; under a second
    std::size_t steps = 8'000'000;            // taken when it is not known whether they are enough
    std::size_t placeholders = 16'000'000;    // 256 MB
};

// Where every node of a group has been: the walk with its placeholders.
struct WalkedLayers {
    enum class End : std::uint8_t {
        reached,     // the last layer has no links to members
        cycle,       // the walk would have gone beyond `lastLayer`
        overBudget,  // the layers are not whole, as in the next case
        cancelled,
    };
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    std::vector<std::uint32_t> arrivals;  // the nodes in the order of their arrivals, layer after layer
    std::vector<std::size_t> starts;      // of each layer in `arrivals`
    std::vector<std::uint32_t> layerOf;   // the last layer of each node; `none` for one that was not reached
    End end = End::reached;
};

// The walk of Graph::calculateHierarchicalLevelsForGroup over an empty manager. Each sweep reads a layer and
// moves the children of its nodes to the next one. The arrival of a node that has moved on stays as a
// placeholder. Takes a step for each node that is read and each of its links, out of `budget`. When it ends over
// the budget, it has taken no more than `budget.steps` and twice those of the group's own elements.
// Polls `progress`, which may be null, every few milliseconds.
[[nodiscard]] WalkedLayers walkPlainly(const LayerGraph& graph, std::uint32_t lastLayer, WalkBudget& budget,
                                       const relay2::IProgress* progress = nullptr);

}  // namespace tessera_1::view_model
