// Puts dummy nodes on links, within limits.
#pragma once

#include <cstdint>
#include <string>

#include "core/view_model/graph.h"
#include "core/view_model/passes/layout_run.h"

namespace tessera_1::view_model {

// Nothing else may add nodes or links to the graph while this is used.
class DummyMaker {
  public:
    // Both must outlive this.
    DummyMaker(Graph& graph, LayoutRun& run);

    // Splits the link around a dummy in layer `level` of the group. Returns null for both, and changes
    // nothing, when a limit would be exceeded or the run is cancelled. REQUIRES: the link has both ends.
    Graph::NodeAndLink insert(const std::shared_ptr<Link>& link, const std::shared_ptr<Node>& group,
                              std::int32_t level);

    // Which limit has kept the last insert from splitting this link.
    [[nodiscard]] std::string problem(const Link& link) const;

  private:
    [[nodiscard]] bool exceedsLayers() const { return m_newLayers > m_run.limits.maxElements; }
    [[nodiscard]] bool exceedsElements() const;
    [[nodiscard]] bool exceedsIdBytes(const Link& link) const;
    bool isCancelled();
    HierarchicalLevelManager& managerOf(const std::shared_ptr<Node>& group);

    Graph& m_graph;
    LayoutRun& m_run;
    std::size_t m_newLayers = 0;
    std::size_t m_inserts = 0;
    std::size_t m_idBytes = 0;      // of all nodes and links; counted only when there is a limit
    const Node* m_group = nullptr;  // of the last insert
    HierarchicalLevelManager* m_manager = nullptr;  // of that group
};

}  // namespace tessera_1::view_model
