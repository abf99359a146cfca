#include "core/view_model/graph.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tessera_1::view_model {
namespace {

void takeApart(Node& node) {
    node.m_group = nullptr;
    node.m_groupChildren.clear();
    node.m_children.clear();
    node.m_parents.clear();
}

void takeApart(Link& link) {
    link.m_from = nullptr;
    link.m_to = nullptr;
    link.m_realLink = nullptr;
    link.m_dummyLink = nullptr;
}

// Adds to lists of nodes what they do not hold yet. Long ones are remembered as sets.
class Neighbours {
  public:
    void add(std::vector<std::shared_ptr<Node>>& list, const std::shared_ptr<Node>& node) {
        if (list.size() < longList) {
            if (std::find(list.begin(), list.end(), node) != list.end()) return;
        } else {
            auto& known = m_known[&list];
            if (known.empty())
                for (const auto& each : list)
                    known.insert(each.get());
            if (!known.insert(node.get()).second) return;
        }
        list.push_back(node);
    }

  private:
    static constexpr std::size_t longList = 16;

    std::unordered_map<const void*, std::unordered_set<const Node*>> m_known;  // by list
};

}  // namespace

Graph::Graph() = default;

Graph::~Graph() {
    for (const auto& node : m_nodeList)
        takeApart(*node);
    for (const auto& [id, node] : m_nodes.unordered())
        if (node) takeApart(*node);
    for (const auto& link : m_linkList)
        takeApart(*link);
    for (const auto& [id, link] : m_links.unordered())
        if (link) takeApart(*link);
}

void Graph::addNode(std::shared_ptr<Node> node) {
    m_nodes[node->m_id] = node;
    m_nodeList.push_back(std::move(node));
}

void Graph::addLink(std::shared_ptr<Link> link) {
    m_links[link->m_id] = link;
    m_linkList.push_back(std::move(link));
}

std::shared_ptr<Node> Graph::findNode(const std::string& id) const {
    const auto entry = m_nodes.find(id);
    return entry == m_nodes.end() ? nullptr : entry->second;
}

std::shared_ptr<Link> Graph::findLink(const std::string& id) const {
    const auto entry = m_links.find(id);
    return entry == m_links.end() ? nullptr : entry->second;
}

void Graph::setChildrenAndParents() {
    for (const auto& [id, node] : m_nodes.unordered()) {
        if (!node) continue;
        node->m_parents.clear();
        node->m_children.clear();
    }
    Neighbours neighbours;  // Node::addChildParent for every link, without its search through long lists
    for (const auto& link : m_linkList) {
        if (!link->m_to || !link->m_from) continue;
        neighbours.add(link->m_from->m_children, link->m_to);
        neighbours.add(link->m_to->m_parents, link->m_from);
    }
}

void Graph::collectGroups() {
    m_groups.clear();
    std::unordered_set<const Node*> seen;
    for (const auto& node : m_nodeList)
        if (seen.insert(node->m_group.get()).second) m_groups.push_back(node->m_group);
}

void Graph::getDisplayInfos(std::vector<std::shared_ptr<DisplayInfo>>& out) const {
    out.clear();
    for (const auto& node : m_nodeList)
        if (node->m_info) out.push_back(node->m_info);
    std::vector<std::shared_ptr<DisplayInfo>> ofLink;
    for (const auto& link : m_linkList) {
        ofLink.clear();
        link->getDisplayInfos(ofLink);
        for (auto& info : ofLink)
            if (info) out.push_back(std::move(info));
    }
}

}  // namespace tessera_1::view_model
