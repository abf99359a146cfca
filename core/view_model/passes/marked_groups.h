// Which of the groups around a node need a visit; a climb out of them skips all others.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "core/view_model/graph.h"

namespace tessera_1::view_model {

// Groups are null for the top level, which contains all. Knows the groups that a graph's nodes were in when
// it was made. Every operation takes logarithmic time.
class MarkedGroups {
  public:
    explicit MarkedGroups(const Graph& graph);

    // All groups but the top level; those outside before those inside.
    [[nodiscard]] const std::vector<const Node*>& groups() const noexcept { return m_groups; }

    void mark(const Node* group);
    // The innermost marked one among the group and those that contain it; null when there is none.
    [[nodiscard]] const Node* innermostMarked(const Node* group) const;
    // Whether `inner` is `outer` or somewhere inside it.
    [[nodiscard]] bool contains(const Node* outer, const Node* inner) const;

  private:
    using Number = std::uint32_t;

    // In the order of a walk through the nesting, a group and all inside it are a range of numbers. The top
    // level has number 0, m_groups[i] has i + 1.
    std::vector<const Node*> m_groups;
    std::unordered_map<const Node*, Number> m_numbers;
    std::vector<Number> m_ends;  // of each range
    // A segment tree: the greatest marked number whose range covers the segment.
    std::vector<Number> m_ranges;
};

}  // namespace tessera_1::view_model
