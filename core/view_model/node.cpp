#include "core/view_model/node.h"

#include <algorithm>
#include <utility>

#include "core/check.h"
#include "core/view_model/hierarchical_level_manager.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/node");

using basekit2::error_code_t;

namespace {

void appendOnce(std::vector<std::shared_ptr<Node>>& nodes, const std::shared_ptr<Node>& node) {
    if (std::find(nodes.begin(), nodes.end(), node) == nodes.end()) nodes.push_back(node);
}

}  // namespace

// Defined here and not in the header, so that the library exports them.
Node::Node() = default;

const std::vector<std::shared_ptr<Node>>& Node::getParents() const noexcept {
    return m_parents;
}

const std::vector<std::shared_ptr<Node>>& Node::getChildren() const noexcept {
    return m_children;
}

std::int32_t Node::getHierarchicalLevel() const noexcept {
    return m_hierarchicalLevel;
}

bool Node::isGroup() const noexcept {
    return !m_groupChildren.empty();
}

Node::Node(std::string type) : m_type(std::move(type)) {}

Node::Node(std::string id, DataTransferTable dataTransfers, std::string type)
    : m_id(std::move(id)), m_type(std::move(type)), m_dataTransfers(std::move(dataTransfers)) {}

Node::Node(std::string id, std::shared_ptr<DisplayInfo> info, std::string type)
    : m_id(std::move(id)), m_type(std::move(type)), m_info(std::move(info)) {}

void Node::addChildParent(const std::shared_ptr<Node>& child, const std::shared_ptr<Node>& parent) {
    appendOnce(parent->m_children, child);
    appendOnce(child->m_parents, parent);
}

error_code_t Node::addToGroup(const std::shared_ptr<Node>& group) {
    if (!group) return {};
    TESSERA_CHECK(group->isGroup(), error_code_t::false_code());
    group->m_groupChildren.push_back(shared_from_this());
    m_group = group;
    return {};
}

void Node::removeFromGroup(const std::shared_ptr<Node>& member) {
    const auto it = std::find(m_groupChildren.begin(), m_groupChildren.end(), member);
    if (it != m_groupChildren.end()) m_groupChildren.erase(it);
}

void Node::setHierarchicalLevel(std::int32_t level) {
    if (level < -1) {
        check::failed(TESSERA_HERE, "level >= -1", level >= -1);
        (void)TESSERA_RAISE(bk2::error::IsNot.Valid.Range(_U("The level is below -1")));
    }
    m_hierarchicalLevel = level;
}

error_code_t Node::setGroupChildLevelGroup(GroupLevelManager& manager) {
    std::int32_t level = 0;
    const error_code_t err = manager.getGroupLevel(m_id, level);
    TESSERA_CHECK(err.succeeded(), err);
    // The groups on the way down to the present one, and how many of their members have been visited.
    struct Visit {
        const Node* group;
        std::size_t next;
    };
    std::vector<Visit> way{{this, 0}};
    while (!way.empty()) {
        Visit& visit = way.back();
        if (visit.next == visit.group->m_groupChildren.size()) {
            way.pop_back();
            --level;
            continue;
        }
        const Node& member = *visit.group->m_groupChildren[visit.next++];
        manager.setGroupLevel(member.m_id, level + 1);
        if (!member.isGroup()) continue;
        way.push_back({&member, 0});
        ++level;
    }
    return {};
}

void Node::setLocation(const std::string& location) {
    m_location = location;
    if (location == "to" || location == "from") m_aligning = location;
}

}  // namespace tessera_1::view_model
