// Which layer of its group a node lies in, and how deep it is nested.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/export.h"
#include "core/view_model/node.h"
#include "platform/basekit2/error_code.h"

namespace tessera_1::view_model {

// The layers of one group, each in placement order. A layer may hold null entries where nodes have moved
// away.
class TESSERA_EXPORT HierarchicalLevelManager {
  public:
    using Level = std::vector<std::shared_ptr<Node>>;

    // Appends an empty layer.
    void addLevel();
    // Puts the node at the end of layer `level`, making layers as needed, and records the level on it. A node
    // that is in a layer already leaves it, and may only go to a deeper one; with `keepPlaceholder` a null
    // entry stays behind, so that whoever reads that layer is not disturbed. A range error, reported, when
    // the level is negative or not deeper; the false code, reported, when the node is not where its level
    // says.
    basekit2::error_code_t setLevel(const std::shared_ptr<Node>& node, std::int32_t level,
                                    bool keepPlaceholder);

    std::vector<std::shared_ptr<Level>> m_levels;
};

// Nesting depths by node id.
class TESSERA_EXPORT GroupLevelManager {
  public:
    void setGroupLevel(const std::string& id, std::int32_t level);
    // The false code, and `level` left alone, when the id is not known.
    basekit2::error_code_t getGroupLevel(const std::string& id, std::int32_t& level) const;

    std::unordered_map<std::string, std::int32_t> m_groupLevels;
};

}  // namespace tessera_1::view_model
