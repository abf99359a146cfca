// Diagrams with what their values mean, for drawings.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/document/value_meaning.h"
#include "host/engine/cell_record.h"
#include "host/meaning/comparison.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// How many of the values that a diagram shows are at which level. A value that several rows show counts once.
struct LevelSummary {
    std::vector<std::size_t> counts;  // by the rank of the level
    // The worst value: of those at the worst level, the one farthest past its bound, in relation to the bound.
    // Null when no value is at a level. They belong to the record and the meaning.
    const RecordedCell* worst = nullptr;
    const LevelRule* worstRule = nullptr;

    // How many are at a level of this rank, or a worse one.
    [[nodiscard]] std::size_t countUpTo(std::size_t rank) const;
};

struct DescribedDiagram {
    basekit2::variant_bag_t bag;
    LevelSummary summary;
};

enum class Description : std::uint8_t {
    none,  // the diagram as it would be without a record
    full,
};

// Copies the diagram of a pane with a record, without the tags of its texts. With a full description,
//   a row whose value is at a level has its name as "level"; the worst one has "isWorst" = true as well;
//   a row whose value makes its link wide has the step, from 1, as "width";
//   the root has a child "meaning", with a child "level" for each level of the document, the worst first:
//   "name", "colour" ("#rrggbb", own levels only), "count"; and for widths a child "widths": "name", and a child
//   "step" for each step with its "text".
// With a `comparison`, rows and meaning have what that adds (Comparison), and its widths instead of the document's.
// Linear time, but for levels (LevelFinder).
[[nodiscard]] DescribedDiagram describeValues(const basekit2::variant_bag_t& diagram,
                                              const CellRecord& record, const ValueMeaning& meaning,
                                              const Declarations& declarations, Description description,
                                              Comparison* comparison = nullptr);

}  // namespace tessera_host
