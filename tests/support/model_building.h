// Short ways to build a diagram model in tests, and to name its parts.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/view_model/graph.h"

namespace tessera_test {

using Names = std::vector<std::string>;
using NodePtr = std::shared_ptr<tessera_1::view_model::Node>;
using LinkPtr = std::shared_ptr<tessera_1::view_model::Link>;
using InfoPtr = std::shared_ptr<tessera_1::view_model::DisplayInfo>;

inline NodePtr makeNode(const std::string& id) {
    auto node = std::make_shared<tessera_1::view_model::Node>();
    node->m_id = id;
    return node;
}

// A node that is a member of `group`; both objects know of the membership.
inline NodePtr makeMember(const std::string& id, const NodePtr& group) {
    auto node = makeNode(id);
    node->m_group = group;
    group->m_groupChildren.push_back(node);
    return node;
}

inline LinkPtr makeLink(const NodePtr& from, const NodePtr& to, const std::string& id = "l") {
    auto link = std::make_shared<tessera_1::view_model::Link>(id);
    link->m_from = from;
    link->m_to = to;
    return link;
}

inline InfoPtr makeInfo(const std::string& name) {
    auto info = std::make_shared<tessera_1::view_model::DisplayInfo>();
    info->m_name = name;
    return info;
}

inline Names idsOf(const std::vector<NodePtr>& nodes) {
    Names out;
    for (const NodePtr& node : nodes)
        out.push_back(node ? node->m_id : "(null)");
    return out;
}

inline Names namesOf(const std::vector<InfoPtr>& infos) {
    Names out;
    for (const InfoPtr& info : infos)
        out.push_back(info ? info->m_name : "(null)");
    return out;
}

// Makes nodes that no graph owns, and breaks their cycles at the end.
class LooseNodes {
  public:
    LooseNodes() = default;
    LooseNodes(const LooseNodes&) = delete;
    LooseNodes& operator=(const LooseNodes&) = delete;
    ~LooseNodes() {
        for (const NodePtr& node : m_nodes) {
            node->m_group = nullptr;
            node->m_groupChildren.clear();
            node->m_children.clear();
            node->m_parents.clear();
        }
    }
    NodePtr node(const std::string& id) { return m_nodes.emplace_back(makeNode(id)); }
    NodePtr member(const std::string& id, const NodePtr& group) {
        return m_nodes.emplace_back(makeMember(id, group));
    }

  private:
    std::vector<NodePtr> m_nodes;
};

}  // namespace tessera_test
