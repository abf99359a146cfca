// A directed graph, for the search for arcs to reverse.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace tessera_host {

struct Arc {
    std::size_t from;
    std::size_t to;
};

// Arcs between the nodes 0 to nodeCount - 1, by number and by the nodes that they leave and enter. Several
// may join the same two nodes.
class ArcGraph {
  public:
    using Index = std::size_t;

    // REQUIRES: no arc leaves and enters the same node.
    ArcGraph(std::size_t nodeCount, std::vector<Arc> arcs);

    [[nodiscard]] std::size_t nodeCount() const noexcept { return m_leaving.first.size() - 1; }
    [[nodiscard]] std::size_t arcCount() const noexcept { return m_arcs.size(); }
    [[nodiscard]] const Arc& operator[](Index arc) const { return m_arcs[arc]; }
    // In ascending order.
    [[nodiscard]] std::span<const Index> leaving(Index node) const { return m_leaving.of(node); }
    [[nodiscard]] std::span<const Index> entering(Index node) const { return m_entering.of(node); }

  private:
    struct ArcsByNode {
        std::vector<Index> first;
        std::vector<Index> arcs;

        [[nodiscard]] std::span<const Index> of(Index node) const {
            return {arcs.data() + first[node], first[node + 1] - first[node]};
        }
    };

    [[nodiscard]] ArcsByNode sorted(std::size_t nodeCount, Index Arc::*end) const;

    std::vector<Arc> m_arcs;
    ArcsByNode m_leaving;
    ArcsByNode m_entering;
};

}  // namespace tessera_host
