// How deep every node is nested; the dump copies it to the nodes.
//
// Needs:  the nodes that the other passes make.
// Leaves: the group level manager holds the nesting depth of every node by id: 0 at top level.
// Order:  the last of the passes.
// Fails:  never.
#include <algorithm>
#include <vector>

#include "core/check.h"
#include "core/view_model/graph.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

namespace {

// Enters nodes into a manager by number, which spares hashing their ids. While this exists, the group level of a
// numbered node is its number.
class NumberedNodes {
  public:
    NumberedNodes(const IdMap<Node>& nodes, GroupLevels& levels) : m_levels(levels) {
        m_nodes.reserve(nodes.size());
        m_groupLevels.reserve(nodes.size());
        for (const auto& [id, node] : nodes.unordered()) {
            if (!node) continue;
            m_groupLevels.push_back(node->m_groupLevel);
            node->m_groupLevel = static_cast<std::int32_t>(m_nodes.size());
            m_nodes.push_back(node.get());
            m_levels.append(id, 0);
        }
    }
    NumberedNodes(const NumberedNodes&) = delete;
    NumberedNodes& operator=(const NumberedNodes&) = delete;
    ~NumberedNodes() {
        for (std::size_t i = 0; i < m_nodes.size(); ++i)
            m_nodes[i]->m_groupLevel = m_groupLevels[i];
    }

    void setLevel(const Node& node, std::int32_t level) {
        const auto number = static_cast<std::size_t>(node.m_groupLevel);
        if (number < m_nodes.size() && m_nodes[number] == &node)
            m_levels.setAt(number, level);
        else
            m_levels.set(node.m_id, level);  // another node of that id has the entry
    }

    // Node::setGroupChildLevelGroup. REQUIRES: the group has a number.
    void setLevelsInside(const Node& topGroup) {
        struct Visit {
            const Node* group;
            std::size_t next;  // member
        };
        std::vector<Visit> path{{&topGroup, 0}};
        // Another node of its id may have been visited before, and then it is not 0.
        const std::int32_t ownLevel = m_levels.entry(static_cast<std::size_t>(topGroup.m_groupLevel)).second;
        while (!path.empty()) {
            Visit& visit = path.back();
            if (visit.next == visit.group->m_groupChildren.size()) {
                path.pop_back();
                continue;
            }
            const Node& member = *visit.group->m_groupChildren[visit.next++];
            setLevel(member, ownLevel + static_cast<std::int32_t>(path.size()));
            if (member.isGroup()) path.push_back({&member, 0});
        }
    }

  private:
    GroupLevels& m_levels;
    std::vector<Node*> m_nodes;
    std::vector<std::int32_t> m_groupLevels;  // as they were
};

// Those at top level, by ascending id.
std::vector<const IdMap<Node>::value_type*> topGroups(const IdMap<Node>& nodes) {
    std::vector<const IdMap<Node>::value_type*> groups;
    for (const auto& entry : nodes.unordered())
        if (entry.second && entry.second->isGroup() && !entry.second->m_group) groups.push_back(&entry);
    std::sort(groups.begin(), groups.end(), [](const auto* a, const auto* b) { return a->first < b->first; });
    return groups;
}

}  // namespace

error_code_t Graph::setGroupLevels() {
    GroupLevels& levels = m_groupLevelManager.m_groupLevels;
    levels.clear();
    const auto& nodes = m_nodes.unordered();
    const auto hasOwnId = [](const auto& entry) {
        return !entry.second || entry.second->m_id == entry.first;
    };
    if (std::all_of(nodes.begin(), nodes.end(), hasOwnId)) {
        std::size_t idBytes = 0;
        for (const auto& [id, node] : nodes)
            idBytes += id.size();
        levels.reserve(m_nodes.size(), idBytes);
        NumberedNodes numbered(m_nodes, levels);
        for (const auto* group : topGroups(m_nodes))
            numbered.setLevelsInside(*group->second);
        return {};
    }
    for (const auto& [id, node] : m_nodes)
        if (node) m_groupLevelManager.setGroupLevel(node->m_id, 0);
    for (const auto* group : topGroups(m_nodes)) {
        const error_code_t err = group->second->setGroupChildLevelGroup(m_groupLevelManager);
        TESSERA_CHECK(err.succeeded(), error_code_t::false_code());
    }
    return {};
}

}  // namespace tessera_1::view_model
