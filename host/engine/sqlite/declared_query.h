// A declared query on a connection: its statements and the answers of the present snapshot.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>

#include "host/engine/reference_query.h"
#include "host/engine/sqlite/answer.h"
#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/grouped_answers.h"
#include "host/engine/sqlite/query_sql.h"

namespace tessera_host {

// Where and for whom a query is run: inside of the snapshot of this number.
struct RunPlace {
    Connection& connection;
    const relay2::IProgress* progress;
    std::uint64_t snapshotNumber;
};

// Good for one connection, one state of the schema and one list of filters. Equal references run once a
// snapshot.
//
// Many references to a query without a fitting index would each look at every row. So after the first ones
// their cost is known, in steps of SQLite's machine, and when those to come would cost much, one statement
// for all of them is tried; it may cost as much as they would and is then given up for this snapshot.
class DeclaredQuery {
  public:
    DeclaredQuery(const QueryDeclaration& query, const FilterList& filters)
        : m_query(query), m_filters(filters) {}

    // The answer stays valid until the next call. REQUIRES: `reference` is one to this query.
    [[nodiscard]] const Answer& answer(const ReferenceQuery& reference, const RunPlace& place);

    // True at the first call in a snapshot: every broken query is told about once.
    [[nodiscard]] bool claimTelling(std::uint64_t snapshotNumber);

    [[nodiscard]] bool hasStatements() const noexcept { return m_text || m_number; }
    void dropStatements();

  private:
    void startSnapshot(std::uint64_t snapshotNumber);
    [[nodiscard]] Answer compute(const ReferenceQuery& reference, const RunPlace& place);
    [[nodiscard]] std::optional<Failure> findDefect(Connection& connection);
    [[nodiscard]] std::optional<Failure> considerGrouping(const ReferenceQuery& reference,
                                                          const RunPlace& place);
    [[nodiscard]] const Answer* groupedAnswer(const ReferenceQuery& reference, const RunPlace& place);
    [[nodiscard]] Answer runSingle(const ReferenceQuery& reference, const RunPlace& place);
    [[nodiscard]] const Answer& runNoRows(const RunPlace& place);
    [[nodiscard]] Answer valueOf(StatementRun& run) const;

    const QueryDeclaration& m_query;
    const FilterList& m_filters;
    Statement m_text;    // KeyMatch::text
    Statement m_number;  // KeyMatch::number
    bool m_isSound = false;
    std::optional<bool> m_hasSameOrder;

    // Of the present snapshot.
    std::uint64_t m_snapshotNumber = 0;
    std::uint64_t m_toldSnapshot = 0;
    std::optional<Failure> m_defect;
    std::unordered_map<KeyText, Answer> m_answers;
    GroupedAnswers m_groups;
    std::optional<Answer> m_noRows;
    std::uint64_t m_singleRuns = 0;
    std::uint64_t m_singleSteps = 0;
    Answer m_cancelled;
};

}  // namespace tessera_host
