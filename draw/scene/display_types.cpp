#include "draw/scene/display_types.h"

#include <algorithm>
#include <array>

namespace tessera_draw {
namespace {

constexpr std::array symbols = {Symbol::disc,     Symbol::square, Symbol::diamond,
                                Symbol::triangle, Symbol::ring,   Symbol::cross};
constexpr std::array accents = {ColorRole::accent1, ColorRole::accent2, ColorRole::accent3,
                                ColorRole::accent4};
// The types that drawings know by name. All others are marked in turn.
constexpr std::array<TypeRule, 3> rules = {{
    {"", {}, BoxRole::card, false},
    {"none", {}, BoxRole::card, false},
    {"interface", {Symbol::ring, ColorRole::accent4}, BoxRole::interfaceCard, true},
}};
constexpr TypeRule otherTypes = {"", {}, BoxRole::card, false};

// Six shapes and four colours give 12 pairs before they repeat; the next 12 shift the colours by one.
TypeLook lookAt(std::size_t place) {
    return {symbols[place % symbols.size()], accents[(place + place / 12) % accents.size()]};
}

}  // namespace

const TypeRule& ruleOf(std::string_view type) noexcept {
    const auto* const rule =
        std::find_if(rules.begin(), rules.end(), [&](const TypeRule& each) { return each.type == type; });
    return rule == rules.end() ? otherTypes : *rule;
}

bool isMarked(std::string_view type) noexcept {
    const TypeRule& rule = ruleOf(type);
    return &rule == &otherTypes || rule.look.symbol != Symbol::none;
}

DisplayTypes::DisplayTypes(const Diagram& diagram) {
    std::size_t place = 0;
    for (const Node& node : diagram.nodes) {
        if (!isMarked(node.displayType)) continue;
        if (!m_places.emplace(node.displayType, m_entries.size()).second) continue;
        const TypeLook& known = ruleOf(node.displayType).look;
        m_entries.push_back({node.displayType, known.symbol != Symbol::none ? known : lookAt(place++)});
    }
}

TypeLook DisplayTypes::lookOf(std::string_view type) const {
    if (!isMarked(type)) return {};  // most nodes
    const auto found = m_places.find(type);
    return found == m_places.end() ? TypeLook{} : m_entries[found->second].look;
}

}  // namespace tessera_draw
