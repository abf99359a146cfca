// What must be true of every graph after each stage of "create".
#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/layout_watch.h"
#include "core/view_model/graph.h"
#include "core/view_model/truncated_id.h"

namespace tessera_1 {
namespace {

using view_model::Graph;
using view_model::Link;
using view_model::Node;
using NodePtr = std::shared_ptr<Node>;

constexpr std::size_t maxFindings = 100;

class Verification {
  public:
    explicit Verification(const Graph& graph) : m_graph(graph) {}

    std::vector<std::string> run(const std::string& stage) {
        const auto& stages = layoutStages();
        const auto place = std::find(stages.begin(), stages.end(), stage);
        const auto isAtOrAfter = [&](const char* other) {
            return std::find(stages.begin(), place, other) != place || stage == other;
        };
        tables("node", m_graph.m_nodes, m_graph.m_nodeList);
        tables("link", m_graph.m_links, m_graph.m_linkList);
        standIns();
        if (stage == "info_nodes") valuesOnNodes();
        if (stage == "group_links") linksBetweenGroups();
        if (stage == "hierarchical_levels") linksGoDown();
        if (isAtOrAfter("hierarchical_levels")) layers();
        if (isAtOrAfter("group_levels")) depths();
        return std::move(m_findings);
    }

  private:
    void find(const std::string& subject, const std::string& id, const std::string& problem) {
        if (m_findings.size() < maxFindings)
            m_findings.push_back(subject + " <" + view_model::truncatedId(id) + "> " + problem);
    }

    // Every object by id is one that is listed.
    template <class Object>
    void tables(const char* kind, const view_model::IdMap<Object>& byId,
                const std::vector<std::shared_ptr<Object>>& list) {
        std::unordered_set<const Object*> listed;
        for (const auto& object : list)
            listed.insert(object.get());
        for (const auto& [id, object] : byId) {
            if (!object) continue;
            if (id != object->m_id) find(kind, object->m_id, "has an entry under another id");
            if (!listed.contains(object.get())) find(kind, object->m_id, "is not listed");
        }
    }

    // A dummy link and its real link know each other.
    void standIns() {
        for (const auto& link : m_graph.m_linkList) {
            if (link->m_realLink && link->m_type != "dummy")
                find("link", link->m_id, "represents another link and is not a dummy");
            if (link->m_dummyLink && !(link->m_dummyLink->m_realLink &&
                                       link->m_dummyLink->m_realLink->m_dummyLink == link->m_dummyLink))
                find("link", link->m_id, "has a dummy link that represents none or another link");
        }
    }

    // What is shown has become nodes.
    void valuesOnNodes() {
        for (const auto& link : m_graph.m_linkList)
            if (link->m_from && link->m_to && !link->m_displayInfo.empty(m_graph.m_displayMode))
                find("link", link->m_id, "still has values to show");
        for (const auto& node : m_graph.m_nodeList)
            if (node->isGroup() && node->m_info && !node->m_info->m_rowSet.empty())
                find("group", node->m_id, "still has values to show");
    }

    void linksBetweenGroups() {
        for (const auto& link : m_graph.m_linkList) {
            if (!link->m_from || !link->m_to || link->m_from->m_group == link->m_to->m_group) continue;
            const auto& dummy = link->m_dummyLink;
            if (!dummy || !dummy->m_from || !dummy->m_to)
                find("link", link->m_id, "is between groups and has no dummy link");
            else if (dummy->m_from->m_group != dummy->m_to->m_group)
                find("link", link->m_id, "has a dummy link that is between groups as well");
        }
    }

    [[nodiscard]] bool isFiled(const NodePtr& node) const { return m_graph.findNode(node->m_id) == node; }

    // In groups whose walk came to an end; with a cycle it reaches a layer deeper than there are nodes.
    void linksGoDown() {
        for (const auto& link : m_graph.m_linkList) {
            if (!link->m_from || !link->m_to || link->m_from->m_group != link->m_to->m_group) continue;
            if (!isFiled(link->m_from) || !isFiled(link->m_to)) continue;
            if (link->m_from->m_hierarchicalLevel < 0) continue;
            const auto manager = m_graph.m_levelManagers.find(link->m_to->m_group);
            if (manager == m_graph.m_levelManagers.end()) continue;
            if (manager->second.m_levels.size() > m_graph.m_nodes.size()) continue;
            if (link->m_to->m_hierarchicalLevel <= link->m_from->m_hierarchicalLevel)
                find("link", link->m_id, "does not go down in its group");
        }
    }

    // The layers and the levels of the nodes agree.
    void layers() {
        std::unordered_set<const Node*> placed;
        for (const auto& [group, manager] : m_graph.m_levelManagers) {
            for (std::size_t level = 0; level < manager.m_levels.size(); ++level) {
                for (const NodePtr& node : *manager.m_levels[level]) {
                    if (!node) continue;
                    if (!placed.insert(node.get()).second) find("node", node->m_id, "is placed twice");
                    if (node->m_hierarchicalLevel != static_cast<std::int32_t>(level))
                        find("node", node->m_id, "is in another layer than that of its level");
                }
            }
        }
        for (const NodePtr& node : m_graph.m_nodeList)
            if (node->m_hierarchicalLevel >= 0 && !placed.contains(node.get()))
                find("node", node->m_id, "has a level and is in no layer");
    }

    // Where ids are given once, levels are nesting depths.
    void depths() {
        std::unordered_map<std::string, int> uses;
        for (const NodePtr& node : m_graph.m_nodeList)
            ++uses[node->m_id];
        std::vector<std::pair<const Node*, std::int32_t>> open;
        const auto visit = [&](const Node& node, std::int32_t depth) {
            if (uses[node.m_id] != 1) return;
            std::int32_t level = -1;
            if (!m_graph.m_groupLevelManager.getGroupLevel(node.m_id, level).is_success() || level != depth)
                find("node", node.m_id, "has another group level than its depth " + std::to_string(depth));
            open.emplace_back(&node, depth);
        };
        for (const NodePtr& node : m_graph.m_nodeList)
            if (!node->m_group) visit(*node, 0);
        while (!open.empty()) {
            const auto [group, depth] = open.back();
            open.pop_back();
            for (const NodePtr& member : group->m_groupChildren)
                if (member->m_group.get() == group) visit(*member, depth + 1);
        }
    }

    const Graph& m_graph;
    std::vector<std::string> m_findings;
};

}  // namespace

std::vector<std::string> verifyGraph(const Graph& graph, const std::string& stage) {
    return Verification(graph).run(stage);
}

}  // namespace tessera_1
