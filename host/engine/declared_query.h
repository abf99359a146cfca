// A declared query under certain filters, and its values in the present snapshot.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "host/engine/reference_query.h"
#include "host/engine/result.h"
#include "host/engine/value_budget.h"

namespace tessera_host {

// The text of a cell, or why there is none.
using CellText = Expected<std::string>;

// A cell, and the number that its text was formatted from. NULL and texts have no number.
struct Cell {
    CellText text;
    std::optional<double> number;
};

// The error of a query whose values are too much.
[[nodiscard]] Error tooManyValues(const ValueBudget& budget);

// Where and how a query is run: in the snapshot of this number.
struct RunPlace {
    ISnapshot& snapshot;
    std::uint64_t snapshotNumber;
    const RunOptions& options;
    ValueBudget& budget;
};

// Used by one thread at a time. Equal references are queried once a snapshot.
//
// Without a fitting index, each of many references to a query would read every row. So the first ones are
// queried one by one, which shows their cost. When the remaining ones would cost much, the engine gets all of
// them at once, with a limit: the cost of querying them one by one. An attempt that reaches the limit is not
// repeated in this snapshot.
class DeclaredQuery {
  public:
    DeclaredQuery(const QueryDeclaration& query, const FilterList& filters)
        : m_query(query), m_selection(query, filters) {}

    // The cell stays valid until the next call. REQUIRES: `reference` is one to this query.
    [[nodiscard]] const Cell& value(const ReferenceQuery& reference, const RunPlace& place);

    // True at the first call in a snapshot: every broken query is reported once.
    [[nodiscard]] bool claimReport(std::uint64_t snapshotNumber);

  private:
    void startSnapshot(std::uint64_t snapshotNumber);
    [[nodiscard]] bool isWorthGrouping(const ReferenceQuery& reference, std::uint64_t& cost) const;
    [[nodiscard]] Expected<void> queryTogether(const ReferenceQuery& reference, const RunPlace& place,
                                               std::uint64_t maxWork);
    const Cell& remember(const KeyText& name, Cell cell, ValueBudget& budget);
    [[nodiscard]] Cell queryOne(const ReferenceQuery& reference, const RunPlace& place);
    [[nodiscard]] Cell cellOf(const CellValue& value) const;

    const QueryDeclaration& m_query;
    const Selection m_selection;
    std::uint64_t m_reportedSnapshot = 0;

    // Of the present snapshot.
    std::uint64_t m_snapshotNumber = 0;
    std::unordered_map<KeyText, Cell> m_values;
    bool m_isGroupingTried = false;
    bool m_isTooLarge = false;  // a value exceeded the budget; the query is not run again
    std::uint64_t m_singleRuns = 0;
    std::uint64_t m_singleWork = 0;
    std::optional<Cell> m_cancelled;
};

}  // namespace tessera_host
