// The looks of display types. Drawing, tooltips and the legend read them here.
#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "draw/read/diagram.h"
#include "draw/theme.h"

namespace tessera_draw {

// The sign of a display type: a shape and a colour, so that no meaning hangs on the colour alone.
enum class Symbol : std::uint8_t { none, disc, square, diamond, triangle, ring, cross };

struct TypeLook {
    Symbol symbol = Symbol::none;
    ColorRole accent = ColorRole::none;
};

// Gives each display type of a diagram a look, in the order in which the diagram's nodes first have it.
// Twelve types differ in both; further ones begin again. "none" and "" have no look.
class DisplayTypes {
  public:
    struct Entry {
        std::string_view type;
        TypeLook look;
    };

    DisplayTypes() = default;
    // The diagram's texts must outlive this.
    explicit DisplayTypes(const Diagram& diagram);

    [[nodiscard]] TypeLook lookOf(std::string_view type) const;
    [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return m_entries; }

  private:
    std::vector<Entry> m_entries;
    std::unordered_map<std::string_view, std::size_t> m_places;
};

}  // namespace tessera_draw
