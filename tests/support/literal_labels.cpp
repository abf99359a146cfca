// The passes that move and align labels, and the nesting depths.
#include <algorithm>

#include "tests/support/literal_layout.h"

namespace tessera_test::literal {
namespace {

bool isAmong(const std::vector<NodePtr>& nodes, const NodePtr& node) {
    return std::find(nodes.begin(), nodes.end(), node) != nodes.end();
}

void changeNodeGroup(const NodePtr& node, const NodePtr& group, Record& record) {
    if (node->m_group == group) return;
    if (node->m_group != nullptr) {
        auto& members = node->m_group->m_groupChildren;
        const auto entry = std::find(members.begin(), members.end(), node);
        if (entry != members.end()) members.erase(entry);
    }
    node->m_group = group;
    if (group != nullptr) addToGroup(node, group, record);
}

void replaceLinkEnd(const LinkPtr& link, const NodePtr& oldEnd, const NodePtr& newEnd) {
    if (link->m_to == oldEnd) link->m_to = newEnd;
    if (link->m_from == oldEnd) link->m_from = newEnd;
}

void swapNodes(Graph& graph, const NodePtr& a, const NodePtr& b, Record& record) {
    ++record.exchanges;
    const NodePtr groupOfA = a->m_group;
    changeNodeGroup(a, b->m_group, record);
    changeNodeGroup(b, groupOfA, record);
    for (const LinkPtr& link : graph.m_linkList) {
        if (!isWhole(*link)) continue;
        if (link->m_to == a)
            replaceLinkEnd(link, a, b);
        else
            replaceLinkEnd(link, b, a);
    }
}

// Children or parents of a node, and what they are called in conditions.
struct Side {
    std::vector<NodePtr> Node::*neighbours;
    std::string of;         // the size condition, without whose
    std::string neighbour;  // the walker's name
};
const Side parentSide{&Node::m_parents, "getParents().size() == 1", "parent"};
const Side childSide{&Node::m_children, "getChildren().size() == 1", "child"};

// False when a condition has failed.
bool adjust(Graph& graph, const NodePtr& label, const Side& side, Record& record) {
    const auto neighbours = [&](const NodePtr& node) -> std::vector<NodePtr>& {
        return (*node).*side.neighbours;
    };
    if (neighbours(label).size() != 1) {
        record.failed.push_back("node->" + side.of);
        return false;
    }
    NodePtr p = neighbours(label).front();
    if (p->m_type == "node") return true;
    std::vector<NodePtr> visited;
    while (true) {
        if (neighbours(p).size() != 1 || isAmong(visited, p)) {
            record.failed.push_back(side.neighbour + "->" + side.of);
            return false;
        }
        visited.push_back(p);
        if (neighbours(p).front()->m_type != "dummy") break;
        p = neighbours(p).front();
    }
    swapNodes(graph, p, label, record);
    return true;
}

// Counts the nodes of other types between the label and the first one of type "node". Returns false when a
// condition has failed.
bool countSteps(const NodePtr& label, const Side& side, int& count, Record& record) {
    count = 0;
    std::vector<NodePtr> visited{label};
    NodePtr n = label;
    while (true) {
        const std::vector<NodePtr>& neighbours = (*n).*side.neighbours;
        if (!neighbours.empty() && neighbours.front()->m_type == "node") return true;
        if (neighbours.size() != 1 || isAmong(visited, neighbours.front())) {
            record.failed.push_back("n->" + side.of);
            return false;
        }
        n = neighbours.front();
        visited.push_back(n);
        count = count + 1;
    }
}

void setGroupChildLevelGroup(Graph& graph, const NodePtr& group) {
    auto& levels = graph.m_groupLevelManager.m_groupLevels;
    const int level = *levels.find(group->m_id);
    for (const NodePtr& member : group->m_groupChildren) {
        levels.set(member->m_id, level + 1);
        if (!member->m_groupChildren.empty()) setGroupChildLevelGroup(graph, member);
    }
}

}  // namespace

Code adjustLabelLocations(Graph& graph, Record& record) {
    setChildrenAndParents(graph);
    for (const NodePtr& node : graph.m_nodeList) {
        if (node->m_type != "label") continue;
        if (node->m_location == "from" && !adjust(graph, node, parentSide, record)) return Code::falseCode;
        if (node->m_location == "to" && !adjust(graph, node, childSide, record)) return Code::falseCode;
    }
    return Code::success;
}

void setNodeAlignings(Graph& graph, Record& record) {
    setChildrenAndParents(graph);
    for (const auto& [id, node] : graph.m_nodes) {
        if (node->m_type != "label") continue;
        if (node->m_location == "to") node->m_aligning = "to";
        if (node->m_location == "from") node->m_aligning = "from";
        if (node->m_location != "center") continue;
        if (node->m_children.size() != 1) {
            record.failed.emplace_back("node.second->getChildren().size() == 1");
            return;
        }
        if (node->m_parents.size() != 1) {
            record.failed.emplace_back("node.second->getParents().size() == 1");
            return;
        }
        int toSteps = 0;
        int fromSteps = 0;
        if (!countSteps(node, childSide, toSteps, record)) return;
        if (!countSteps(node, parentSide, fromSteps, record)) return;
        if (fromSteps < toSteps) node->m_aligning = "to";
        if (fromSteps > toSteps) node->m_aligning = "from";
    }
}

Code setGroupLevels(Graph& graph, Record& /*record*/) {
    auto& levels = graph.m_groupLevelManager.m_groupLevels;
    levels.clear();
    for (const auto& [id, node] : graph.m_nodes)
        levels.set(node->m_id, 0);
    for (const auto& [id, node] : graph.m_nodes)
        if (!node->m_groupChildren.empty() && node->m_group == nullptr) setGroupChildLevelGroup(graph, node);
    return Code::success;
}

}  // namespace tessera_test::literal
