// Links inside one group that skip layers.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

#include "core/view_model/passes/dummy_maker.h"

namespace tessera_1::view_model {

// Visits, for each group in order, the links with both ends in that group at that moment, in the order of the
// list. A dummy link is not split itself: its real link is, which may so become a link inside the group and
// be visited as well, if it comes later in the list.
class InnerSplitter {
  public:
    // Both must outlive this.
    InnerSplitter(Graph& graph, DummyMaker& dummies) : m_graph(graph), m_dummies(dummies) {}

    // False when an insertion failed; the next call continues there.
    bool run();

    // What was to be split last.
    [[nodiscard]] const std::shared_ptr<Link>& link() const { return m_split; }

  private:
    using Position = std::uint32_t;
    using Positions = std::vector<Position>;
    static constexpr Position none = 0xFFFFFFFF;

    void findLinks();
    bool visitGroup();
    [[nodiscard]] bool begin(Position position);
    [[nodiscard]] Position takeNext();
    void visitLaterIfNeeded();
    [[nodiscard]] static bool isInside(const Link& link, const Node* group);

    Graph& m_graph;
    DummyMaker& m_dummies;
    bool m_isPrepared = false;
    std::unordered_map<const Node*, Positions> m_links;     // by group, those that may need dummies
    std::unordered_map<const Link*, Position> m_realLinks;  // of dummy links; `none` for one not listed
    std::size_t m_group = 0;                                // place in the graph's m_groups
    std::size_t m_next = 0;                                 // in the group's positions
    std::set<Position> m_late;                              // real links to visit in this group
    Position m_position = none;                             // of the link at hand
    std::shared_ptr<Link> m_link;
    std::shared_ptr<Link> m_split;  // the link at hand or its real link
    std::int32_t m_gap = 0;         // how many dummies it is still to get
};

}  // namespace tessera_1::view_model
