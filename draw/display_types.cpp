#include "draw/display_types.h"

#include <array>

namespace tessera_draw {
namespace {

constexpr std::array marks = {Mark::disc,     Mark::square, Mark::diamond,
                              Mark::triangle, Mark::ring,   Mark::cross};
constexpr std::array accents = {Ink::accent1, Ink::accent2, Ink::accent3, Ink::accent4};
constexpr TypeLook interfaceLook = {Mark::ring, Ink::accent4};

bool isPlain(std::string_view type) {
    return type.empty() || type == "none";
}

// Of six shapes and four colours: the shapes start one colour later in their second round.
TypeLook lookAt(std::size_t place) {
    return {marks[place % marks.size()], accents[(place + place / 12) % accents.size()]};
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
    const auto found = m_places.find(type);
    return found == m_places.end() ? TypeLook{} : m_entries[found->second].look;
}

}  // namespace tessera_draw
