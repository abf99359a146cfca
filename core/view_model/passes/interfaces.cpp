// Checks that "interface" nodes are in the last layer of their group. Changes nothing.
//
// Needs:  the layers, dummies included.
// Leaves: the graph as it was.
// Order:  after the label dummies.
// Fails:  with the first group that has no layer, or the first interface that is not in its group's last one.
#include "core/check.h"
#include "core/view_model/graph.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

error_code_t Graph::addDummyNodesForInterfaces() {
    for (const auto& group : m_groups) {
        if (!group) continue;
        const auto maxLevel = static_cast<std::int32_t>(m_levelManagers[group].m_levels.size()) - 1;
        TESSERA_CHECK(maxLevel >= 0, error_code_t::false_code());
        for (const auto& node : group->m_groupChildren) {
            if (node->m_displayType != "interface") continue;
            TESSERA_CHECK(node->getHierarchicalLevel() == maxLevel, error_code_t::false_code());
        }
    }
    return {};
}

}  // namespace tessera_1::view_model
