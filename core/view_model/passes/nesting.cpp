#include "core/view_model/passes/nesting.h"

namespace tessera_1::view_model {

Nesting::Number Nesting::numberOf(const Node* group) {
    std::vector<const Node*> unknown;
    auto known = m_numbers.find(group);
    for (; known == m_numbers.end(); known = m_numbers.find(group)) {
        unknown.push_back(group);
        group = group->m_group.get();
    }
    Number number = known->second;
    for (; !unknown.empty(); unknown.pop_back()) {
        number = m_groups.append(number);
        m_nodes.push_back(unknown.back());
        m_numbers.emplace(unknown.back(), number);
    }
    return number;
}

std::shared_ptr<Node> Nesting::memberTowards(Number common, const std::shared_ptr<Node>& node) {
    const Number group = numberOf(node->m_group.get());
    if (group == common) return node;
    const Node* member = m_nodes[m_groups.ancestorAtDepth(group, m_groups.depth(common) + 1)];
    return std::const_pointer_cast<Node>(member->shared_from_this());
}

std::pair<std::shared_ptr<Node>, std::shared_ptr<Node>> Nesting::liftedToCommonGroup(const Link& link) {
    if (link.m_from->m_group == link.m_to->m_group) return {link.m_from, link.m_to};
    const Number from = numberOf(link.m_from->m_group.get());
    const Number to = numberOf(link.m_to->m_group.get());
    const Number common = m_groups.lowestCommonAncestor(from, to);
    return {memberTowards(common, link.m_from), memberTowards(common, link.m_to)};
}

}  // namespace tessera_1::view_model
