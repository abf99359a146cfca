// Finds entries of an ordered table by id in constant time.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tessera_1::view_model {

// A hash index over a std::map from id to shared object. It refers to the table's own entries, so a changed
// entry is seen; an entry that was put into the table behind its back is found by searching the table.
// REQUIRES: entries are never erased from the table.
template <class T>
class IdIndex {
  public:
    using Table = std::map<std::string, std::shared_ptr<T>>;

    // Sets the entry `id` of `table` to `object`.
    void file(Table& table, const std::string& id, const std::shared_ptr<T>& object) {
        // Documents mostly come in the order of their ids, which needs no search for the place.
        const auto place = table.empty() || table.rbegin()->first < id ? table.end() : table.lower_bound(id);
        if (place != table.end() && place->first == id) {
            place->second = object;
            return;
        }
        const auto entry = table.emplace_hint(place, id, object);
        m_entries.emplace(entry->first, &entry->second);
    }

    // The object under `id`, or null.
    [[nodiscard]] std::shared_ptr<T> find(const Table& table, const std::string& id) const {
        if (const auto it = m_entries.find(id); it != m_entries.end()) return *it->second;
        if (m_entries.size() == table.size()) return nullptr;
        const auto it = table.find(id);
        return it == table.end() ? nullptr : it->second;
    }

  private:
    std::unordered_map<std::string_view, const std::shared_ptr<T>*> m_entries;
};

}  // namespace tessera_1::view_model
