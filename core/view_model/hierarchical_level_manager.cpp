#include "core/view_model/hierarchical_level_manager.h"

namespace tessera_1::view_model {

using basekit2::error_code_t;

void HierarchicalLevelManager::addLevel() {
    m_levels.push_back(std::make_shared<Level>());
}

void GroupLevelManager::setGroupLevel(const std::string& id, std::int32_t level) {
    m_groupLevels.insert_or_assign(id, level);
}

error_code_t GroupLevelManager::getGroupLevel(const std::string& id, std::int32_t& level) const {
    const auto it = m_groupLevels.find(id);
    if (it == m_groupLevels.end()) return error_code_t::false_code();
    level = it->second;
    return {};
}

}  // namespace tessera_1::view_model
