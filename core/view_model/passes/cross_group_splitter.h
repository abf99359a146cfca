// Links between groups, which climb out of the groups of their ends.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/view_model/passes/dummy_maker.h"
#include "core/view_model/passes/marked_groups.h"

namespace tessera_1::view_model {

// Visits the links between groups in the order of the list, and puts dummies into each group that a climb
// leaves. Groups that need no dummy are skipped, so that a climb costs time for the groups that do.
class CrossGroupSplitter {
  public:
    // Both must outlive this.
    CrossGroupSplitter(Graph& graph, DummyMaker& dummies) : m_graph(graph), m_dummies(dummies) {}

    // False when an insertion failed; the next call continues there.
    bool run();

    // What was to be split last.
    [[nodiscard]] const std::shared_ptr<Link>& link() const { return m_link; }

  private:
    // How far a climb has come.
    struct Climb {
        std::shared_ptr<Link> link;   // to be split next
        std::shared_ptr<Node> node;   // the end, later the last dummy, in whatever group
        std::shared_ptr<Node> group;  // that the climb is in
        std::shared_ptr<Node> stop;   // the group that it does not leave
        std::int32_t level;           // of `node`, later that of the group left, in `group`
    };

    // Which groups a climb has to visit.
    struct Marks {
        explicit Marks(const Graph& graph) : up(graph), down(graph) {}

        MarkedGroups up;    // those that are not in layer 0 of the group around them
        MarkedGroups down;  // at least those that are not in its last layer
        std::unordered_map<const Node*, std::vector<const Node*>> inLastLayer;  // those not in `down`
    };

    void begin();
    void markGroups();
    bool climbUp(Climb& climb);
    bool climbDown(Climb& climb);
    bool insert(Climb& climb, std::int32_t level);
    static bool leaveGroup(Climb& climb, const MarkedGroups& marked);
    [[nodiscard]] static Climb climbOf(const std::shared_ptr<Link>& link, const std::shared_ptr<Node>& end,
                                       const std::shared_ptr<Node>& stop);
    [[nodiscard]] std::int32_t lastLevel(const std::shared_ptr<Node>& group) const;

    Graph& m_graph;
    DummyMaker& m_dummies;
    std::unique_ptr<Marks> m_marks;    // null until the first link between groups is visited
    std::optional<std::size_t> m_end;  // how many links there were when the first was visited
    std::size_t m_next = 0;            // the next link to visit
    std::shared_ptr<Link> m_link;      // the link at hand
    std::optional<Climb> m_up;
    std::optional<Climb> m_down;  // follows when there is no climb up
};

}  // namespace tessera_1::view_model
