// A selection on a connection: its statements, and whether SQLite accepts it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "host/engine/result.h"
#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/grouped_values.h"
#include "host/engine/sqlite/query_sql.h"

namespace tessera_host {

// Good for one connection and one state of its schema. REQUIRES, for all calls: a snapshot is open on the
// connection. The limits are those of the LimitScope around the call.
class PreparedSelection {
  public:
    // `selection` outlives this object.
    explicit PreparedSelection(const Selection& selection) : m_selection(selection) {}

    // See ISnapshot.
    [[nodiscard]] Expected<Answer> answer(Connection& connection, const KeyValues& keys);
    // Fills the elements of `values` that one grouped statement can give; the only error is cancellation.
    [[nodiscard]] Expected<void> answerTogether(Connection& connection, std::span<const Question> questions,
                                                std::span<std::optional<CellValue>> values);
    // The plans for as many questions.
    [[nodiscard]] Expected<std::vector<StatementPlan>> explain(Connection& connection, std::size_t questions);

    // A selection that was not acceptable is looked at again in the next snapshot.
    void startSnapshot() {
        if (isRejected()) m_acceptance.reset();
    }
    [[nodiscard]] bool hasStatements() const noexcept { return m_text || m_number; }
    [[nodiscard]] bool isRejected() const noexcept { return m_acceptance && !*m_acceptance; }
    [[nodiscard]] std::size_t bytes() const { return m_text.bytes() + m_number.bytes(); }
    void dropStatements();

  private:
    [[nodiscard]] const Expected<void>& acceptance(Connection& connection);
    [[nodiscard]] Expected<void> prepareText(Connection& connection);
    [[nodiscard]] bool mayGroup(Connection& connection);
    [[nodiscard]] Expected<CellValue> valueOverNoRows(Connection& connection) const;

    const Selection& m_selection;
    Statement m_text;    // KeyMatch::text
    Statement m_number;  // KeyMatch::number
    std::optional<bool> m_mayGroup;
    std::optional<Expected<void>>
        m_acceptance;  // none before the first question; an error is kept for a snapshot
};

}  // namespace tessera_host
