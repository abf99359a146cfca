#include "core/view_model/link.h"

namespace tessera_1::view_model {
namespace {

using NodePtr = std::shared_ptr<Node>;

// How many groups contain the node.
std::size_t depthOf(const Node& node) {
    std::size_t depth = 0;
    for (const Node* group = node.m_group.get(); group; group = group->m_group.get())
        ++depth;
    return depth;
}

}  // namespace

Link::Link() = default;

Link::Link(std::string id) : m_id(std::move(id)) {}

Link::Link(std::string id, std::string type) : m_id(std::move(id)), m_type(std::move(type)) {}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): a member in the interface
void Link::getDataTransferDisplayInfos(const DataTransferTable& table,
                                       std::vector<std::shared_ptr<DisplayInfo>>& out) const {
    for (const auto& [mode, info] : table)
        out.push_back(info);
}

void Link::getDisplayInfos(std::vector<std::shared_ptr<DisplayInfo>>& out) const {
    getDataTransferDisplayInfos(m_displayInfo.m_fromInfo, out);
    getDataTransferDisplayInfos(m_displayInfo.m_toInfo, out);
    getDataTransferDisplayInfos(m_displayInfo.m_totalInfo, out);
}

std::pair<NodePtr, NodePtr> Link::getFromToBelongToTheSameGroup() const {
    if (!m_from || !m_to || m_from->m_group == m_to->m_group) return {m_from, m_to};
    // Lift the deeper side to the other's depth, then both together: they meet in the innermost common group.
    const NodePtr* from = &m_from;
    const NodePtr* to = &m_to;
    std::size_t fromDepth = depthOf(*m_from);
    std::size_t toDepth = depthOf(*m_to);
    for (; fromDepth > toDepth; --fromDepth)
        from = &(*from)->m_group;
    for (; toDepth > fromDepth; --toDepth)
        to = &(*to)->m_group;
    while ((*from)->m_group != (*to)->m_group) {
        from = &(*from)->m_group;
        to = &(*to)->m_group;
    }
    return {*from, *to};
}

NodePtr Link::getGroup() const {
    if (!m_from || !m_to) return nullptr;
    return getFromToBelongToTheSameGroup().first->m_group;
}

}  // namespace tessera_1::view_model
