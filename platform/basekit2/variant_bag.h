// The host's property bag: an ordered tree of named values and named child bags.
//
// Documents, requests and results are bags. An element of a document is a child bag, an attribute is a string
// value, an element's own text is the value under the name "". In results, a bag with the string value
// "arrayOf" = N is an array: its children called N are the members.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/basekit2/variant.h"
#include "platform/export.h"

namespace basekit2 {

// Where an element of a document begins: line and column counted from 1, columns in characters. Line 0 means
// that it comes from no document.
struct source_position_t {
    std::uint32_t line = 0;
    std::uint32_t column = 0;

    friend bool operator==(const source_position_t&, const source_position_t&) = default;
};

// Values keep the order in which they were put and have distinct names; child bags keep their order and may
// share names. All bags of one tree live in one arena that belongs to the root: building costs time and
// memory in proportion to what is put in, copying and destroying likewise, at any depth and without
// recursion. References and iterators stay valid while further values and children are added, and as long as
// the root lives; assigning to a bag invalidates those into it. Nothing can be removed. What overwritten or
// replaced content occupied is given back with the root.
//
// Several threads may read one tree at once; whoever changes it must be alone.
class TESSERA_PLATFORM_EXPORT variant_bag_t {
    struct name_t;
    struct value_node_t;
    struct child_node_t;
    class arena_t;

  public:
    // Walks the values in the order in which they were put. A small value, copied freely; refers to the bag.
    // Every member but at_end() REQUIRES: !at_end(). Names are valid as long as the root, and NUL-terminated.
    class TESSERA_PLATFORM_EXPORT value_iterator_t {
      public:
        [[nodiscard]] bool at_end() const noexcept { return m_node == nullptr; }
        void next() noexcept;
        [[nodiscard]] std::string_view get_name() const noexcept;
        [[nodiscard]] const variant_t& get_value() const noexcept;

      private:
        friend class variant_bag_t;
        explicit value_iterator_t(const value_node_t* node) noexcept : m_node(node) {}
        const value_node_t* m_node;
    };

    // Walks the child bags in their order, in the same way.
    class TESSERA_PLATFORM_EXPORT iterator_t {
      public:
        [[nodiscard]] bool at_end() const noexcept { return m_node == nullptr; }
        void next() noexcept;
        [[nodiscard]] std::string_view get_name() const noexcept;
        [[nodiscard]] const variant_bag_t& get_value() const noexcept;

      private:
        friend class variant_bag_t;
        explicit iterator_t(const child_node_t* node) noexcept : m_node(node) {}
        const child_node_t* m_node;
    };

    // An empty root; allocates nothing.
    variant_bag_t() noexcept = default;
    // A deep copy: a root with a tree of its own, also of a child bag; positions are copied too.
    variant_bag_t(const variant_bag_t& other);
    // Takes over the content of a root, which is empty afterwards; the content of a child bag is copied,
    // because its tree keeps it.
    variant_bag_t(variant_bag_t&& other);  // NOLINT(performance-noexcept-move-constructor): may copy
    // Replaces this bag's content and position. `other` may be a part of this tree or contain it.
    variant_bag_t& operator=(const variant_bag_t& other);
    variant_bag_t& operator=(variant_bag_t&& other);  // NOLINT(performance-noexcept-move-constructor)
    // Of a root: ends the whole tree, at any depth without recursion.
    ~variant_bag_t();

    // True when there is neither a value nor a child; an empty child counts as one.
    [[nodiscard]] bool is_empty() const noexcept {
        return m_firstValue == nullptr && m_firstChild == nullptr;
    }

    // The value under `name` (compared byte by byte), or null. The bag owns it. Constant time on average.
    [[nodiscard]] const variant_t* get(std::string_view name) const noexcept;
    // The string under `name`, or "" when there is no value of that name or it is not a string. Valid until
    // the value is overwritten or the tree ends; a NUL byte follows it. Constant time on average.
    [[nodiscard]] std::string_view get_text(std::string_view name) const noexcept;
    // The first child called `name`, or null; the tree owns it. Time grows with the number of children: to
    // visit them all, iterate.
    [[nodiscard]] const variant_bag_t* get_variant_bag(std::string_view name) const noexcept;

    // Both at the first entry, or at the end when there is none:
    //     for (auto it = bag.begin(); !it.at_end(); it.next()) ...
    [[nodiscard]] iterator_t begin() const noexcept { return iterator_t(m_firstChild); }
    [[nodiscard]] value_iterator_t begin_values() const noexcept { return value_iterator_t(m_firstValue); }
    // The number of distinct names under which there are values; children do not count.
    [[nodiscard]] std::size_t value_count() const noexcept { return m_valueCount; }

    // Stores a copy of a value under `name` ("" is a name, too); a name that is there already keeps its place
    // and takes the new value. `name` and `text` may be parts of this tree. They throw std::length_error
    // from 4 GiB on.
    void put(std::string_view name, const variant_t& value);
    void put(std::string_view name, std::string_view text) { put_text(name, text); }
    void put(std::string_view name, const std::string& text) { put_text(name, text); }
    void put(std::string_view name, const char* text) { put_text(name, text); }

    // Stores a value like put(), without looking for the name: for writers that use each name once. REQUIRES:
    // this bag has no value called `name`.
    void append(std::string_view name, const variant_t& value);
    void append_text(std::string_view name, std::string_view text);

    // Adds an empty child called `name` after the others, whether or not there is one of that name, and
    // returns it; it belongs to this tree. Throws std::length_error for a name of 4 GiB and more.
    variant_bag_t& add_variant_bag(std::string_view name);

    // The place in the document that this element was read from, for messages; set by the reader.
    [[nodiscard]] source_position_t position() const noexcept { return m_position; }
    void set_position(source_position_t position) noexcept { m_position = position; }

    // Same values in the same order and same children in the same order; positions do not count.
    friend TESSERA_PLATFORM_EXPORT bool operator==(const variant_bag_t& a, const variant_bag_t& b);

  private:
    explicit variant_bag_t(arena_t* arena) noexcept : m_arena(arena) {}

    arena_t& arena();
    value_node_t* find_value(std::string_view name) const noexcept;
    value_node_t& value_for(std::string_view name);
    value_node_t& add_value(std::string_view name);
    void put_text(std::string_view name, std::string_view text);
    [[nodiscard]] std::size_t content_size() const;
    void copy_values(const variant_bag_t& other);
    void copy_content(const variant_bag_t& other);
    void take(variant_bag_t& other) noexcept;

    arena_t* m_arena = nullptr;  // of the root; null in an empty root
    value_node_t* m_firstValue = nullptr;
    value_node_t* m_lastValue = nullptr;
    child_node_t* m_firstChild = nullptr;
    child_node_t* m_lastChild = nullptr;
    source_position_t m_position;
    std::uint32_t m_valueCount = 0;
    bool m_isRoot = true;
    bool m_isIndexed = false;  // the arena holds a hash index of the values
};

}  // namespace basekit2
