// How a tree of bags lies in memory. Private to the bag.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/basekit2/variant_bag.h"

namespace basekit2 {

// A name as the arena keeps it: its length, then in the following memory the bytes and a NUL.
struct variant_bag_t::name_t {
    std::uint32_t size;

    [[nodiscard]] std::string_view view() const noexcept {
        return {reinterpret_cast<const char*>(this) + sizeof(name_t), size};
    }
};

// A value in the list of its bag's values. Its text lies in the arena too, so no destructor of it is run.
struct variant_bag_t::value_node_t {
    value_node_t* next = nullptr;
    const name_t* name = nullptr;
    variant_t value;
};

// A child in the list of its bag's children, the bag itself included.
struct variant_bag_t::child_node_t {
    child_node_t* next = nullptr;
    const name_t* name;
    variant_bag_t bag;

    child_node_t(const name_t* n, arena_t* arena) noexcept : name(n), bag(arena) { bag.m_isRoot = false; }
};

// Hands out memory that lives until the arena ends; no destructor of what lies in it is run. The arena itself
// lies at the beginning of its first block, so that a small tree is one allocation.
class variant_bag_t::arena_t {
  public:
    using index_t = std::unordered_map<std::string_view, value_node_t*>;
    using indexes_t = std::unordered_map<const variant_bag_t*, index_t>;

    // `size` is how many bytes the first block should hold; 0 when the caller does not know.
    static arena_t* create(std::size_t size) {
        constexpr std::size_t smallest = 448;
        const std::size_t whole = sizeof(arena_t) + (size == 0 ? smallest : size);
        return new (::operator new(whole)) arena_t(whole);
    }
    // Ends the arena and everything that lies in it. Null is allowed.
    static void destroy(arena_t* arena) noexcept {
        if (arena == nullptr) return;
        arena->~arena_t();
        ::operator delete(arena);
    }

    // A new object, which lives as long as the arena. Its destructor is never run.
    template <class T, class... Args>
    T* make(Args&&... args) {
        return new (allocate(sizeof(T), alignof(T))) T(std::forward<Args>(args)...);
    }

    // A NUL-terminated copy.
    std::string_view copy(std::string_view text) {
        char* copy = static_cast<char*>(allocate(text.size() + 1, 1));
        if (!text.empty()) std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
        return {copy, text.size()};
    }

    // A name; the few that a large tree uses often are mostly stored once. While all fits into the first
    // block there is no cache.
    const name_t* copy_name(std::string_view name) {
        if (!m_names) {
            if (m_blocks == nullptr) return make_name(name);
            m_names = std::make_unique<name_cache_t>();
        }
        // One slot for each mix, overwritten by the next name that comes there.
        const std::size_t mix = name.empty() ? 0
                                             : static_cast<unsigned char>(name.front()) * 31U +
                                                   static_cast<unsigned char>(name.back()) * 7U + name.size();
        const name_t*& slot = (*m_names)[mix % m_names->size()];
        if (slot == nullptr || slot->view() != name) slot = make_name(name);
        return slot;
    }

    // Hash indexes of the bags that have many values.
    indexes_t& indexes() {
        if (!m_indexes) m_indexes = std::make_unique<indexes_t>();
        return *m_indexes;
    }

    // What make() and the copies take for a bag's values and children.
    static constexpr std::size_t sizeOfValue(std::string_view name, std::size_t textSize) noexcept {
        return sizeof(value_node_t) + alignof(value_node_t) + sizeOfName(name) + textSize + 1;
    }
    static constexpr std::size_t sizeOfChild(std::string_view name) noexcept {
        return sizeof(child_node_t) + alignof(child_node_t) + sizeOfName(name);
    }

  private:
    using name_cache_t = std::array<const name_t*, 64>;

    // A further block; its memory follows.
    struct block_t {
        block_t* next;
    };

    explicit arena_t(std::size_t whole)
        : m_free(reinterpret_cast<std::byte*>(this) + sizeof(arena_t)),
          m_end(reinterpret_cast<std::byte*>(this) + whole) {}
    ~arena_t() {
        while (m_blocks)
            ::operator delete(std::exchange(m_blocks, m_blocks->next));
    }

    static constexpr std::size_t sizeOfName(std::string_view name) noexcept {
        return sizeof(name_t) + alignof(name_t) + name.size() + 1;
    }

    const name_t* make_name(std::string_view name) {
        if (name.size() > std::numeric_limits<std::uint32_t>::max())
            throw std::length_error("name of a bag's value or child");
        auto* copy = static_cast<char*>(allocate(sizeof(name_t) + name.size() + 1, alignof(name_t)));
        auto* head = new (copy) name_t{static_cast<std::uint32_t>(name.size())};
        if (!name.empty()) std::memcpy(copy + sizeof(name_t), name.data(), name.size());
        copy[sizeof(name_t) + name.size()] = '\0';
        return head;
    }

    void* allocate(std::size_t size, std::size_t alignment) {
        const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(m_free) & (alignment - 1);
        std::byte* start = m_free + (misaligned == 0 ? 0 : alignment - misaligned);
        if (start > m_end || size > static_cast<std::size_t>(m_end - start)) start = newBlock(size);
        m_free = start + size;
        return start;
    }

    // Adds a block that can hold `size` bytes and returns its first one, aligned for anything.
    std::byte* newBlock(std::size_t size) {
        constexpr std::size_t largest = std::size_t{64} * 1024;
        constexpr std::size_t head = alignof(std::max_align_t);
        static_assert(sizeof(block_t) <= head);
        m_blockSize = std::min(m_blockSize * 4, largest);
        const std::size_t whole = head + std::max(size, m_blockSize);
        auto* block = new (::operator new(whole)) block_t{m_blocks};
        m_blocks = block;
        m_end = reinterpret_cast<std::byte*>(block) + whole;
        return reinterpret_cast<std::byte*>(block) + head;
    }

    std::byte* m_free;  // of the latest block
    std::byte* m_end;
    block_t* m_blocks = nullptr;    // all but the first, the latest first
    std::size_t m_blockSize = 512;  // of the latest; grows with each
    std::unique_ptr<name_cache_t> m_names;
    std::unique_ptr<indexes_t> m_indexes;
};

}  // namespace basekit2
