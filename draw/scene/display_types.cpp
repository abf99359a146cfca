#include "draw/scene/display_types.h"

#include <array>

namespace tessera_draw {
namespace {

constexpr std::array symbols = {Symbol::disc,     Symbol::square, Symbol::diamond,
                                Symbol::triangle, Symbol::ring,   Symbol::cross};
constexpr std::array accents = {ColorRole::accent1, ColorRole::accent2, ColorRole::accent3,
                                ColorRole::accent4};
constexpr TypeLook interfaceLook = {Symbol::ring, ColorRole::accent4};

bool isPlain(std::string_view type) {
    return type.empty() || type == "none";
}

// Six shapes and four colours give 12 pairs before they repeat; the next 12 shift the colours by one.
TypeLook lookAt(std::size_t place) {
    return {symbols[place % symbols.size()], accents[(place + place / 12) % accents.size()]};
}

}  // namespace

DisplayTypes::DisplayTypes(const Diagram& diagram) {
    std::size_t place = 0;
    for (const Node& node : diagram.nodes) {
        if (isPlain(node.displayType)) continue;
        if (!m_places.emplace(node.displayType, m_entries.size()).second) continue;
        const bool isInterface = node.displayType == "interface";
        m_entries.push_back({node.displayType, isInterface ? interfaceLook : lookAt(place)});
        if (!isInterface) ++place;
    }
}

TypeLook DisplayTypes::lookOf(std::string_view type) const {
    if (isPlain(type)) return {};  // most nodes
    const auto found = m_places.find(type);
    return found == m_places.end() ? TypeLook{} : m_entries[found->second].look;
}

}  // namespace tessera_draw
