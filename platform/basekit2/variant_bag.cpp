#include "platform/basekit2/variant_bag.h"

#include <utility>
#include <vector>

#include "platform/basekit2/variant_bag_storage.h"

namespace basekit2 {
namespace {

// Up to here a walk over the values beats a hash index.
constexpr std::uint32_t maxUnindexedValues = 16;

// Up to here a copy's memory is measured beforehand and allocated at once; larger copies grow like any tree.
constexpr std::size_t maxExactCopy = 4096;

}  // namespace

void variant_bag_t::value_iterator_t::next() noexcept {
    m_node = m_node->next;
}
std::string_view variant_bag_t::value_iterator_t::get_name() const noexcept {
    return m_node->name->view();
}
const variant_t& variant_bag_t::value_iterator_t::get_value() const noexcept {
    return m_node->value;
}

void variant_bag_t::iterator_t::next() noexcept {
    m_node = m_node->next;
}
std::string_view variant_bag_t::iterator_t::get_name() const noexcept {
    return m_node->name->view();
}
const variant_bag_t& variant_bag_t::iterator_t::get_value() const noexcept {
    return m_node->bag;
}

variant_bag_t::variant_bag_t(const variant_bag_t& other) {
    if (!other.is_empty()) m_arena = arena_t::create(other.content_size());
    copy_content(other);
}

// Moving a child bag copies it, which may run out of memory.
// NOLINTBEGIN(performance-noexcept-move-constructor,bugprone-exception-escape)
variant_bag_t::variant_bag_t(variant_bag_t&& other) {
    if (other.m_isRoot) {
        take(other);
        return;
    }
    variant_bag_t copy(std::as_const(other));
    take(copy);
}
// NOLINTEND(performance-noexcept-move-constructor,bugprone-exception-escape)

variant_bag_t& variant_bag_t::operator=(const variant_bag_t& other) {
    if (this == &other) return *this;
    variant_bag_t copy(other);
    if (m_isRoot) {
        take(copy);
        return *this;
    }
    // The source may be an ancestor: only now, with the copy complete, may this bag change.
    m_firstValue = m_lastValue = nullptr;
    m_firstChild = m_lastChild = nullptr;
    m_valueCount = 0;
    if (m_isIndexed) m_arena->indexes().erase(this);
    m_isIndexed = false;
    copy_content(copy);
    return *this;
}

// NOLINTBEGIN(performance-noexcept-move-constructor,bugprone-exception-escape)
variant_bag_t& variant_bag_t::operator=(variant_bag_t&& other) {
    if (this == &other) return *this;
    if (!m_isRoot || !other.m_isRoot) return *this = std::as_const(other);
    variant_bag_t taken(std::move(other));
    take(taken);
    return *this;
}
// NOLINTEND(performance-noexcept-move-constructor,bugprone-exception-escape)

variant_bag_t::~variant_bag_t() {
    if (m_isRoot) arena_t::destroy(m_arena);
}

// Exchanges everything but the places in memory; both are roots.
void variant_bag_t::take(variant_bag_t& other) noexcept {
    if (m_isIndexed || other.m_isIndexed) {  // an index is filed under its bag's address
        arena_t::index_t mine, theirs;
        if (m_isIndexed) mine = std::move(m_arena->indexes().extract(this).mapped());
        if (other.m_isIndexed) theirs = std::move(other.m_arena->indexes().extract(&other).mapped());
        if (m_isIndexed) m_arena->indexes().emplace(&other, std::move(mine));
        if (other.m_isIndexed) other.m_arena->indexes().emplace(this, std::move(theirs));
    }
    std::swap(m_arena, other.m_arena);
    std::swap(m_firstValue, other.m_firstValue);
    std::swap(m_lastValue, other.m_lastValue);
    std::swap(m_firstChild, other.m_firstChild);
    std::swap(m_lastChild, other.m_lastChild);
    std::swap(m_position, other.m_position);
    std::swap(m_valueCount, other.m_valueCount);
    std::swap(m_isIndexed, other.m_isIndexed);
}

variant_bag_t::arena_t& variant_bag_t::arena() {
    if (m_arena == nullptr) m_arena = arena_t::create(0);
    return *m_arena;
}

variant_bag_t::value_node_t* variant_bag_t::find_value(std::string_view name) const noexcept {
    if (m_isIndexed) {
        const arena_t::index_t& index = m_arena->indexes().find(this)->second;
        const auto it = index.find(name);
        return it == index.end() ? nullptr : it->second;
    }
    value_node_t* node = m_firstValue;
    while (node && node->name->view() != name)
        node = node->next;
    return node;
}

const variant_t* variant_bag_t::get(std::string_view name) const noexcept {
    const value_node_t* node = find_value(name);
    return node ? &node->value : nullptr;
}

std::string_view variant_bag_t::get_text(std::string_view name) const noexcept {
    const variant_t* value = get(name);
    return value && value->can_get<std::string_view>() ? value->get<std::string_view>() : std::string_view();
}

const variant_bag_t* variant_bag_t::get_variant_bag(std::string_view name) const noexcept {
    for (const child_node_t* node = m_firstChild; node; node = node->next)
        if (node->name->view() == name) return &node->bag;
    return nullptr;
}

// The node of the value called `name`: the present one, or a new one at the end.
variant_bag_t::value_node_t& variant_bag_t::value_for(std::string_view name) {
    if (value_node_t* present = find_value(name)) return *present;
    return add_value(name);
}

variant_bag_t::value_node_t& variant_bag_t::add_value(std::string_view name) {
    auto* node = arena().make<value_node_t>();
    node->name = m_arena->copy_name(name);
    (m_lastValue ? m_lastValue->next : m_firstValue) = node;
    m_lastValue = node;
    ++m_valueCount;
    if (m_isIndexed) {
        m_arena->indexes().find(this)->second.emplace(node->name->view(), node);
    } else if (m_valueCount > maxUnindexedValues) {
        arena_t::index_t& index = m_arena->indexes()[this];
        for (value_node_t* each = m_firstValue; each; each = each->next)
            index.emplace(each->name->view(), each);
        m_isIndexed = true;
    }
    return *node;
}

void variant_bag_t::put(std::string_view name, const variant_t& value) {
    if (value.can_get<std::string_view>()) {
        put_text(name, value.get<std::string_view>());
        return;
    }
    value_node_t& node = value_for(name);
    // Without text of their own, neither the old nor the new value needs a destructor.
    new (&node.value) variant_t(value);
}

void variant_bag_t::put_text(std::string_view name, std::string_view text) {
    // First, since `text` may lie in the value to be replaced.
    const std::string_view kept = arena().copy(text);
    value_node_t& node = value_for(name);
    new (&node.value) variant_t(variant_t::borrowed_t{}, kept);
}

void variant_bag_t::append(std::string_view name, const variant_t& value) {
    if (value.can_get<std::string_view>()) {
        append_text(name, value.get<std::string_view>());
        return;
    }
    new (&add_value(name).value) variant_t(value);
}

void variant_bag_t::append_text(std::string_view name, std::string_view text) {
    // The value borrows the arena's copy, so it is never destroyed by itself.
    const std::string_view kept = arena().copy(text);
    new (&add_value(name).value) variant_t(variant_t::borrowed_t{}, kept);
}

variant_bag_t& variant_bag_t::add_variant_bag(std::string_view name) {
    auto* node = arena().make<child_node_t>(m_arena->copy_name(name), m_arena);
    (m_lastChild ? m_lastChild->next : m_firstChild) = node;
    m_lastChild = node;
    return node->bag;
}

void variant_bag_t::copy_values(const variant_bag_t& other) {
    m_position = other.m_position;
    for (const value_node_t* node = other.m_firstValue; node; node = node->next)
        append(node->name->view(), node->value);
}

// An upper bound of the arena that a copy takes; 0 for a copy that is not measured.
std::size_t variant_bag_t::content_size() const {
    std::size_t size = 0;
    std::vector<const variant_bag_t*> open{this};
    while (!open.empty()) {
        const variant_bag_t& bag = *open.back();
        open.pop_back();
        for (const value_node_t* node = bag.m_firstValue; node; node = node->next)
            size += arena_t::sizeOfValue(node->name->view(), node->value.m_size);
        for (const child_node_t* node = bag.m_firstChild; node; node = node->next) {
            size += arena_t::sizeOfChild(node->name->view());
            if (!node->bag.is_empty()) open.push_back(&node->bag);
            if (size > maxExactCopy) return 0;
        }
    }
    return size;
}

void variant_bag_t::copy_content(const variant_bag_t& other) {
    copy_values(other);
    struct step_t {
        const child_node_t* source;  // the next child to copy
        variant_bag_t* target;       // into this bag
    };
    std::vector<step_t> open{{other.m_firstChild, this}};
    while (!open.empty()) {
        step_t& step = open.back();
        const child_node_t* source = step.source;
        if (source == nullptr) {
            open.pop_back();
            continue;
        }
        step.source = source->next;
        variant_bag_t& copy = step.target->add_variant_bag(source->name->view());
        copy.copy_values(source->bag);
        if (source->bag.m_firstChild) open.push_back({source->bag.m_firstChild, &copy});
    }
}

bool operator==(const variant_bag_t& a, const variant_bag_t& b) {
    std::vector<std::pair<const variant_bag_t*, const variant_bag_t*>> open{{&a, &b}};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        auto xv = x->begin_values();
        auto yv = y->begin_values();
        for (; !xv.at_end() && !yv.at_end(); xv.next(), yv.next())
            if (xv.get_name() != yv.get_name() || !(xv.get_value() == yv.get_value())) return false;
        auto xc = x->begin();
        auto yc = y->begin();
        for (; !xc.at_end() && !yc.at_end(); xc.next(), yc.next()) {
            if (xc.get_name() != yc.get_name()) return false;
            open.emplace_back(&xc.get_value(), &yc.get_value());
        }
        if (!xv.at_end() || !yv.at_end() || !xc.at_end() || !yc.at_end()) return false;
    }
    return true;
}

}  // namespace basekit2
