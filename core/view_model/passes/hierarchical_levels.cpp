// The layer of every node inside the group that directly contains it.
//
// Needs:  the dummy links between groups.
// Leaves: along every link between two members of a group the target is in a deeper layer, unless they are
//         on a cycle or after one; each layer lists its nodes in the order in which they came to it.
//         Members that no root leads to are in no layer. Where a node has moved on, a null entry
//         stays, except for the first one of each layer. A group in which these would exceed the
//         WalkBudget has none.
// Order:  after the dummy links, before the label dummies.
// Fails:  with the false code at the first group with a cycle that a root leads to: its nodes keep the deep
//         layers that they have reached, and the groups after it get no layers.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/view_model/graph.h"
#include "core/view_model/passes/layer_walk.h"
#include "core/view_model/passes/layout_run.h"
#include "core/view_model/passes/plain_walk.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

namespace {

using NodePtr = std::shared_ptr<Node>;
using NodePtrs = std::vector<NodePtr>;

constexpr const char* signatureOfAll =
    "basekit2::error_code_t tessera_1::view_model::Graph::calculateHierarchicalLevels()";
constexpr const char* signatureOfOne =
    "basekit2::error_code_t tessera_1::view_model::Graph::calculateHierarchicalLevelsForGroup("
    "const std::shared_ptr<tessera_1::view_model::Node>&)";

basekit2::error_t cycleError() {
    return bk2::error::IsNot.Valid.Range(_U("The layers have no end: there is a cycle of links"));
}

// The links between the members, as numbers. While it is made, the level of a member is its number.
LayerGraph layerGraph(const NodePtrs& members) {
    const auto numberOf = [&members](const NodePtr& node) {
        const auto number = static_cast<std::uint32_t>(node->m_hierarchicalLevel);
        return number < members.size() && members[number] == node ? number : WalkedLayers::none;
    };
    for (std::size_t i = 0; i < members.size(); ++i)
        members[i]->m_hierarchicalLevel = static_cast<std::int32_t>(i);
    LayerGraph graph;
    graph.childrenStart.reserve(members.size() + 1);
    graph.childrenStart.push_back(0);
    for (std::uint32_t i = 0; i < members.size(); ++i) {
        const auto isMember = [&](const NodePtr& node) { return numberOf(node) != WalkedLayers::none; };
        const NodePtrs& parents = members[i]->getParents();
        if (std::none_of(parents.begin(), parents.end(), isMember)) graph.roots.push_back(i);
        for (const NodePtr& child : members[i]->getChildren())
            if (const std::uint32_t number = numberOf(child); number != WalkedLayers::none)
                graph.children.push_back(number);
        graph.childrenStart.push_back(static_cast<std::uint32_t>(graph.children.size()));
    }
    for (const NodePtr& member : members)
        member->m_hierarchicalLevel = -1;
    return graph;
}

void removeFirstPlaceholder(HierarchicalLevelManager::Level& layer) {
    const auto placeholder = std::find(layer.begin(), layer.end(), nullptr);
    if (placeholder != layer.end()) layer.erase(placeholder);
}

void takeLayers(HierarchicalLevelManager& manager, const WalkedLayers& walked, const NodePtrs& members) {
    for (std::size_t level = 0; level < walked.starts.size(); ++level) {
        manager.addLevel();
        HierarchicalLevelManager::Level& layer = *manager.m_levels.back();
        const bool isLast = level + 1 == walked.starts.size();
        const std::size_t end = isLast ? walked.arrivals.size() : walked.starts[level + 1];
        const auto hasMovedOn = [&](std::size_t i) { return walked.layerOf[walked.arrivals[i]] != level; };
        // The first placeholder goes when the walk has come to its end.
        std::size_t leftOut = walked.end == WalkedLayers::End::cycle ? end : walked.starts[level];
        while (leftOut < end && !hasMovedOn(leftOut))
            ++leftOut;
        layer.resize(end - walked.starts[level] - (leftOut < end ? 1 : 0));
        for (std::size_t i = walked.starts[level], entry = 0; i < end; ++i) {
            if (i == leftOut) continue;
            if (!hasMovedOn(i)) {
                layer[entry] = members[walked.arrivals[i]];
                layer[entry]->setHierarchicalLevel(static_cast<std::int32_t>(level));
            }
            ++entry;
        }
    }
}

// Placeholders of these layers would take more memory than there may be: a node in a cycle passes through up to as
// many layers as the graph has nodes. No operation reads them.
void takeLayers(HierarchicalLevelManager& manager, const Layers& layers, const NodePtrs& members) {
    for (std::size_t level = 0; level < layers.nodes.size(); ++level) {
        manager.addLevel();
        HierarchicalLevelManager::Level& layer = *manager.m_levels.back();
        layer.reserve(layers.nodes[level].size());
        for (const std::uint32_t number : layers.nodes[level]) {
            layer.push_back(members[number]);
            layer.back()->setHierarchicalLevel(static_cast<std::int32_t>(level));
        }
    }
}

// Layers groups one after the other.
class GroupLayering {
  public:
    GroupLayering(Graph& graph, LayoutRun& run) : m_graph(graph), m_nodes(graph.m_nodes), m_run(run) {}

    // `members` are those of the group by ascending id.
    error_code_t layer(const NodePtr& group, const NodePtrs& members) {
        HierarchicalLevelManager& manager = m_graph.m_levelManagers[group];
        for (const NodePtr& member : members)
            member->setHierarchicalLevel(-1);
        if (!manager.m_levels.empty()) return layerOnTop(manager, members);
        const bool isBroken = layerByIndex(manager, members);
        if (m_run.isCancelled) return error_code_t::false_code();
        if (!isBroken) return {};
        const std::size_t nextLevel = m_nodes.size() + 1;
        TESSERA_CHECK_IN(signatureOfOne, nextLevel <= m_nodes.size(),
                         TESSERA_RAISE_IN(signatureOfOne, cycleError()));
        return {};
    }

  private:
    // Returns whether the layers have no end.
    bool layerByIndex(HierarchicalLevelManager& manager, const NodePtrs& members) {
        const LayerGraph graph = layerGraph(members);
        const auto lastLayer = static_cast<std::uint32_t>(m_nodes.size());
        const WalkedLayers walked = walkPlainly(graph, lastLayer, m_budget, m_run.progress);
        m_run.isCancelled = walked.end == WalkedLayers::End::cancelled;
        if (m_run.isCancelled) return false;
        if (walked.end != WalkedLayers::End::overBudget) {
            takeLayers(manager, walked, members);
            return walked.end == WalkedLayers::End::cycle;
        }
        const Layers layers = walkLayers(graph, lastLayer, m_run.progress);
        m_run.isCancelled = layers.isCancelled;
        if (!layers.isCancelled) takeLayers(manager, layers, members);
        return layers.isBroken;
    }

    // Over the layers of an earlier layering, which stay where they are.
    error_code_t layerOnTop(HierarchicalLevelManager& manager, const NodePtrs& members) {
        const std::unordered_set<NodePtr> isMember(members.begin(), members.end());
        const auto hasMember = [&](const NodePtrs& nodes) {
            return std::any_of(nodes.begin(), nodes.end(),
                               [&](const NodePtr& node) { return isMember.contains(node); });
        };
        for (const NodePtr& node : members)
            if (!hasMember(node->getParents())) (void)manager.setLevel(node, 0, false);
        std::size_t level = 0;
        for (std::size_t nextLevel = 0; level < manager.m_levels.size(); level = nextLevel) {
            const auto layer = manager.m_levels[level];
            const std::size_t size = layer->size();
            for (std::size_t i = 0; i < size; ++i) {
                const NodePtr node = (*layer)[i];
                if (!node) continue;
                for (const NodePtr& child : node->getChildren()) {
                    if (!isMember.contains(child)) continue;
                    nextLevel = level + 1;
                    TESSERA_CHECK_IN(signatureOfOne, nextLevel <= m_nodes.size(),
                                     TESSERA_RAISE_IN(signatureOfOne, cycleError()));
                    const error_code_t err =
                        manager.setLevel(child, static_cast<std::int32_t>(nextLevel), true);
                    TESSERA_CHECK_IN(signatureOfOne, err.succeeded(), error_code_t::false_code());
                }
            }
            if (nextLevel == level) break;
        }
        for (const auto& layer : manager.m_levels)
            removeFirstPlaceholder(*layer);
        return {};
    }

    Graph& m_graph;
    const IdMap<Node>& m_nodes;
    LayoutRun& m_run;
    WalkBudget m_budget = m_run.walkBudget;  // what is left of it
};

std::unordered_map<const Node*, NodePtrs> membersOfAllGroups(const Graph& graph) {
    std::unordered_map<const Node*, NodePtrs> members;
    const Node* group = nullptr;
    NodePtrs* ofGroup = &members[group];  // neighbours by id are often in one group
    for (const auto& [id, node] : graph.m_nodes) {
        if (!node) continue;
        if (node->m_group.get() != group) {
            group = node->m_group.get();
            ofGroup = &members[group];
        }
        ofGroup->push_back(node);
    }
    return members;
}

}  // namespace

error_code_t calculateHierarchicalLevels(Graph& graph, LayoutRun& run) {
    graph.setChildrenAndParents();
    graph.collectGroups();
    const auto members = membersOfAllGroups(graph);
    GroupLayering layering(graph, run);
    error_code_t err;
    for (const NodePtr& group : graph.m_groups) {
        const auto ofGroup = members.find(group.get());
        err = layering.layer(group, ofGroup == members.end() ? NodePtrs() : ofGroup->second);
        if (!err.succeeded() || run.isCancelled) break;
    }
    if (run.isCancelled) {
        graph.clearHierarchicalLevelManagers();
        return error_code_t::false_code();
    }
    TESSERA_CHECK_IN(signatureOfAll, err.succeeded(), error_code_t::false_code());
    return {};
}

error_code_t Graph::calculateHierarchicalLevels() {
    LayoutRun run;
    return view_model::calculateHierarchicalLevels(*this, run);
}

error_code_t Graph::calculateHierarchicalLevelsForGroup(const NodePtr& group) {
    NodePtrs members;
    for (const auto& [id, node] : m_nodes)
        if (node && node->m_group == group) members.push_back(node);
    LayoutRun run;
    return GroupLayering(*this, run).layer(group, members);
}

void Graph::clearHierarchicalLevelManagers() {
    for (const auto& group : m_groups)
        m_levelManagers[group].m_levels.clear();
}

}  // namespace tessera_1::view_model
