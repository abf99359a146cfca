// Which display info is shown in which display mode.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/export.h"

namespace tessera_1::view_model {

class DisplayInfo;

// Display infos by the name of the display mode that shows them; an entry without display info stands for
// "nothing to show". A hash map that has no memory of its own while it has no entry but one of that kind:
// every link has three tables, and most never get further. Used by one thread at a time, for reading too.
class TESSERA_EXPORT DataTransferTable {
  public:
    using Map = std::unordered_map<std::string, std::shared_ptr<DisplayInfo>>;

    DataTransferTable() noexcept = default;
    DataTransferTable(std::initializer_list<Map::value_type> entries);
    DataTransferTable(const DataTransferTable& other);
    DataTransferTable(DataTransferTable&& other) noexcept;
    DataTransferTable& operator=(DataTransferTable other) noexcept;
    ~DataTransferTable() = default;

    // The entry of that mode, an empty one when there was none. Good until the next change.
    std::shared_ptr<DisplayInfo>& operator[](const std::string& mode) { return entries()[mode]; }
    // What the entry of that mode holds. Leaves an empty entry where there was none.
    std::shared_ptr<DisplayInfo> lookUp(const std::string& mode);
    // As lookUp, but leaves nothing.
    [[nodiscard]] std::shared_ptr<DisplayInfo> find(const std::string& mode) const;
    [[nodiscard]] bool contains(const std::string& mode) const;

    [[nodiscard]] std::size_t size() const noexcept;
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    void clear() noexcept;

    // Good until the next change.
    [[nodiscard]] Map::const_iterator begin() const { return listed().cbegin(); }
    [[nodiscard]] Map::const_iterator end() const { return listed().cend(); }

    friend bool operator==(const DataTransferTable& a, const DataTransferTable& b) {
        return a.listed() == b.listed();
    }

  private:
    // A mode's name, if it is short.
    class ShortName {
      public:
        [[nodiscard]] bool isSet() const noexcept { return m_size != unset; }
        [[nodiscard]] std::string_view text() const noexcept { return {m_text.data(), m_size}; }
        // False when the name is too long.
        bool set(std::string_view name) noexcept;
        void reset() noexcept { m_size = unset; }

      private:
        static constexpr std::uint8_t unset = 255;
        std::array<char, 15> m_text{};
        std::uint8_t m_size = unset;
    };

    Map& entries() const;
    // The entries, without memory for none.
    [[nodiscard]] const Map& listed() const;

    mutable std::unique_ptr<Map> m_map;  // null: no entries but perhaps an empty one
    mutable ShortName m_onlyEmpty;       // the mode of that; unset with a map
};

}  // namespace tessera_1::view_model
