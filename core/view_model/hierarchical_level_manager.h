// Which layer of its group a node lies in, and how deep it is nested.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/export.h"
#include "core/view_model/id_index.h"
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
    // entry takes its place, so that a loop over that layer is not disturbed. A range error, reported, when
    // the level is negative or not deeper; the false code, reported, when the node is not where its level
    // says.
    basekit2::error_code_t setLevel(const std::shared_ptr<Node>& node, std::int32_t level,
                                    bool keepPlaceholder);

    // By layer, counted from 0; no null pointers. Empty before the layers are calculated.
    std::vector<std::shared_ptr<Level>> m_levels;
};

// Levels by id: a hash map that keeps all ids in one text. The hashes are computed when an id is first looked
// up, so that a caller who knows the numbers of the entries needs none. An id is shorter than 4 GiB.
class TESSERA_EXPORT GroupLevels {
  public:
    struct Entry {
        std::string_view first;  // the id
        std::int32_t second;     // its level
    };

    [[nodiscard]] std::size_t size() const noexcept { return m_places.size(); }
    // By number, which is the order in which the ids came.
    [[nodiscard]] Entry entry(std::size_t i) const { return {idAt(m_places[i]), m_places[i].level}; }
    // Null when the id is not known.
    [[nodiscard]] const std::int32_t* find(std::string_view id) const;
    void set(std::string_view id, std::int32_t level);
    // REQUIRES: the entry is there.
    void setAt(std::size_t i, std::int32_t level) { m_places[i].level = level; }
    // REQUIRES: there is no entry of that id.
    TESSERA_HIDDEN void append(std::string_view id, std::int32_t level);
    void clear();
    void reserve(std::size_t count, std::size_t idBytes);

  private:
    struct Place {
        std::size_t start;
        std::uint32_t size;
        std::int32_t level;
    };

    [[nodiscard]] std::string_view idAt(const Place& place) const {
        return std::string_view(m_ids).substr(place.start, place.size);
    }
    [[nodiscard]] TESSERA_HIDDEN std::uint32_t position(std::string_view id) const;

    std::string m_ids;
    std::vector<Place> m_places;
    mutable IdIndex m_index;  // of the first m_indexed places
    mutable std::uint32_t m_indexed = 0;
};

// Nesting depths by node id.
class TESSERA_EXPORT GroupLevelManager {
  public:
    // Sets the level of the id, known or not; nodes of one id share it. 0 is the top level.
    void setGroupLevel(const std::string& id, std::int32_t level);
    // The false code, and `level` left alone, when the id is not known.
    basekit2::error_code_t getGroupLevel(const std::string& id, std::int32_t& level) const;

    GroupLevels m_groupLevels;
};

}  // namespace tessera_1::view_model
