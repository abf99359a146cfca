// Exchanges a label that dummies have separated from its link's end with the dummy next to that end.
//
// Needs:  the dummies of long links.
// Leaves: a "from" or "to" label with dummies before its node has changed places with the one next to the
//         node: the two have each other's group and links, and keep their layers.
// Order:  after the label dummies, before the alignings.
// Fails:  at the first label whose path to its end is not a simple one, with the false code; labels before
//         it stay exchanged.
#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/view_model/graph.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

namespace {

using NodePtr = std::shared_ptr<Node>;
using NodePtrs = std::vector<NodePtr>;

void replaceLinkEnd(Link& link, const NodePtr& oldEnd, const NodePtr& newEnd) {
    if (link.m_to == oldEnd) link.m_to = newEnd;
    if (link.m_from == oldEnd) link.m_from = newEnd;
}

void exchangeOn(Link& link, const NodePtr& a, const NodePtr& b) {
    if (!link.m_from || !link.m_to) return;
    if (link.m_to == a)
        replaceLinkEnd(link, a, b);
    else
        replaceLinkEnd(link, b, a);
}

// The members of a group, while some join and some leave.
class MemberList {
  public:
    explicit MemberList(NodePtrs members) : m_members(std::move(members)), m_count(m_members.size()) {
        for (std::size_t i = 0; i < m_members.size(); ++i)
            m_places.emplace(m_members[i].get(), i);
    }

    [[nodiscard]] bool isEmpty() const noexcept { return m_count == 0; }

    void add(const NodePtr& node) {
        m_places.emplace(node.get(), m_members.size());
        m_members.push_back(node);
        ++m_count;
    }

    void remove(const Node& node) {
        const auto place = m_places.find(&node);
        if (place == m_places.end()) return;
        m_members[place->second] = nullptr;
        m_places.erase(place);
        --m_count;
    }

    [[nodiscard]] NodePtrs take() {
        std::erase(m_members, nullptr);
        return std::move(m_members);
    }

  private:
    NodePtrs m_members;  // null where one has left
    std::unordered_map<const Node*, std::size_t> m_places;
    std::size_t m_count;
};

// Graph::swapNodes for many pairs, each in time proportional to their own links. The groups of exchanged nodes
// get their member lists back when this is destroyed. REQUIRES: no node exchanged has the type "node".
class Exchange {
  public:
    explicit Exchange(const Graph& graph) : m_graph(graph) {}
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange() {
        for (auto& [group, members] : m_members)
            group->m_groupChildren = members.take();
    }

    void swap(const NodePtr& a, const NodePtr& b) {
        if (m_links.empty()) findLinks();
        const NodePtr group = a->m_group;
        move(a, b->m_group);
        move(b, group);
        Links links = m_links[a.get()];
        links.insert(links.end(), m_links[b.get()].begin(), m_links[b.get()].end());
        std::sort(links.begin(), links.end());
        links.erase(std::unique(links.begin(), links.end()), links.end());
        for (Link* link : links)
            exchangeOn(*link, a, b);
        for (const NodePtr& node : {a, b}) {
            Links& now = m_links[node.get()];
            now.clear();
            std::copy_if(links.begin(), links.end(), std::back_inserter(now),
                         [&](const Link* link) { return link->m_from == node || link->m_to == node; });
        }
    }

  private:
    using Links = std::vector<Link*>;

    void findLinks() {
        for (const auto& link : m_graph.m_linkList)
            for (const Node* end : {link->m_from.get(), link->m_to.get()})
                if (end && end->m_type != "node") m_links[end].push_back(link.get());
    }

    // Graph::changeNodeGroup.
    void move(const NodePtr& node, const NodePtr& group) {
        if (node->m_group == group) return;
        if (node->m_group) membersOf(node->m_group).remove(*node);
        node->m_group = group;
        if (!group) return;
        if (MemberList& members = membersOf(group); !members.isEmpty())
            members.add(node);
        else
            (void)node->addToGroup(group);  // which refuses, and reports
    }

    MemberList& membersOf(const NodePtr& group) {
        const auto known = m_members.find(group);
        if (known != m_members.end()) return known->second;
        return m_members.emplace(group, MemberList(std::exchange(group->m_groupChildren, {}))).first->second;
    }

    const Graph& m_graph;
    std::unordered_map<const Node*, Links> m_links;  // found when they are needed
    std::unordered_map<NodePtr, MemberList> m_members;
};

}  // namespace

void Graph::swapNodes(const NodePtr& a, const NodePtr& b) {
    const NodePtr group = a->m_group;
    changeNodeGroup(a, b->m_group);
    changeNodeGroup(b, group);
    for (const auto& link : m_linkList)
        exchangeOn(*link, a, b);
}

void Graph::changeNodeGroup(const NodePtr& node, const NodePtr& group) {
    if (node->m_group == group) return;
    if (node->m_group) node->m_group->removeFromGroup(node);
    node->m_group = group;
    if (group) (void)node->addToGroup(group);
}

error_code_t Graph::adjustLabelLocations() {
    setChildrenAndParents();
    Exchange exchange(*this);
    for (const auto& node : m_nodeList) {
        if (node->m_type != "label") continue;
        std::size_t steps = 0;  // a path of more steps than there are nodes is a cycle
        if (node->m_location == "from") {
            TESSERA_CHECK(node->getParents().size() == 1, error_code_t::false_code());
            NodePtr parent = node->getParents()[0];
            if (parent->m_type == "node") continue;
            TESSERA_CHECK(parent->getParents().size() == 1, error_code_t::false_code());
            while (parent->getParents()[0]->m_type == "dummy") {
                parent = parent->getParents()[0];
                TESSERA_CHECK(parent->getParents().size() == 1, error_code_t::false_code());
                if (++steps > m_nodeList.size()) {
                    check::failed(TESSERA_HERE, "parent->getParents().size() == 1", false);
                    return error_code_t::false_code();
                }
            }
            exchange.swap(parent, node);
        } else if (node->m_location == "to") {
            TESSERA_CHECK(node->getChildren().size() == 1, error_code_t::false_code());
            NodePtr child = node->getChildren()[0];
            if (child->m_type == "node") continue;
            TESSERA_CHECK(child->getChildren().size() == 1, error_code_t::false_code());
            while (child->getChildren()[0]->m_type == "dummy") {
                child = child->getChildren()[0];
                TESSERA_CHECK(child->getChildren().size() == 1, error_code_t::false_code());
                if (++steps > m_nodeList.size()) {
                    check::failed(TESSERA_HERE, "child->getChildren().size() == 1", false);
                    return error_code_t::false_code();
                }
            }
            exchange.swap(child, node);
        }
    }
    return {};
}

}  // namespace tessera_1::view_model
