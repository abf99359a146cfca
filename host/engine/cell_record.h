// Where the values of a diagram come from.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/engine/reference_query.h"

namespace tessera_host {

// A value of a reference.
struct RecordedCell {
    basekit2::sptr_t<ReferenceQuery> reference;  // keeps the declarations alive; never null
    std::string text;                            // as formatted; never empty
    std::optional<double> number;                // what it was formatted from; none for text
};

// The values that a pane has fetched, by tags. The diagram library passes texts of cells on as they are, and
// says nowhere which query a row of its diagram shows. So each text ends in a tag, which leads from the row back
// to its query and to the number before formatting. (A dump of the layout's stages shows the tags.)
//
// Filled by the engine while a request runs; used by one thread at a time.
class CellRecord {
  public:
    // The text with the tag of its reference. A reference has one tag; its last value counts. An empty text is
    // a missing value and gets no tag; one that the reference had is forgotten.
    [[nodiscard]] std::string tagged(const basekit2::sptr_t<ReferenceQuery>& reference,
                                     const std::string& text, std::optional<double> number);

    // A text without its tag. `cell` is null when it has none.
    struct Untagged {
        std::string_view text;  // a part of the tagged text
        const RecordedCell* cell = nullptr;
    };
    [[nodiscard]] Untagged untagged(std::string_view text) const;

    // The value of the same reference, possibly one of another pane on the same document; null when it has none.
    [[nodiscard]] const RecordedCell* find(const ReferenceQuery& reference) const;

  private:
    // The index of the declaration, and the key values.
    using Name = std::pair<std::size_t, KeyText>;
    struct Hash {
        std::size_t operator()(const Name& name) const noexcept {
            return std::hash<std::string>{}(name.second) ^ (name.first * 0x9E3779B97F4A7C15U);
        }
    };
    [[nodiscard]] static Name nameOf(const ReferenceQuery& reference);

    std::vector<RecordedCell> m_cells;
    std::unordered_map<Name, std::size_t, Hash> m_places;
};

}  // namespace tessera_host
