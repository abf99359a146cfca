// How groups are nested.
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/view_model/link.h"
#include "core/view_model/node.h"
#include "support/ancestor_index.h"

namespace tessera_1::view_model {

// Does in logarithmic time what Link does in time proportional to the nesting depth. Keeps the groups that it
// has seen: meanwhile nodes may join them, but no group may move to another one.
class Nesting {
  public:
    // Link::getFromToBelongToTheSameGroup. REQUIRES: the link has both ends.
    [[nodiscard]] std::pair<std::shared_ptr<Node>, std::shared_ptr<Node>> liftedToCommonGroup(
        const Link& link);

  private:
    using Number = std::uint32_t;

    Number numberOf(const Node* group);
    // The ancestor of `node` that is a member of the group `common`, or `node` itself.
    [[nodiscard]] std::shared_ptr<Node> memberTowards(Number common, const std::shared_ptr<Node>& node);

    tessera_support::AncestorIndex<Number> m_groups;  // the root is the top level
    std::vector<const Node*> m_nodes{nullptr};        // by number
    std::unordered_map<const Node*, Number> m_numbers{{nullptr, 0}};
};

}  // namespace tessera_1::view_model
