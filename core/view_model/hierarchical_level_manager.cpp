#include "core/view_model/hierarchical_level_manager.h"

#include <algorithm>

#include "core/check.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/hierarchical_level_manager");

using basekit2::error_code_t;

namespace {

// The node's first entry in the layer, or the layer's end.
HierarchicalLevelManager::Level::iterator findIn(HierarchicalLevelManager::Level& layer, const Node& node) {
    const std::size_t hint = node.m_hints.inLayer;
    if (!node.m_hints.mayBeInLayersTwice && hint < layer.size() && layer[hint].get() == &node)
        return layer.begin() + static_cast<std::ptrdiff_t>(hint);
    return std::find_if(layer.begin(), layer.end(), [&](const auto& entry) { return entry.get() == &node; });
}

}  // namespace

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
        const auto entry = findIn(layer, *node);
        if (entry == layer.end()) TESSERA_CHECK(oldLevel == -1, error_code_t::false_code());
        if (keepPlaceholder)
            *entry = nullptr;
        else
            layer.erase(entry);
    }
    while (m_levels.size() <= static_cast<std::size_t>(level))
        addLevel();
    Level& layer = *m_levels[static_cast<std::size_t>(level)];
    Node::Hints& hints = node->m_hints;
    if (oldLevel < 0 && hints.isInSomeLayer) hints.mayBeInLayersTwice = true;
    hints.isInSomeLayer = true;
    hints.inLayer = layer.size();
    layer.push_back(node);
    node->setHierarchicalLevel(level);
    return {};
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
