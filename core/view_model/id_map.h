// Shared objects by id, in ascending byte order of the ids.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "core/view_model/id_index.h"

namespace tessera_1::view_model {

// Takes the place of std::map<std::string, std::shared_ptr<T>>, which took twice as long on diagrams of
// thousands of nodes. It offers that map's reading and writing interface and converts from and to it.
// Entries are found by hash, in constant time. The order is computed by the first walk after an insertion,
// in time n log n. References and iterators stay valid until their entry is erased, as with std::map.
// Used by one thread at a time, for reading too.
template <class T>
class IdMap {
  private:
    template <bool isConst>
    class Iterator;

  public:
    using Standard = std::map<std::string, std::shared_ptr<T>>;
    using key_type = std::string;
    using mapped_type = std::shared_ptr<T>;
    using value_type = std::pair<const std::string, std::shared_ptr<T>>;
    using key_compare = std::less<std::string>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = value_type&;
    using const_reference = const value_type&;
    using iterator = Iterator<false>;
    using const_iterator = Iterator<true>;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;

    IdMap() = default;
    IdMap(std::initializer_list<value_type> entries) { insert(entries.begin(), entries.end()); }
    template <class Input>
    IdMap(Input first, Input last) {
        insert(first, last);
    }
    // NOLINTBEGIN(google-explicit-constructor): either is used where the other is wanted
    IdMap(const Standard& entries) { insert(entries.begin(), entries.end()); }
    operator Standard() const { return Standard(begin(), end()); }
    // NOLINTEND(google-explicit-constructor)

    [[nodiscard]] iterator begin() { return {this, first()}; }
    [[nodiscard]] const_iterator begin() const { return {this, first()}; }
    [[nodiscard]] const_iterator cbegin() const { return begin(); }
    [[nodiscard]] iterator end() { return {this, IdIndex::nowhere}; }
    [[nodiscard]] const_iterator end() const { return {this, IdIndex::nowhere}; }
    [[nodiscard]] const_iterator cend() const { return end(); }
    [[nodiscard]] reverse_iterator rbegin() { return reverse_iterator(end()); }
    [[nodiscard]] const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    [[nodiscard]] const_reverse_iterator crbegin() const { return rbegin(); }
    [[nodiscard]] reverse_iterator rend() { return reverse_iterator(begin()); }
    [[nodiscard]] const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
    [[nodiscard]] const_reverse_iterator crend() const { return rend(); }

    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    [[nodiscard]] size_type size() const noexcept { return m_entries.size() - m_erased.size(); }
    [[nodiscard]] size_type max_size() const noexcept { return IdIndex::nowhere; }
    [[nodiscard]] key_compare key_comp() const { return {}; }

    [[nodiscard]] iterator find(std::string_view id) { return {this, position(id)}; }
    [[nodiscard]] const_iterator find(std::string_view id) const { return {this, position(id)}; }
    [[nodiscard]] bool contains(std::string_view id) const { return position(id) != IdIndex::nowhere; }
    [[nodiscard]] size_type count(std::string_view id) const { return contains(id) ? 1 : 0; }
    // Throws std::out_of_range when there is no such entry.
    [[nodiscard]] mapped_type& at(std::string_view id) {
        return const_cast<mapped_type&>(std::as_const(*this).at(id));
    }
    [[nodiscard]] const mapped_type& at(std::string_view id) const {
        static const Standard none;
        const std::uint32_t found = position(id);
        return found == IdIndex::nowhere ? none.at(std::string(id)) : m_entries[found].second;
    }
    mapped_type& operator[](std::string_view id) { return try_emplace(id).first->second; }

    [[nodiscard]] iterator lower_bound(std::string_view id) { return {this, positionAt(placeOf(id))}; }
    [[nodiscard]] const_iterator lower_bound(std::string_view id) const {
        return {this, positionAt(placeOf(id))};
    }
    [[nodiscard]] iterator upper_bound(std::string_view id) { return {this, positionAt(placeAfter(id))}; }
    [[nodiscard]] const_iterator upper_bound(std::string_view id) const {
        return {this, positionAt(placeAfter(id))};
    }
    [[nodiscard]] std::pair<iterator, iterator> equal_range(std::string_view id) {
        return {lower_bound(id), upper_bound(id)};
    }
    [[nodiscard]] std::pair<const_iterator, const_iterator> equal_range(std::string_view id) const {
        return {lower_bound(id), upper_bound(id)};
    }

    // Adds an entry of that id, unless there is one, made from the arguments.
    template <class... Args>
    std::pair<iterator, bool> try_emplace(std::string_view id, Args&&... args) {
        const std::uint32_t hash = IdIndex::hashOf(id);
        const std::uint32_t found = position(id, hash);
        if (found != IdIndex::nowhere) return {iterator(this, found), false};
        return {iterator(this, add(hash, id, mapped_type(std::forward<Args>(args)...))), true};
    }
    template <class Object>
    std::pair<iterator, bool> insert_or_assign(std::string_view id, Object&& object) {
        const auto result = try_emplace(id);
        result.first->second = std::forward<Object>(object);
        return result;
    }
    std::pair<iterator, bool> insert(const value_type& entry) {
        return try_emplace(entry.first, entry.second);
    }
    std::pair<iterator, bool> insert(value_type&& entry) {
        return try_emplace(entry.first, std::move(entry.second));
    }
    iterator insert(const_iterator /*hint*/, const value_type& entry) { return insert(entry).first; }
    template <class Input>
    void insert(Input first, Input last) {
        for (; first != last; ++first)
            insert(*first);
    }
    void insert(std::initializer_list<value_type> entries) { insert(entries.begin(), entries.end()); }
    template <class... Args>
    std::pair<iterator, bool> emplace(Args&&... args) {
        return insert(value_type(std::forward<Args>(args)...));
    }
    template <class... Args>
    iterator emplace_hint(const_iterator /*hint*/, Args&&... args) {
        return emplace(std::forward<Args>(args)...).first;
    }

    // Linear time. The overloads with iterators return the one after.
    size_type erase(std::string_view id) {
        const const_iterator entry = std::as_const(*this).find(id);
        if (entry == end()) return 0;
        erase(entry);
        return 1;
    }
    iterator erase(iterator entry) { return erase(const_iterator(entry)); }
    iterator erase(const_iterator entry) {
        putInOrder();
        const std::size_t place = placeOf(entry->first);
        const std::uint32_t position = m_order[place];
        m_order.erase(m_order.begin() + static_cast<difference_type>(place));
        m_index.remove(IdIndex::hashOf(entry->first), position);
        replace(position, {}, nullptr);
        m_erased.push_back(position);
        ++m_changes;
        return {this, positionAt(place)};
    }
    iterator erase(const_iterator first, const_iterator last) {
        while (first != last)
            first = erase(first);
        return {this, first.m_position};
    }
    void clear() { *this = IdMap(); }
    void swap(IdMap& other) noexcept { std::swap(*this, other); }

    friend bool operator==(const IdMap& a, const IdMap& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
    }

    // Every object, null ones and those of erased entries (null) included, in no particular order. Needs no
    // sorting.
    [[nodiscard]] const std::deque<value_type>& unordered() const noexcept { return m_entries; }

  private:
    // Knows its entry's position, and its place in the order while nothing has been added or erased.
    template <bool isConst>
    class Iterator {
        using Map = std::conditional_t<isConst, const IdMap, IdMap>;

      public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = IdMap::value_type;
        using difference_type = std::ptrdiff_t;
        using reference = std::conditional_t<isConst, const value_type&, value_type&>;
        using pointer = std::conditional_t<isConst, const value_type*, value_type*>;

        Iterator() = default;
        template <bool isOtherConst>
        requires(isConst && !isOtherConst)
            // NOLINTNEXTLINE(google-explicit-constructor): as with any container
            Iterator(const Iterator<isOtherConst>& other)
            : m_map(other.m_map), m_position(other.m_position) {}

        reference operator*() const { return m_map->m_entries[m_position]; }
        pointer operator->() const { return &**this; }
        Iterator& operator++() { return moveTo(place() + 1); }
        Iterator& operator--() { return moveTo(place() - 1); }
        Iterator operator++(int) { return std::exchange(*this, std::next(*this)); }
        Iterator operator--(int) { return std::exchange(*this, std::prev(*this)); }
        friend bool operator==(const Iterator& a, const Iterator& b) { return a.m_position == b.m_position; }

      private:
        friend class IdMap;
        template <bool>
        friend class Iterator;

        Iterator(Map* map, std::uint32_t position) : m_map(map), m_position(position) {}

        std::size_t place() {
            m_map->putInOrder();
            if (m_position == IdIndex::nowhere) return m_map->m_order.size();
            return m_changes == m_map->m_changes ? m_place : m_map->placeOf((**this).first);
        }
        Iterator& moveTo(std::size_t place) {
            m_place = place;
            m_changes = m_map->m_changes;
            m_position = m_map->positionAt(place);
            return *this;
        }

        Map* m_map = nullptr;
        std::uint32_t m_position = IdIndex::nowhere;
        std::size_t m_place = 0;
        std::uint64_t m_changes = ~std::uint64_t{0};  // of the map when m_place was right
    };

    [[nodiscard]] std::uint32_t position(std::string_view id) const {
        return position(id, IdIndex::hashOf(id));
    }
    [[nodiscard]] std::uint32_t position(std::string_view id, std::uint32_t hash) const {
        return m_index.find(id, hash,
                            [this](std::uint32_t at) { return std::string_view(m_entries[at].first); });
    }

    [[nodiscard]] std::uint32_t first() const {
        putInOrder();
        return positionAt(0);
    }
    [[nodiscard]] std::uint32_t positionAt(std::size_t place) const {
        return place < m_order.size() ? m_order[place] : IdIndex::nowhere;
    }
    // Of the first entry whose id is not less, or greater.
    [[nodiscard]] std::size_t placeOf(std::string_view id) const {
        putInOrder();
        const auto place = std::lower_bound(
            m_order.begin(), m_order.end(), id,
            [this](std::uint32_t at, std::string_view than) { return m_entries[at].first < than; });
        return static_cast<std::size_t>(place - m_order.begin());
    }
    [[nodiscard]] std::size_t placeAfter(std::string_view id) const {
        return placeOf(id) + (contains(id) ? 1 : 0);
    }

    void replace(std::uint32_t at, std::string_view id, mapped_type object) {
        std::destroy_at(&m_entries[at]);
        std::construct_at(&m_entries[at], std::string(id), std::move(object));
    }

    std::uint32_t add(std::uint32_t hash, std::string_view id, mapped_type object) {
        auto at = static_cast<std::uint32_t>(m_entries.size());
        if (m_erased.empty()) {
            m_entries.emplace_back(std::string(id), std::move(object));
        } else {
            at = m_erased.back();
            replace(at, id, std::move(object));
            m_erased.pop_back();
        }
        m_index.add(hash, at);
        // Documents mostly come in the order of their ids.
        const bool isLast = m_unordered.empty() && (m_order.empty() || m_entries[m_order.back()].first < id);
        (isLast ? m_order : m_unordered).push_back(at);
        ++m_changes;
        return at;
    }

    void putInOrder() const {
        if (m_unordered.empty()) return;
        const auto byId = [this](std::uint32_t a, std::uint32_t b) {
            return m_entries[a].first < m_entries[b].first;
        };
        std::sort(m_unordered.begin(), m_unordered.end(), byId);
        const auto sorted = static_cast<difference_type>(m_order.size());
        m_order.insert(m_order.end(), m_unordered.begin(), m_unordered.end());
        std::inplace_merge(m_order.begin(), m_order.begin() + sorted, m_order.end(), byId);
        m_unordered.clear();
    }

    std::deque<value_type> m_entries;  // each stays where it is
    std::vector<std::uint32_t> m_erased;
    IdIndex m_index;
    mutable std::vector<std::uint32_t> m_order;      // positions by id
    mutable std::vector<std::uint32_t> m_unordered;  // those added since
    std::uint64_t m_changes = 0;                     // how often entries were added or erased
};

}  // namespace tessera_1::view_model
