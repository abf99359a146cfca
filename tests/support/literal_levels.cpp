// The passes about levels and dummies.
#include <algorithm>

#include "tests/support/literal_layout.h"

namespace tessera_test::literal {
namespace {

bool isMember(const Graph& graph, const NodePtr& node, const NodePtr& group) {
    return graph.findNode(node->m_id) == node && node->m_group == group;
}

void createDummyLink(Graph& graph, const NodePtr& from, const NodePtr& to, const LinkPtr& link) {
    const std::string base = from->m_id + "_" + to->m_id + "_dummy";
    std::string id = base;
    int counter = 0;
    while (graph.m_links.contains(id)) {
        counter = counter + 1;
        id = base + std::to_string(counter);
    }
    const auto dummy = std::make_shared<Link>();
    dummy->m_id = id;
    dummy->m_type = "dummy";
    graph.addLink(dummy);
    dummy->m_to = to;
    dummy->m_from = from;
    dummy->m_realLink = link;
    link->m_dummyLink = dummy;
}

void setRoots(Graph& graph, const NodePtr& group, HierarchicalLevelManager& manager, Record& record) {
    for (const auto& [id, node] : graph.m_nodes)
        if (isMember(graph, node, group)) node->m_hierarchicalLevel = -1;
    for (const auto& [id, node] : graph.m_nodes) {
        if (!isMember(graph, node, group)) continue;
        bool hasParent = false;
        for (const NodePtr& parent : node->m_parents)
            if (isMember(graph, parent, group)) hasParent = true;
        if (!hasParent) setLevel(manager, node, 0, false, record);
    }
}

Code walk(Graph& graph, const NodePtr& group, HierarchicalLevelManager& manager, Record& record) {
    std::size_t level = 0;  // of the layer that is read
    std::size_t next = 0;
    while (true) {
        const std::size_t start = next;
        if (level >= manager.m_levels.size()) return Code::success;
        const auto layer = manager.m_levels[level];
        const std::size_t size = layer->size();
        for (std::size_t i = 0; i < size; ++i) {
            const NodePtr node = (*layer)[i];
            if (node == nullptr) continue;
            for (const NodePtr& child : node->m_children) {
                if (!isMember(graph, child, group)) continue;
                next = start + 1;
                level = start + 1;
                if (level > graph.m_nodes.size()) {
                    record.failed.emplace_back("nextLevel <= m_nodes.size()");
                    return Code::rangeError;
                }
                if (setLevel(manager, child, static_cast<int>(next), true, record) == Code::rangeError) {
                    record.failed.emplace_back("err.succeeded()");
                    return Code::falseCode;
                }
            }
        }
        if (next == start) return Code::success;
    }
}

Code calculateHierarchicalLevelsForGroup(Graph& graph, const NodePtr& group, Record& record) {
    HierarchicalLevelManager& manager = graph.m_levelManagers[group];
    setRoots(graph, group, manager, record);
    const Code code = walk(graph, group, manager, record);
    if (code != Code::success) return code;
    for (const auto& layer : manager.m_levels) {
        const auto entry = std::find(layer->begin(), layer->end(), nullptr);
        if (entry != layer->end()) layer->erase(entry);
    }
    return Code::success;
}

int lastLevel(Graph& graph, const NodePtr& group) {
    return static_cast<int>(graph.m_levelManagers[group].m_levels.size()) - 1;
}

// A dummy on the link, in the group, at the level.
std::pair<NodePtr, LinkPtr> makeDummy(Graph& graph, const LinkPtr& link, const NodePtr& group, int level,
                                      Record& record) {
    const auto made = insertDummyNode(graph, link, record);
    if (made.first != nullptr) {
        addToGroup(made.first, group, record);
        setLevel(graph.m_levelManagers[group], made.first, level, false, record);
    }
    return made;
}

void climbFromTheToSide(Graph& graph, const LinkPtr& link, Record& record) {
    const NodePtr stop = link->m_dummyLink->m_to->m_group;
    NodePtr g = link->m_to->m_group;
    NodePtr cur = link->m_to;
    int lvl = cur->m_hierarchicalLevel;
    LinkPtr split = link;
    while (g != stop) {
        while (lvl > 0) {
            const auto [node, newLink] = makeDummy(graph, split, g, cur->m_hierarchicalLevel - 1, record);
            cur = node;
            split = newLink;
            lvl = cur->m_hierarchicalLevel;
        }
        if (g == nullptr) break;
        lvl = g->m_hierarchicalLevel;
        g = g->m_group;
    }
}

void climbFromTheFromSide(Graph& graph, const LinkPtr& link, Record& record) {
    const NodePtr stop = link->m_dummyLink->m_from->m_group;
    NodePtr g = link->m_from->m_group;
    NodePtr cur = link->m_from;
    int lvl = cur->m_hierarchicalLevel;
    LinkPtr split = link;
    while (g != stop) {
        while (lvl != lastLevel(graph, g)) {
            const auto [node, newLink] = makeDummy(graph, split, g, cur->m_hierarchicalLevel + 1, record);
            cur = node;
            split = newLink;
            lvl = cur->m_hierarchicalLevel;
        }
        if (g == nullptr) break;
        lvl = g->m_hierarchicalLevel;
        g = g->m_group;
    }
}

Code addDummyNodesForLabelsOnCrosslevelLinks(Graph& graph, Record& record) {
    const std::vector<LinkPtr> links = graph.m_linkList;
    for (const LinkPtr& link : links) {
        if (!isWhole(*link) || link->m_from->m_group == link->m_to->m_group) continue;
        if (link->m_dummyLink == nullptr) continue;
        climbFromTheToSide(graph, link, record);
        climbFromTheFromSide(graph, link, record);
    }
    return Code::success;
}

}  // namespace

void createDummyLinksForGroups(Graph& graph) {
    const std::vector<LinkPtr> links = graph.m_linkList;
    for (const LinkPtr& link : links) {
        if (!isWhole(*link) || link->m_from->m_group == link->m_to->m_group) continue;
        const auto [a, b] = getFromToBelongToTheSameGroup(*link);
        createDummyLink(graph, a, b, link);
    }
}

Code calculateHierarchicalLevels(Graph& graph, Record& record) {
    setChildrenAndParents(graph);
    collectGroups(graph);
    for (const NodePtr& group : graph.m_groups) {
        if (calculateHierarchicalLevelsForGroup(graph, group, record) != Code::rangeError) continue;
        record.failed.emplace_back("err.succeeded()");
        return Code::falseCode;
    }
    return Code::success;
}

Code addDummyNodesForLabels(Graph& graph, Record& record) {
    const std::vector<LinkPtr> links = graph.m_linkList;
    for (const NodePtr& group : graph.m_groups) {
        for (const LinkPtr& link : links) {
            if (!isWhole(*link) || link->m_to->m_group != group || link->m_from->m_group != group) continue;
            int gap = link->m_to->m_hierarchicalLevel - link->m_from->m_hierarchicalLevel - 1;
            while (gap > 0) {
                const LinkPtr split = link->m_type == "dummy" ? link->m_realLink : link;
                makeDummy(graph, split, group, link->m_to->m_hierarchicalLevel - 1, record);
                gap = gap - 1;
            }
        }
    }
    return addDummyNodesForLabelsOnCrosslevelLinks(graph, record);
}

Code addDummyNodesForInterfaces(Graph& graph, Record& record) {
    for (const NodePtr& group : graph.m_groups) {
        if (group == nullptr) continue;
        const int maxLevel = lastLevel(graph, group);
        if (maxLevel < 0) {
            record.failed.emplace_back("maxLevel >= 0");
            return Code::falseCode;
        }
        for (const NodePtr& node : group->m_groupChildren) {
            if (node->m_displayType != "interface" || node->m_hierarchicalLevel == maxLevel) continue;
            record.failed.emplace_back("node->getHierarchicalLevel() == maxLevel");
            return Code::falseCode;
        }
    }
    return Code::success;
}

}  // namespace tessera_test::literal
