#include "core/view_model/hierarchical_level_manager.h"

#include <algorithm>

#include "core/check.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/hierarchical_level_manager");

using basekit2::error_code_t;

void HierarchicalLevelManager::addLevel() {
    m_levels.push_back(std::make_shared<Level>());
}

error_code_t HierarchicalLevelManager::setLevel(const std::shared_ptr<Node>& node, std::int32_t level,
                                                bool keepPlaceholder) {
    TESSERA_CHECK(level >= 0, TESSERA_RAISE(bk2::error::IsNot.Valid.Range(_U("The level is negative"))));
    const std::int32_t oldLevel = node->getHierarchicalLevel();
    if (level == oldLevel) return {};
    if (oldLevel >= 0) {
        TESSERA_CHECK(level > oldLevel,
                      TESSERA_RAISE(bk2::error::IsNot.Valid.Range(_U("The level is not a deeper one"))));
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wsign-compare"  // it is not negative
        TESSERA_CHECK(
            m_levels.size() > oldLevel,
            TESSERA_RAISE(bk2::error::IsNot.Valid.Range(_U("There is no layer of the node's level"))));
#pragma GCC diagnostic pop
        Level& layer = *m_levels[static_cast<std::size_t>(oldLevel)];
        const auto entry = std::find(layer.begin(), layer.end(), node);
        if (entry == layer.end()) TESSERA_CHECK(oldLevel == -1, error_code_t::false_code());
        if (keepPlaceholder)
            *entry = nullptr;
        else
            layer.erase(entry);
    }
    while (m_levels.size() <= static_cast<std::size_t>(level))
        addLevel();
    m_levels[static_cast<std::size_t>(level)]->push_back(node);
    node->setHierarchicalLevel(level);
    return {};
}

const std::int32_t* GroupLevels::find(std::string_view id) const {
    const std::uint32_t at = position(id);
    return at == IdIndex::nowhere ? nullptr : &m_places[at].level;
}

void GroupLevels::set(std::string_view id, std::int32_t level) {
    const std::uint32_t at = position(id);
    if (at == IdIndex::nowhere)
        append(id, level);
    else
        m_places[at].level = level;
}

void GroupLevels::append(std::string_view id, std::int32_t level) {
    m_places.push_back({m_ids.size(), static_cast<std::uint32_t>(id.size()), level});
    m_ids.append(id);
}

std::uint32_t GroupLevels::position(std::string_view id) const {
    if (m_indexed < m_places.size()) m_index.reserve(m_places.size());
    for (; m_indexed < m_places.size(); ++m_indexed)
        m_index.add(IdIndex::hashOf(idAt(m_places[m_indexed])), m_indexed);
    return m_index.find(id, IdIndex::hashOf(id), [this](std::uint32_t at) { return idAt(m_places[at]); });
}

void GroupLevels::clear() {
    *this = GroupLevels();
}

void GroupLevels::reserve(std::size_t count, std::size_t idBytes) {
    m_ids.reserve(idBytes);
    m_places.reserve(count);
}

void GroupLevelManager::setGroupLevel(const std::string& id, std::int32_t level) {
    m_groupLevels.set(id, level);
}

error_code_t GroupLevelManager::getGroupLevel(const std::string& id, std::int32_t& level) const {
    const std::int32_t* known = m_groupLevels.find(id);
    if (!known) return error_code_t::false_code();
    level = *known;
    return {};
}

}  // namespace tessera_1::view_model
