// The looks of display types, for cards, groups and the legend.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "draw/read/diagram.h"
#include "draw/theme.h"

namespace tessera_draw {

// The shape of a type's symbol. Types differ in shape as well as in colour, for readers who see few hues.
// Those from `alert` on are signs of levels, and differ from the symbols of types by a hole or by their outline.
enum class Symbol : std::uint8_t {
    none,
    disc,
    square,
    diamond,
    triangle,
    ring,
    cross,
    alert,    // an octagon with an exclamation mark: critical
    caution,  // a triangle with one: warning
    check,    // a disc with a check mark: good
    star,     // the document's own levels, in turn
    flag,
    hexagon,
    window,
    rhombus,
    pentagon,
};

// How a display type is marked. The default has no symbol and no colour.
struct TypeLook {
    Symbol symbol = Symbol::none;
    ColorRole accent = ColorRole::none;
};

// What drawings know of a display type by its name.
struct TypeRule {
    std::string_view type;  // compared byte by byte
    TypeLook look;          // without a symbol: the type is not marked
    BoxRole card = BoxRole::card;
    bool isAtBorder = false;  // its nodes stand at the border of their group
};

// The rule of the type; for a type of the document's own, one that has a plain card and no look yet.
[[nodiscard]] const TypeRule& ruleOf(std::string_view type) noexcept;

// Whether nodes of this type have a symbol, a bar and an entry in the legend. "none" and "" have not.
[[nodiscard]] bool isMarked(std::string_view type) noexcept;

// Gives each display type of a diagram a look, in the order in which the types first occur among its nodes.
// Types with a rule always have the look of their rule. They and the first 22 other types all differ; later ones
// repeat looks.
class DisplayTypes {
  public:
    // A type, as the document spells it, and how it is marked.
    struct Entry {
        std::string_view type;
        TypeLook look;
    };

    DisplayTypes() = default;
    // Keeps views: the diagram's texts must outlive this object.
    explicit DisplayTypes(const Diagram& diagram);

    // Constant time. Returns the default look for a type that the diagram lacks.
    [[nodiscard]] TypeLook lookOf(std::string_view type) const;
    // The types with a look, in order of first occurrence, for the legend.
    [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return m_entries; }

  private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string_view, std::size_t> m_places;
};

}  // namespace tessera_draw
