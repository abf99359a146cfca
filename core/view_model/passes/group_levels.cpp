// How deep every node is nested; the dump copies it to the nodes.
//
// Needs:  the nodes that the other passes make.
// Leaves: the group level manager holds the nesting depth of every node by id: 0 at top level.
// Order:  the last of the passes.
// Fails:  never in practice; a guard answers the false code.
#include "core/check.h"
#include "core/view_model/graph.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/graph");

using basekit2::error_code_t;

error_code_t Graph::setGroupLevels() {
    m_groupLevelManager.m_groupLevels.clear();
    std::size_t idBytes = 0;
    for (const auto& [id, node] : m_nodes.unordered())
        idBytes += id.size();
    m_groupLevelManager.m_groupLevels.reserve(m_nodes.size(), idBytes);
    for (const auto& [id, node] : m_nodes)
        if (node) m_groupLevelManager.setGroupLevel(node->m_id, 0);
    for (const auto& [id, node] : m_nodes) {
        if (!node || !node->isGroup() || node->m_group) continue;
        const error_code_t err = node->setGroupChildLevelGroup(m_groupLevelManager);
        TESSERA_CHECK(err.succeeded(), error_code_t::false_code());
    }
    return {};
}

}  // namespace tessera_1::view_model
