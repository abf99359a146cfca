// The answers to many references of one declared query at once.
#pragma once

#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "host/engine/reference_query.h"
#include "host/engine/sqlite/answer.h"
#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/query_sql.h"

namespace tessera_host {

// Holds, for one snapshot, what one statement with GROUP BY answered. It is only used where it gives what
// single statements give: see canServe() and hasSameOrder().
class GroupedAnswers {
  public:
    enum class State { untried, loaded, refused };

    // True when the rows with these key values are one group, if there are any: each value is no number, or a
    // number in the one form that is its text as well.
    [[nodiscard]] static bool canServe(const std::vector<std::string>& keys);

    // True when the database visits the rows of a group in the order in which single statements visit them.
    // Sums of reals and joined texts depend on it.
    [[nodiscard]] static bool hasSameOrder(Connection& connection, const QueryDeclaration& query,
                                           const FilterList& filters);

    [[nodiscard]] State state() const noexcept { return m_state; }
    void refuse() noexcept { m_state = State::refused; }
    void clear();

    // Runs the statement and keeps the groups that `wanted` names; afterwards the state is loaded, or refused
    // when the limits ended the run or something failed. The failure is answered only when the request was
    // cancelled.
    [[nodiscard]] std::optional<Failure> load(Connection& connection, const QueryDeclaration& query,
                                              const FilterList& filters,
                                              const std::unordered_set<KeyText>& wanted,
                                              const RunLimits& limits);

    enum class Found { none, one, several };
    // REQUIRES: the state is loaded. With Found::one, `answer` points to the group's; several groups may
    // share a key text, as the number 5 and the text '5' do.
    [[nodiscard]] Found find(const KeyText& key, const Answer*& answer) const;

  private:
    struct Group {
        Answer answer;
        bool isShared = false;
    };

    void keep(const StatementRun& run, const QueryDeclaration& query,
              const std::unordered_set<KeyText>& wanted);

    std::unordered_map<KeyText, Group> m_groups;
    State m_state = State::untried;
};

}  // namespace tessera_host
