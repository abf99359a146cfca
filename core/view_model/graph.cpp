#include "core/view_model/graph.h"

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

// Ordered pairs of nodes that have been seen.
class NodePairs {
  public:
    bool insert(const Node* a, const Node* b) { return m_pairs.insert({a, b}).second; }

  private:
    using Pair = std::pair<const Node*, const Node*>;
    struct Hash {
        std::size_t operator()(const Pair& pair) const noexcept {
            const auto a = reinterpret_cast<std::uintptr_t>(pair.first);
            const auto b = reinterpret_cast<std::uintptr_t>(pair.second);
            return (a * 0x9E3779B97F4A7C15U) ^ (b >> 4U);
        }
    };
    std::unordered_set<Pair, Hash> m_pairs;
};

}  // namespace

Graph::~Graph() {
    for (const auto& node : m_nodeList)
        takeApart(*node);
    for (const auto& [id, node] : m_nodes)
        if (node) takeApart(*node);
    for (const auto& link : m_linkList)
        takeApart(*link);
    for (const auto& [id, link] : m_links)
        if (link) takeApart(*link);
}

void Graph::addNode(std::shared_ptr<Node> node) {
    m_nodeIndex.file(m_nodes, node->m_id, node);
    m_nodeList.push_back(std::move(node));
}

void Graph::addLink(std::shared_ptr<Link> link) {
    m_linkIndex.file(m_links, link->m_id, link);
    m_linkList.push_back(std::move(link));
}

void Graph::setChildrenAndParents() {
    for (const auto& [id, node] : m_nodes) {
        if (!node) continue;
        node->m_parents.clear();
        node->m_children.clear();
    }
    // Node::addChildParent for every link, without its search through the lists. A node that another of the
    // same id has pushed out of m_nodes keeps its lists, so what they hold counts as seen.
    NodePairs children;
    NodePairs parents;
    for (const auto& node : m_nodeList) {
        for (const auto& child : node->m_children)
            children.insert(node.get(), child.get());
        for (const auto& parent : node->m_parents)
            parents.insert(node.get(), parent.get());
    }
    for (const auto& link : m_linkList) {
        const auto& child = link->m_to;
        const auto& parent = link->m_from;
        if (!child || !parent) continue;
        if (children.insert(parent.get(), child.get())) parent->m_children.push_back(child);
        if (parents.insert(child.get(), parent.get())) child->m_parents.push_back(parent);
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
