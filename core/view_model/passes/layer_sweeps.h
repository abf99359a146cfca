// Sweeps through the layers of nodes among which there are cycles, which the plain walk would visit too often.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/view_model/passes/layer_walk.h"
#include "platform/relay2/progress.h"

namespace tessera_1::view_model {

// What sweeps know of the nodes of a graph. Sweeps through parts of it that share no node may share this.
struct SweptNodes {
    explicit SweptNodes(std::size_t size) : arrivals(size, 0), ways(size, 0) {}

    std::vector<std::uint64_t> arrivals;  // number of the last arrival in any layer; 0 for none
    std::vector<std::uint32_t> ways;      // the place in the first layer from which the way there started
};

// Each sweep reads the layer and moves the children of its nodes into the next one. There are up to as many
// sweeps as the graph has nodes, so they are kept lean.
class Sweeps {
  public:
    // Begins with the nodes `first` in layer `level`. No more than `size` nodes can be reached from there.
    // Arrivals are numbered from `firstArrival`, which is above those that the nodes have had. What is given
    // by reference must outlive this.
    Sweeps(const LayerGraph& graph, SweptNodes& nodes, const std::vector<std::uint32_t>& first,
           std::int64_t level, std::size_t size, std::uint64_t firstArrival);

    // Sweeps until none of the nodes in `passing` is in the layer, or the layer has the number `lastLayer`.
    // Without `passing`, a cycle below must keep the layers from becoming empty, and a layer that repeats an
    // earlier one ends the sweeps early, with the same result. False when it was cancelled.
    [[nodiscard]] bool run(std::int64_t lastLayer, const std::vector<bool>* passing,
                           const relay2::IProgress* progress);

    [[nodiscard]] std::span<const std::uint32_t> layer() const { return {m_layer.data(), m_size}; }
    [[nodiscard]] std::int64_t level() const noexcept { return m_level; }
    [[nodiscard]] std::uint64_t nextArrival() const noexcept { return m_nextArrival; }
    // Of the node's last arrival in these sweeps; -1 when there was none.
    [[nodiscard]] std::int64_t levelOf(std::uint32_t node) const;
    // The place in the first layer from which the node's way there started.
    [[nodiscard]] std::uint32_t wayOf(std::uint32_t node) const {
        return m_hasManyWays ? m_nodes.ways[node] : 0;
    }

  private:
    using Number = std::uint32_t;
    using Arrival = std::uint64_t;

    struct Start {
        Arrival first;  // of those in the layer
        std::int64_t level;
    };

    void settle();
    template <bool hasManyWays>
    void sweep();
    void remember();
    [[nodiscard]] bool isAsRemembered() const;
    void jump(std::int64_t lastLayer);

    const LayerGraph& m_graph;
    SweptNodes& m_nodes;
    const bool m_hasManyWays;
    std::int64_t m_level;
    std::vector<Number> m_layer;  // the present one is its first m_size nodes; it has space for one too many
    std::vector<Number> m_next;
    std::size_t m_size;
    Arrival m_nextArrival;
    std::vector<Start> m_starts;  // of the layers that were swept into, in that order
    std::vector<Number> m_seen;
    std::vector<Number> m_seenWays;
    std::int64_t m_sinceSeen = 0;
    std::int64_t m_interval = 1;
    bool m_hasJumped = false;
};

}  // namespace tessera_1::view_model
