// What the passes share: levels, groups, children and parents, and a link split in two.
#include <algorithm>

#include "tests/support/literal_layout.h"

namespace tessera_test::literal {
namespace {

void addChildParent(const NodePtr& child, const NodePtr& parent) {
    auto& children = parent->m_children;
    if (std::find(children.begin(), children.end(), child) == children.end()) children.push_back(child);
    auto& parents = child->m_parents;
    if (std::find(parents.begin(), parents.end(), parent) == parents.end()) parents.push_back(parent);
}

bool showsNothing(const DataTransferTable& table, const std::string& mode) {
    const auto entry = table.find(mode);
    if (entry == table.end() || entry->second == nullptr) return true;
    for (const auto& row : entry->second->m_rowSet.rows)
        if (!row.m_value.empty()) return false;
    return true;
}

}  // namespace

Code setLevel(HierarchicalLevelManager& manager, const NodePtr& node, int level, bool keepPlaceholder,
              Record& record) {
    if (level < 0) {
        record.failed.emplace_back("level >= 0");
        return Code::rangeError;
    }
    const int oldLevel = node->m_hierarchicalLevel;
    if (level == oldLevel) return Code::success;
    if (oldLevel >= 0) {
        if (level <= oldLevel) {
            record.failed.emplace_back("level > oldLevel");
            return Code::rangeError;
        }
        if (static_cast<int>(manager.m_levels.size()) <= oldLevel) {
            record.failed.emplace_back("m_levels.size() > oldLevel");
            return Code::rangeError;
        }
        auto& layer = *manager.m_levels[static_cast<std::size_t>(oldLevel)];
        const auto entry = std::find(layer.begin(), layer.end(), node);
        if (entry == layer.end()) {
            record.failed.emplace_back("oldLevel == -1");
            return Code::falseCode;
        }
        if (keepPlaceholder)
            *entry = nullptr;
        else
            layer.erase(entry);
    }
    while (static_cast<int>(manager.m_levels.size()) <= level)
        manager.m_levels.push_back(std::make_shared<HierarchicalLevelManager::Level>());
    manager.m_levels[static_cast<std::size_t>(level)]->push_back(node);
    node->m_hierarchicalLevel = level;
    return Code::success;
}

Code addToGroup(const NodePtr& node, const NodePtr& group, Record& record) {
    if (group == nullptr) return Code::success;
    if (group->m_groupChildren.empty()) {
        record.failed.emplace_back("group->isGroup()");
        return Code::falseCode;
    }
    group->m_groupChildren.push_back(node);
    node->m_group = group;
    return Code::success;
}

void setChildrenAndParents(Graph& graph) {
    for (const auto& [id, node] : graph.m_nodes) {
        node->m_parents.clear();
        node->m_children.clear();
    }
    for (const LinkPtr& link : graph.m_linkList)
        if (isWhole(*link)) addChildParent(link->m_to, link->m_from);
}

void collectGroups(Graph& graph) {
    auto& groups = graph.m_groups;
    groups.clear();
    for (const NodePtr& node : graph.m_nodeList)
        if (std::find(groups.begin(), groups.end(), node->m_group) == groups.end())
            groups.push_back(node->m_group);
}

std::pair<NodePtr, NodePtr> getFromToBelongToTheSameGroup(const Link& link) {
    NodePtr f = link.m_from;
    NodePtr t = link.m_to;
    if (t->m_group == f->m_group) return {f, t};
    while (true) {
        f = link.m_from;
        while (f->m_group != nullptr) {
            if (t->m_group == f->m_group) return {f, t};
            f = f->m_group;
        }
        if (t->m_group != nullptr) t = t->m_group;
        if (t->m_group == nullptr) return {f, t};
    }
}

std::pair<NodePtr, LinkPtr> insertNode(Graph& graph, const LinkPtr& link, DataTransferTable transfers,
                                       const std::string& type, Record& record) {
    if (!isWhole(*link)) return {};
    if (type != "dummy" && showsNothing(transfers, graph.m_displayMode)) return {};
    const std::string nodeId = link->m_to->m_id + "_" + link->m_from->m_id + "_" + type;
    if (graph.m_nodeList.size() >= record.maxNodes || nodeId.size() > record.maxIdBytes) throw TooLarge();

    const auto node = std::make_shared<Node>();
    node->m_id = nodeId;
    node->m_type = type;
    if (type != "dummy") node->m_dataTransfers = transfers;
    graph.addNode(node);

    const auto newLink = std::make_shared<Link>();
    newLink->m_id = nodeId + "_" + link->m_from->m_id;
    graph.addLink(newLink);

    newLink->m_to = link->m_to;
    newLink->m_from = node;
    link->m_to = node;
    newLink->m_dummyLink = link->m_dummyLink;

    if (link->m_direction == "forward") {
        newLink->m_direction = "forward";
        link->m_direction = "none";
    } else if (link->m_direction == "both") {
        newLink->m_direction = "forward";
        link->m_direction = "back";
    }
    return {node, newLink};
}

std::pair<NodePtr, LinkPtr> insertDummyNode(Graph& graph, const LinkPtr& link, Record& record) {
    return insertNode(graph, link, {}, "dummy", record);
}

// The passes that need to know what a table shows.

Code setLinkInfoAsNodes(Graph& graph, Record& record) {
    const auto label = [&](const LinkPtr& link, DataTransferTable& table, const NodePtr& group,
                           const std::string& location) {
        const NodePtr node = insertNode(graph, link, table, "label", record).first;
        if (node == nullptr) return false;
        table.clear();
        addToGroup(node, group, record);
        node->m_location = location;
        if (location == "to" || location == "from") node->m_aligning = location;
        return true;
    };
    const auto filler = [&](const LinkPtr& link, const NodePtr& group) {
        addToGroup(insertDummyNode(graph, link, record).first, group, record);
    };
    const std::vector<LinkPtr> links = graph.m_linkList;
    for (const LinkPtr& link : links) {
        if (!isWhole(*link)) continue;
        NodePtr group = link->m_from->m_group;
        if (link->m_to->m_group != group) group = getFromToBelongToTheSameGroup(*link).first->m_group;
        const std::string& mode = graph.m_displayMode;
        LinkDisplayInfo& info = link->m_displayInfo;
        const bool fromIsEmpty = showsNothing(info.m_fromInfo, mode);
        if (fromIsEmpty && showsNothing(info.m_toInfo, mode) && showsNothing(info.m_totalInfo, mode))
            continue;
        const bool hasToLabel = label(link, info.m_toInfo, group, "to");
        if (!hasToLabel && !fromIsEmpty) filler(link, group);
        label(link, info.m_totalInfo, group, "center");
        const bool hasFromLabel = label(link, info.m_fromInfo, group, "from");
        if (!hasFromLabel && hasToLabel) filler(link, group);
    }
    return Code::success;
}

Code setGroupInfoAsNodes(Graph& graph, Record& record) {
    const std::vector<NodePtr> nodes = graph.m_nodeList;
    for (const NodePtr& group : nodes) {
        if (group->m_groupChildren.empty() || group->m_info == nullptr) continue;
        bool isEmpty = true;
        for (const auto& row : group->m_info->m_rowSet.rows)
            if (!row.m_value.empty()) isEmpty = false;
        if (isEmpty) continue;
        const auto node = std::make_shared<Node>();
        node->m_id = group->m_id + "_info";
        node->m_info = group->m_info;
        node->m_type = "groupInfo";
        group->m_info = nullptr;
        graph.addNode(node);
        addToGroup(node, group, record);
    }
    return Code::success;
}

}  // namespace tessera_test::literal
