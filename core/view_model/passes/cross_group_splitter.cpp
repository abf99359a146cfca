#include "core/view_model/passes/cross_group_splitter.h"

#include <utility>

namespace tessera_1::view_model {

using NodePtr = std::shared_ptr<Node>;
using LinkPtr = std::shared_ptr<Link>;

bool CrossGroupSplitter::run() {
    if (!m_end) m_end = m_graph.m_linkList.size();
    while (true) {
        if (m_up && !climbUp(*m_up)) return false;
        m_up.reset();
        if (m_down && !climbDown(*m_down)) return false;
        m_down.reset();
        if (m_next == *m_end) return true;
        m_link = m_graph.m_linkList[m_next++];
        begin();
    }
}

// Prepares the climbs of the link at hand, if it is one between groups.
void CrossGroupSplitter::begin() {
    if (!m_link->m_from || !m_link->m_to || m_link->m_from->m_group == m_link->m_to->m_group) return;
    const LinkPtr& dummy = m_link->m_dummyLink;
    if (!dummy || !dummy->m_from || !dummy->m_to) return;
    if (!m_marks) markGroups();
    m_up = climbOf(m_link, m_link->m_to, dummy->m_to->m_group);
    m_down = climbOf(m_link, m_link->m_from, dummy->m_from->m_group);
}

void CrossGroupSplitter::markGroups() {
    m_marks = std::make_unique<Marks>(m_graph);
    for (const Node* group : m_marks->up.groups()) {
        const std::int32_t level = group->getHierarchicalLevel();
        if (level > 0) m_marks->up.mark(group);
        if (level != lastLevel(group->m_group))
            m_marks->down.mark(group);
        else
            m_marks->inLastLayer[group->m_group.get()].push_back(group);
    }
}

// Up to layer 0 of each group around the to end. False when an insertion failed.
bool CrossGroupSplitter::climbUp(Climb& climb) {
    while (climb.group != climb.stop) {
        while (climb.level > 0)
            if (!insert(climb, climb.node->getHierarchicalLevel() - 1)) return false;
        if (!leaveGroup(climb, m_marks->up)) break;
    }
    return true;
}

// Down to the last layer of each group around the from end.
bool CrossGroupSplitter::climbDown(Climb& climb) {
    while (climb.group != climb.stop) {
        while (climb.level != lastLevel(climb.group))
            if (!insert(climb, climb.node->getHierarchicalLevel() + 1)) return false;
        if (!leaveGroup(climb, m_marks->down)) break;
    }
    return true;
}

bool CrossGroupSplitter::insert(Climb& climb, std::int32_t level) {
    const std::int32_t last = lastLevel(climb.group);
    auto [node, half] = m_dummies.insert(climb.link, climb.group, level);
    if (!node) return false;
    climb.node = std::move(node);
    climb.link = std::move(half);
    climb.level = climb.node->getHierarchicalLevel();
    if (lastLevel(climb.group) == last) return true;
    for (const Node* group : std::exchange(m_marks->inLastLayer[climb.group.get()], {}))
        m_marks->down.mark(group);
    return true;
}

// Leaves the groups up to the innermost marked one, and that one too. False when the climb ends before it.
bool CrossGroupSplitter::leaveGroup(Climb& climb, const MarkedGroups& marked) {
    const Node* left = marked.innermostMarked(climb.group.get());
    if (!left) return false;
    const bool isInsideStop = marked.contains(climb.stop.get(), climb.group.get());
    if (isInsideStop && !marked.contains(climb.stop.get(), left->m_group.get())) return false;
    climb.level = left->getHierarchicalLevel();
    climb.group = left->m_group;
    return true;
}

CrossGroupSplitter::Climb CrossGroupSplitter::climbOf(const LinkPtr& link, const NodePtr& end,
                                                      const NodePtr& stop) {
    return {link, end, end->m_group, stop, end->getHierarchicalLevel()};
}

std::int32_t CrossGroupSplitter::lastLevel(const NodePtr& group) const {
    const auto manager = m_graph.m_levelManagers.find(group);
    if (manager == m_graph.m_levelManagers.end()) return -1;
    return static_cast<std::int32_t>(manager->second.m_levels.size()) - 1;
}

}  // namespace tessera_1::view_model
