// A diagram beside the same diagram of another result.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/engine/cell_record.h"
#include "host/meaning/value_change.h"
#include "platform/basekit2/variant_bag.h"

namespace tessera_host {

// What one result has, as a pane with a record has written it: its diagram with tags. The comparison needs no layout:
// that of the other result may have been stopped after its values were fetched.
struct TaggedDiagram {
    const basekit2::variant_bag_t& bag;
    const CellRecord& record;
};

// Describes the changes of values for describeValues(). All that it is made with must outlive it; the other record is
// of a pane on the same document.
class Comparison {
  public:
    // `name` is what people call the other result.
    Comparison(const CellRecord& here, const TaggedDiagram& there, std::string name);

    // Puts into a row: "change" (a name of ChangeKind), "other" (the text of the other value), "difference" and
    // "percent"; what does not exist is left out. As "width", the step of the change, from 1.
    void describe(const RecordedCell& here, basekit2::variant_bag_t& row);
    // Adds rows, without values, for what only the other result shows in the node or link of this id, in its info of
    // this name. REQUIRES: `rows` is an array of rows.
    void addMissing(bool isLink, std::string_view id, std::string_view info,
                    basekit2::variant_bag_t& rows) const;
    [[nodiscard]] bool hasMissing(bool isLink, std::string_view id, std::string_view info) const;

    // Adds "comparison" with the "text" that sums up, and "widths" for changes. After all rows were described.
    void describeAll(basekit2::variant_bag_t& meaning) const;

  private:
    struct Missing {
        std::string_view name;  // of the row
        const RecordedCell* cell;
    };
    [[nodiscard]] static std::string keyOf(bool isLink, std::string_view id, std::string_view info);
    void collectMissing(const basekit2::variant_bag_t& element, bool isLink);

    const CellRecord& m_here;
    const TaggedDiagram m_there;
    const std::string m_name;
    std::unordered_map<std::string, std::vector<Missing>> m_missing;  // by keyOf()
    std::unordered_map<const RecordedCell*, ChangeKind> m_kinds;      // each value once
    std::size_t m_missingCount = 0;
};

// A value with its name, for the table of changes.
struct ChangedValue {
    std::string name;  // "Errors of Web shop", "Rate of Web shop -> Gateway"
    std::string here;  // "" where there is none
    std::string there;
    ValueChange change;
};

// All values that differ, the largest change first. Both diagrams were stopped after their values were fetched. A value
// that several rows show is listed at the first one. n log n time.
[[nodiscard]] std::vector<ChangedValue> changesOf(const TaggedDiagram& here, const TaggedDiagram& there);

}  // namespace tessera_host
