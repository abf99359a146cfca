// How groups are nested, for questions about two nodes at any depth.
#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <utility>

#include "core/view_model/link.h"
#include "core/view_model/node.h"

namespace tessera_1::view_model {

// Answers in logarithmic time what Link answers in time proportional to the depth. Remembers the groups that
// it comes across: nodes may be added to them meanwhile, groups may not move.
class Nesting {
  public:
    Nesting();

    // Link::getFromToBelongToTheSameGroup. REQUIRES: both ends are there.
    [[nodiscard]] std::pair<std::shared_ptr<Node>, std::shared_ptr<Node>> sideBySide(const Link& link);

  private:
    struct Entry {
        std::size_t depth;  // 0 is the top level, which is the null group
        const Node* jump;   // a group further out; jumps and single steps reach any in few moves
    };

    const Entry& entryOf(const Node* group);
    void add(const Node* group);
    [[nodiscard]] const Node* lift(const Node* group, std::size_t depth) const;
    [[nodiscard]] const Node* innermostCommon(const Node* a, const Node* b);
    // The node that contains `node`, or is it, and stands in `group`. REQUIRES: there is one.
    [[nodiscard]] std::shared_ptr<Node> childTowards(const Node* group,
                                                     const std::shared_ptr<Node>& node) const;

    std::unordered_map<const Node*, Entry> m_entries;
};

}  // namespace tessera_1::view_model
