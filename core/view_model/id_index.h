// Tables by id that hold hundreds of thousands of entries.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessera_1::view_model {

// Finds positions in a list by the text that stands there: a hash table with open addressing that knows the
// texts' hashes only. Constant time on average.
class IdIndex {
  public:
    static constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

    static std::uint32_t hashOf(std::string_view id) noexcept {
        const std::size_t hash = std::hash<std::string_view>{}(id);
        return static_cast<std::uint32_t>(hash ^ (hash >> 32U));
    }

    // The position with that text, or `nowhere`. `textAt` answers the text at a position.
    template <class TextAt>
    [[nodiscard]] std::uint32_t find(std::string_view id, std::uint32_t hash, TextAt textAt) const {
        if (m_slots.empty()) return nowhere;
        for (std::size_t at = hash & mask();; at = (at + 1) & mask()) {
            const Slot& slot = m_slots[at];
            if (slot.position == nowhere) return nowhere;
            if (slot.hash == hash && textAt(slot.position) == id) return slot.position;
        }
    }

    // REQUIRES: its text is not there yet, and the position is not `nowhere`.
    void add(std::uint32_t hash, std::uint32_t position) {
        if (2 * (m_count + 1) > m_slots.size()) grow(std::max<std::size_t>(16, 2 * m_slots.size()));
        place({hash, position});
        ++m_count;
    }

    void reserve(std::size_t count) {
        std::size_t size = 16;
        while (size < 2 * count)
            size *= 2;
        if (size > m_slots.size()) grow(size);
    }

    void clear() {
        m_slots.clear();
        m_count = 0;
    }

  private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t position = nowhere;
    };

    [[nodiscard]] std::size_t mask() const noexcept { return m_slots.size() - 1; }

    void place(Slot slot) {
        std::size_t at = slot.hash & mask();
        while (m_slots[at].position != nowhere)
            at = (at + 1) & mask();
        m_slots[at] = slot;
    }

    void grow(std::size_t size) {
        std::vector<Slot> old(size);
        old.swap(m_slots);
        for (const Slot& slot : old)
            if (slot.position != nowhere) place(slot);
    }

    std::vector<Slot> m_slots;  // a power of two
    std::size_t m_count = 0;
};

// Shared objects by their m_id, walked by ascending byte order of the ids. Entries are added and replaced,
// never erased. Ids are not copied, so those of objects in the table must not change. Adding invalidates
// references and iterators.
template <class T>
class IdTable {
  public:
    struct Entry {
        std::string_view first;  // the id
        const std::shared_ptr<T>& second;
    };

    // Walks the entries by ascending id.
    class Iterator {
      public:
        Iterator(const IdTable& table, std::size_t place) : m_table(&table), m_place(place) {}

        Entry operator*() const {
            const std::uint32_t at = m_table->m_order[m_place];
            return {m_table->idAt(at), m_table->m_objects[at]};
        }
        Iterator& operator++() {
            ++m_place;
            return *this;
        }
        friend bool operator==(const Iterator&, const Iterator&) = default;

      private:
        const IdTable* m_table;
        std::size_t m_place;
    };

    [[nodiscard]] std::size_t size() const noexcept { return m_objects.size(); }
    [[nodiscard]] bool empty() const noexcept { return m_objects.empty(); }

    // The first walk after something was added puts the entries into order, in time n log n.
    [[nodiscard]] Iterator begin() const {
        putInOrder();
        return {*this, 0};
    }
    [[nodiscard]] Iterator end() const { return {*this, m_objects.size()}; }

    // What the entries hold, in no order that means anything.
    [[nodiscard]] const std::vector<std::shared_ptr<T>>& objects() const noexcept { return m_objects; }

    [[nodiscard]] bool contains(std::string_view id) const {
        return position(id, IdIndex::hashOf(id)) != IdIndex::nowhere;
    }
    // The object under `id`, or null.
    [[nodiscard]] std::shared_ptr<T> find(std::string_view id) const {
        const std::uint32_t at = position(id, IdIndex::hashOf(id));
        return at == IdIndex::nowhere ? nullptr : m_objects[at];
    }

    // Sets the entry of the object's id to it.
    void file(std::shared_ptr<T> object) {
        const std::uint32_t hash = IdIndex::hashOf(object->m_id);
        const std::uint32_t at = position(object->m_id, hash);
        if (at == IdIndex::nowhere)
            add(hash, std::move(object));
        else
            m_objects[at] = std::move(object);
    }
    // Makes sure that there is an entry of that id; a new one is null.
    void keep(const std::string& id) {
        const std::uint32_t hash = IdIndex::hashOf(id);
        if (position(id, hash) != IdIndex::nowhere) return;
        m_idsOfNull[static_cast<std::uint32_t>(m_objects.size())] = id;
        add(hash, nullptr);
    }

  private:
    [[nodiscard]] std::string_view idAt(std::uint32_t at) const {
        return m_objects[at] ? m_objects[at]->m_id : m_idsOfNull.at(at);
    }
    [[nodiscard]] std::uint32_t position(std::string_view id, std::uint32_t hash) const {
        return m_index.find(id, hash, [this](std::uint32_t at) { return idAt(at); });
    }

    void add(std::uint32_t hash, std::shared_ptr<T> object) {
        const auto at = static_cast<std::uint32_t>(m_objects.size());
        m_index.add(hash, at);
        m_objects.push_back(std::move(object));
        // Documents mostly come in the order of their ids.
        if (m_order.size() == at && (at == 0 || idAt(m_order.back()) < idAt(at))) m_order.push_back(at);
    }

    void putInOrder() const {
        if (m_order.size() == m_objects.size()) return;
        const auto byId = [this](std::uint32_t a, std::uint32_t b) { return idAt(a) < idAt(b); };
        const auto sorted = static_cast<std::ptrdiff_t>(m_order.size());
        for (std::size_t at = m_order.size(); at < m_objects.size(); ++at)
            m_order.push_back(static_cast<std::uint32_t>(at));
        std::sort(m_order.begin() + sorted, m_order.end(), byId);
        std::inplace_merge(m_order.begin(), m_order.begin() + sorted, m_order.end(), byId);
    }

    std::vector<std::shared_ptr<T>> m_objects;
    IdIndex m_index;
    mutable std::vector<std::uint32_t> m_order;  // by id; those added last may be missing
    std::map<std::uint32_t, std::string> m_idsOfNull;
};

}  // namespace tessera_1::view_model
