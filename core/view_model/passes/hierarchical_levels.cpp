// The layer of every node inside the group that directly contains it.
//
// Needs:  the dummy links between groups.
// Leaves: along every link between two members of a group the target is in a deeper layer, unless they are
//         on a cycle or behind one; each layer lists its nodes in the order in which they came to it.
//         Members that no root leads to are in no layer.
// Order:  behind the dummy links, before the label dummies.
// Fails:  with the false code at the first group with a cycle that a root leads to: its nodes keep the deep
//         layers that they were driven to, the groups behind it have no layers.
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "core/check.h"
#include "core/view_model/graph.h"
#include "core/view_model/passes/layer_walk.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

namespace {

using NodePtr = std::shared_ptr<Node>;
using NodePtrs = std::vector<NodePtr>;

// How often the plain walk may look at each member and link; then there is a cycle, or many ways of different
// lengths, and it would take too long.
constexpr std::size_t looksEach = 16;

// Tells members of a group from other nodes. REQUIRES: made before anybody asks, and the last one made
// counts.
class Membership {
  public:
    explicit Membership(const NodePtrs& members) : m_members(members) {
        for (std::size_t i = 0; i < members.size(); ++i)
            members[i]->m_hints.inMembers = i;
    }

    [[nodiscard]] bool has(const NodePtr& node) const {
        const std::size_t hint = node->m_hints.inMembers;
        return hint < m_members.size() && m_members[hint] == node;
    }
    [[nodiscard]] bool hasAny(const NodePtrs& nodes) const {
        return std::any_of(nodes.begin(), nodes.end(), [this](const NodePtr& node) { return has(node); });
    }

  private:
    const NodePtrs& m_members;
};

LayerGraph layerGraph(const NodePtrs& members) {
    const Membership membership(members);
    LayerGraph graph;
    graph.childrenStart.push_back(0);
    for (const NodePtr& member : members) {
        if (!membership.hasAny(member->getParents()))
            graph.roots.push_back(static_cast<std::uint32_t>(member->m_hints.inMembers));
        for (const NodePtr& child : member->getChildren())
            if (membership.has(child))
                graph.children.push_back(static_cast<std::uint32_t>(child->m_hints.inMembers));
        graph.childrenStart.push_back(static_cast<std::uint32_t>(graph.children.size()));
    }
    return graph;
}

void takeLayers(HierarchicalLevelManager& manager, const Layers& layers, const NodePtrs& members) {
    for (const NodePtr& member : members)
        member->setHierarchicalLevel(-1);
    manager.m_levels.clear();
    for (const auto& layer : layers.nodes) {
        manager.addLevel();
        const auto level = static_cast<std::int32_t>(manager.m_levels.size()) - 1;
        manager.m_levels.back()->reserve(layer.size());
        for (const std::uint32_t number : layer)
            (void)manager.setLevel(members[number], level, false);
    }
}

void removeFirstPlaceholders(HierarchicalLevelManager& manager) {
    for (const auto& layer : manager.m_levels) {
        const auto placeholder = std::find(layer->begin(), layer->end(), nullptr);
        if (placeholder != layer->end()) layer->erase(placeholder);
    }
}

// The layers of members that the plain walk would take too long for. No placeholders are left, which nobody
// reads. Answers the deepest layer, one beyond `lastLevel` when the walk would go on there; nothing when it
// was cancelled, and then members stay as they are.
std::optional<std::size_t> layerQuickly(HierarchicalLevelManager& manager, const NodePtrs& members,
                                        std::size_t lastLevel, const relay2::IProgress* progress) {
    const Layers layers = walkLayers(layerGraph(members), static_cast<std::uint32_t>(lastLevel), progress);
    if (layers.isCancelled) return std::nullopt;
    takeLayers(manager, layers, members);
    return layers.isBroken ? lastLevel + 1 : manager.m_levels.size() - 1;
}

basekit2::error_t cycleError() {
    return bk2::error::IsNot.Valid.Range(_U("The layers have no end: there is a cycle of links"));
}

}  // namespace

error_code_t Graph::calculateHierarchicalLevels() {
    setChildrenAndParents();
    collectGroups();
    m_members.emplace();  // one walk over all nodes instead of one a group
    for (const auto& [id, node] : m_nodes)
        (*m_members)[node->m_group.get()].push_back(node);
    error_code_t err;
    for (std::size_t i = 0; i < m_groups.size() && err.succeeded() && !m_isCancelled; ++i)
        err = calculateHierarchicalLevelsForGroup(m_groups[i]);
    m_members.reset();
    TESSERA_CHECK(err.succeeded(), error_code_t::false_code());
    return {};
}

void Graph::clearHierarchicalLevelManagers() {
    for (const auto& group : m_groups)
        m_levelManagers[group].m_levels.clear();
}

Graph::Members Graph::membersOf(const NodePtr& group) {
    if (m_members) return std::move((*m_members)[group.get()]);
    Members members;
    for (const auto& [id, node] : m_nodes)
        if (node->m_group == group) members.push_back(node);
    return members;
}

error_code_t Graph::calculateHierarchicalLevelsForGroup(const NodePtr& group) {
    const Members members = membersOf(group);
    HierarchicalLevelManager& manager = m_levelManagers[group];
    const Membership membership(members);
    const bool isFirstTime = manager.m_levels.empty();
    std::size_t looks = 0;
    std::size_t looksAllowed = looksEach * members.size();
    for (const NodePtr& node : members) {
        node->setHierarchicalLevel(-1);
        looksAllowed += looksEach * node->getChildren().size();
    }
    for (const NodePtr& node : members)
        if (!membership.hasAny(node->getParents())) (void)manager.setLevel(node, 0, false);

    std::size_t level = 0;
    for (std::size_t nextLevel = 0; level < manager.m_levels.size(); level = nextLevel) {
        const auto layer = manager.m_levels[level];
        const std::size_t size = layer->size();
        for (std::size_t i = 0; i < size; ++i) {
            const NodePtr node = (*layer)[i];
            if (!node) continue;
            looks += 1 + node->getChildren().size();
            if (isFirstTime && looks > looksAllowed) {
                const auto deepest = layerQuickly(manager, members, m_nodes.size(), m_progress);
                m_isCancelled = !deepest;
                nextLevel = deepest.value_or(0);
                TESSERA_CHECK(nextLevel <= m_nodes.size(), TESSERA_RAISE(cycleError()));
                return m_isCancelled ? error_code_t::false_code() : error_code_t();
            }
            for (const NodePtr& child : node->getChildren()) {
                if (!membership.has(child)) continue;
                nextLevel = level + 1;
                TESSERA_CHECK(nextLevel <= m_nodes.size(), TESSERA_RAISE(cycleError()));
                const error_code_t err = manager.setLevel(child, static_cast<std::int32_t>(nextLevel), true);
                TESSERA_CHECK(err.succeeded(), error_code_t::false_code());
            }
        }
        if (nextLevel == level) break;
    }
    removeFirstPlaceholders(manager);
    return {};
}

}  // namespace tessera_1::view_model
