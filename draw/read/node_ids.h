// Finds nodes by their ids: a hash table that is filled once, with open addressing.
#pragma once

#include <bit>
#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

#include "draw/read/diagram.h"

namespace tessera_draw {

// Of several nodes with one id, the last is found. The id "" is never found. Keeps a reference to the list:
// it must outlive this object, and its ids must not change. Not changed by find(), so any number of threads
// may search at the same time.
class NodeIds {
  public:
    explicit NodeIds(const std::vector<Node>& nodes) : NodeIds(nodes, [](Index) { return true; }) {}

    // Only nodes for which `counts`, called with their indices, returns true.
    template <class Counts>
    NodeIds(const std::vector<Node>& nodes, Counts counts)
        : m_nodes(&nodes), m_entries(std::bit_ceil(nodes.size() * 2 + 1)) {
        for (Index i = 0; i < nodes.size(); ++i)
            if (!nodes[i].id.empty() && counts(i)) {
                const std::size_t hash = std::hash<std::string_view>()(nodes[i].id);
                m_entries[placeOf(nodes[i].id, hash)] = {hash, i};
            }
    }

    // The index of the node with this id, or `nothing`. Constant time on average.
    [[nodiscard]] Index find(std::string_view id) const {
        return id.empty() ? nothing : m_entries[placeOf(id, std::hash<std::string_view>()(id))].node;
    }

  private:
    struct Entry {
        std::size_t hash = 0;
        Index node = nothing;
    };

    // The entry of the id, or the free entry where it would be. Ends because at
    // least half of the entries are free.
    [[nodiscard]] std::size_t placeOf(std::string_view id, std::size_t hash) const {
        const std::size_t mask = m_entries.size() - 1;
        std::size_t place = hash & mask;
        while (m_entries[place].node != nothing &&
               (m_entries[place].hash != hash || (*m_nodes)[m_entries[place].node].id != id))
            place = (place + 1) & mask;
        return place;
    }

    const std::vector<Node>* m_nodes;
    std::vector<Entry> m_entries;
};

}  // namespace tessera_draw
