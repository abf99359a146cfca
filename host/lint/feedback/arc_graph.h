// A directed graph, for the search for arcs to reverse.
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

namespace tessera_host {

// Leads from one node to another, which are numbers below ArcGraph::nodeCount().
struct Arc {
    std::size_t from;
    std::size_t to;
};

// Arcs between the nodes 0 to nodeCount - 1, by number and by the nodes that they leave and enter. Several
// may join the same two nodes. Does not change once made, so any thread may use it; spans and references that
// it returns are valid as long as it.
class ArcGraph {
  public:
    using Index = std::size_t;

    // Arcs keep their numbers: arc i is arcs[i]. Linear time. REQUIRES: the nodes of the arcs are below
    // `nodeCount`, and no arc leaves and enters the same node.
    ArcGraph(std::size_t nodeCount, std::vector<Arc> arcs);

    // Constant time, all that follows.
    [[nodiscard]] std::size_t nodeCount() const noexcept { return m_leaving.first.size() - 1; }
    [[nodiscard]] std::size_t arcCount() const noexcept { return m_arcs.size(); }
    [[nodiscard]] const Arc& operator[](Index arc) const { return m_arcs[arc]; }
    // The numbers of the arcs that leave or enter a node, in ascending order.
    [[nodiscard]] std::span<const Index> leaving(Index node) const { return m_leaving.of(node); }
    [[nodiscard]] std::span<const Index> entering(Index node) const { return m_entering.of(node); }

  private:
    // The arcs of node n are arcs[first[n]] to arcs[first[n + 1] - 1].
    struct ArcsByNode {
        std::vector<Index> first;  // one entry more than there are nodes
        std::vector<Index> arcs;   // by node, in ascending order for each

        [[nodiscard]] std::span<const Index> of(Index node) const {
            return {arcs.data() + first[node], first[node + 1] - first[node]};
        }
    };

    // By the node at that end: Arc::from or Arc::to. A counting sort.
    [[nodiscard]] ArcsByNode sorted(std::size_t nodeCount, Index Arc::*end) const;

    std::vector<Arc> m_arcs;
    ArcsByNode m_leaving;
    ArcsByNode m_entering;
};

}  // namespace tessera_host
