// RowSpace that boxes keep for what they may come to show.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tessera_draw {

// RowSpace for rows. Widths are in em, so that they hold for any size of the text.
struct RowSpace {
    std::uint32_t rows = 0;
    double titleWidth = 0;  // of what stands over the rows of a label, regular
    double nameWidth = 0;   // of the widest name of a row, regular
    double valueWidth = 0;  // of the widest value to expect, bold

    // Makes it hold what `other` asks for as well.
    void widen(const RowSpace& other) noexcept {
        rows = std::max(rows, other.rows);
        titleWidth = std::max(titleWidth, other.titleWidth);
        nameWidth = std::max(nameWidth, other.nameWidth);
        valueWidth = std::max(valueWidth, other.valueWidth);
    }

    friend bool operator==(const RowSpace&, const RowSpace&) = default;
};

// A bag holds only the rows that have a value at the moment. Whoever knows the document knows all of them, in
// all display modes, and says so here; boxes then have the same size whatever they show. What is not named
// here shows nothing at any time and gets no room.
class Reservation {
  public:
    // Where on a link a label stands.
    enum class Place : std::uint8_t { from, center, to };

    // The room of a node or group, made when it is not there yet.
    RowSpace& node(std::string_view id) { return at(m_nodes, id); }
    RowSpace& link(std::string_view id, Place place) { return placeOf(at(m_links, id), place); }

    // Null when nothing is kept.
    [[nodiscard]] const RowSpace* findNode(std::string_view id) const {
        const auto found = m_nodes.find(id);
        return found == m_nodes.end() ? nullptr : &found->second;
    }
    [[nodiscard]] const RowSpace* findLink(std::string_view id, Place place) const {
        const auto found = m_links.find(id);
        return found == m_links.end() ? nullptr : &placeOf(found->second, place);
    }

  private:
    struct LinkSpaces {
        RowSpace from;
        RowSpace center;
        RowSpace to;
    };
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const noexcept {
            return std::hash<std::string_view>{}(text);
        }
    };
    template <typename Value>
    using Table = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

    template <typename Value>
    static Value& at(Table<Value>& table, std::string_view id) {
        const auto found = table.find(id);
        return found != table.end() ? found->second : table[std::string(id)];
    }
    template <typename Spaces>
    static auto placeOf(Spaces& rooms, Place place) -> decltype((rooms.from)) {
        return place == Place::from ? rooms.from : place == Place::to ? rooms.to : rooms.center;
    }

    Table<RowSpace> m_nodes;
    Table<LinkSpaces> m_links;
};

}  // namespace tessera_draw
