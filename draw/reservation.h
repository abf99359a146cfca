// Space that boxes reserve for the values that they may show later.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tessera_draw {

// Space for the rows of one node or label. Widths are in em (multiples of the font size), because the font
// size depends on where the rows are drawn. "regular" and "bold" are the weights that widths are measured in.
struct RowSpace {
    std::uint32_t rows = 0;  // number of rows; boxes limit it to what they can show
    double titleWidth = 0;   // of the title above the rows of a label, regular
    double nameWidth = 0;    // of the widest name of a row, regular
    double valueWidth = 0;   // of the widest value to expect, bold

    // Enlarges this so that what fits into `other` fits here too.
    void widen(const RowSpace& other) noexcept {
        rows = std::max(rows, other.rows);
        titleWidth = std::max(titleWidth, other.titleWidth);
        nameWidth = std::max(nameWidth, other.nameWidth);
        valueWidth = std::max(valueWidth, other.valueWidth);
    }

    friend bool operator==(const RowSpace&, const RowSpace&) = default;
};

// Space by the ids of nodes and links. A bag holds only the rows that have a value at the moment, but the
// document names all of them, in all display modes. A caller that has the document fills this from it; boxes
// then keep their sizes when values change.
//
// With a reservation, nodes and groups that it does not name reserve no rows. A label whose link it does not
// name reserves the usual space. Owns copies of the ids. Reading is safe from several threads.
class Reservation {
  public:
    // The part of a link that a label belongs to.
    enum class Place : std::uint8_t { from, center, to };

    // For the caller that fills it: the space of a node or group, of a label; inserted empty if absent.
    // References stay valid as long as the reservation, also when further entries are inserted.
    RowSpace& node(std::string_view id) { return at(m_nodes, id); }
    RowSpace& link(std::string_view id, Place place) { return placeOf(at(m_links, id), place); }

    // The width in em, bold, of the widest name of a display mode. The heading keeps space for it.
    static constexpr double usualModeWidth = 5.5;  // a word of nine letters
    void setModeWidth(double width) noexcept { m_modeWidth = width; }
    [[nodiscard]] double modeWidth() const noexcept { return m_modeWidth; }

    // Whether values can have changes, which stand below them.
    void setHasChanges(bool hasChanges) noexcept { m_hasChanges = hasChanges; }
    [[nodiscard]] bool hasChanges() const noexcept { return m_hasChanges; }

    // For layOut(). Ids are compared byte by byte. Constant time on average. Null when the id is absent. A
    // link that is present has all three places; those not set hold no rows.
    [[nodiscard]] const RowSpace* findNode(std::string_view id) const {
        const auto found = m_nodes.find(id);
        return found == m_nodes.end() ? nullptr : &found->second;
    }
    [[nodiscard]] const RowSpace* findLink(std::string_view id, Place place) const {
        const auto found = m_links.find(id);
        return found == m_links.end() ? nullptr : &placeOf(found->second, place);
    }

  private:
    // One for each Place.
    struct LinkSpaces {
        RowSpace from;
        RowSpace center;
        RowSpace to;
    };
    // Finds ids without copying them into strings.
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
    static auto placeOf(Spaces& spaces, Place place) -> decltype((spaces.from)) {
        return place == Place::from ? spaces.from : place == Place::to ? spaces.to : spaces.center;
    }

    double m_modeWidth = usualModeWidth;
    bool m_hasChanges = false;
    Table<RowSpace> m_nodes;
    Table<LinkSpaces> m_links;
};

}  // namespace tessera_draw
