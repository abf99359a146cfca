#include "host/engine/sqlite/prepared_selection.h"

#include <algorithm>
#include <utility>

#include "host/engine/sqlite/query_plan.h"
#include "host/engine/sqlite/selection_check.h"
#include "host/values/number_text.h"

namespace tessera_host {
namespace {

// What a run costs beyond its steps: binding, starting and ending.
constexpr std::uint64_t stepsPerRun = 50;

// A numeric key may also match numbers in its column, which takes the longer statement.
KeyMatch matchOf(const KeyValues& keys) {
    return std::any_of(keys.begin(), keys.end(), [](const std::string& key) { return isNumeric(key); })
               ? KeyMatch::number
               : KeyMatch::text;
}

// Parameters 1 to n are the keys as text; n + 1 to 2 n tell, for the form with numbers, which are numeric.
void bindKeys(StatementRun& run, const KeyValues& keys, KeyMatch match) {
    const int count = static_cast<int>(keys.size());
    for (int i = 0; i < count; ++i) {
        const std::string& key = keys[static_cast<std::size_t>(i)];
        run.bindText(i + 1, key);
        if (match == KeyMatch::number) run.bindFlag(count + i + 1, isNumeric(key));
    }
}

// An aggregate always has one row.
Expected<CellValue> valueOf(StatementRun& run) {
    auto hasRow = run.step();
    if (!hasRow) return std::move(hasRow).error();
    return run.columnValue(0);
}

// An error when the call was cancelled; nothing else that failed is one.
Expected<void> whyCancelled(const Connection& connection) {
    auto stopped = connection.stopError();
    if (stopped && stopped->isCancelled()) return *std::move(stopped);
    return {};
}

}  // namespace

void PreparedSelection::dropStatements() {
    m_text = {};
    m_number = {};
}

// Whether the selection has a value, whatever the rows.
const Expected<void>& PreparedSelection::acceptance(Connection& connection) {
    if (!m_acceptance) m_acceptance = prepareText(connection);
    return *m_acceptance;
}

// Of several problems the first is the error, since one is reported.
Expected<void> PreparedSelection::prepareText(Connection& connection) {
    const auto fragments = fragmentProblems(m_selection);
    if (!fragments.empty()) return Error{ErrorKind::failed, fragments.front()};
    for (const NamedFilter& filter : m_selection.filters)
        if (auto checked = checkFilterText(filter); !checked) return checked;
    auto prepared = connection.prepare(singleSql(m_selection, KeyMatch::text), mayRecurse(m_selection));
    if (auto stopped = connection.stopError()) return *std::move(stopped);
    if (!prepared) {
        const auto problems = databaseProblems(connection, m_selection);
        return Error{ErrorKind::failed, problems.empty() ? prepared.error().text : problems.front()};
    }
    if (auto checked = checkAggregate(connection, m_selection); !checked) return checked;
    if (mayDropConditions(m_selection)) {
        const auto problems = databaseProblems(connection, m_selection);
        if (auto stopped = connection.stopError()) return *std::move(stopped);
        if (!problems.empty()) return Error{ErrorKind::failed, problems.front()};
    }
    m_text = *std::move(prepared);
    return {};
}

Expected<Answer> PreparedSelection::answer(Connection& connection, const KeyValues& keys) {
    if (const auto& accepted = acceptance(connection); !accepted) return accepted.error();
    const KeyMatch match = matchOf(keys);
    Statement& statement = match == KeyMatch::text ? m_text : m_number;
    // The form for numbers is prepared when a numeric key first comes.
    if (!statement) {
        auto prepared = connection.prepare(singleSql(m_selection, match), mayRecurse(m_selection));
        if (!prepared) return std::move(prepared).error();
        statement = *std::move(prepared);
    }
    StatementRun run(connection, statement);
    bindKeys(run, keys, match);
    auto value = valueOf(run);
    if (!value) return std::move(value).error();
    return Answer{*std::move(value), run.steps() + stepsPerRun};
}

// What was found out under a limit that was reached says nothing about the next time.
bool PreparedSelection::mayGroup(Connection& connection) {
    if (m_mayGroup) return *m_mayGroup;
    const bool isSame = hasSameOrder(connection, m_selection);
    if (!connection.stopError()) m_mayGroup = isSame;
    return isSame;
}

Expected<void> PreparedSelection::answerTogether(Connection& connection, std::span<const Question> questions,
                                                 std::span<std::optional<CellValue>> values) {
    // Values that stay empty are looked up one by one by the caller, which also reports their errors.
    if (m_selection.keys.empty()) return {};
    if (!acceptance(connection) || !mayGroup(connection)) return whyCancelled(connection);
    auto groups = GroupedValues::load(connection, m_selection, questions);
    if (!groups) return whyCancelled(connection);
    std::optional<CellValue> noRows;
    std::uint64_t bytes = 0;
    for (std::size_t i = 0; i < questions.size() && bytes <= GroupedValues::maxBytes(connection); ++i) {
        const KeyValues& keys = *questions[i].keys;
        if (!GroupedValues::canServe(keys)) continue;
        const GroupedValues::Found found = groups->find(keys);
        // Several groups may share a text, as 5 and '5' do: only the single statement has the value over all.
        if (found.count == 1) values[i] = *found.value;
        if (found.count != 0) continue;
        // Computed once and on demand: an aggregate over no rows has a value as well, such as 0 for COUNT.
        if (!noRows) {
            auto value = valueOverNoRows(connection);
            if (!value) return whyCancelled(connection);
            noRows = *std::move(value);
        }
        values[i] = *noRows;
        bytes += sizeOf(*noRows);
    }
    return {};
}

Expected<CellValue> PreparedSelection::valueOverNoRows(Connection& connection) const {
    auto statement = connection.prepare(noRowsSql(m_selection), mayRecurse(m_selection));
    if (!statement) return std::move(statement).error();
    StatementRun run(connection, *statement);
    return valueOf(run);
}

Expected<std::vector<StatementPlan>> PreparedSelection::explain(Connection& connection,
                                                                std::size_t questions) {
    if (const auto& accepted = acceptance(connection); !accepted) return accepted.error();
    std::vector<StatementPlan> plans;
    const auto add = [&](StatementPlan::Method method, std::string sql) -> Expected<void> {
        auto plan = queryPlan(connection, sql, mayRecurse(m_selection));
        if (!plan) return std::move(plan).error();
        plans.push_back({method, questions, std::move(sql), *std::move(plan)});
        return {};
    };
    if (auto added = add(StatementPlan::Method::oneByOne, singleSql(m_selection, KeyMatch::text)); !added)
        return std::move(added).error();
    if (questions > 1 && !m_selection.keys.empty() && mayGroup(connection))
        if (auto added = add(StatementPlan::Method::together, groupedSql(m_selection)); !added)
            return std::move(added).error();
    return plans;
}

}  // namespace tessera_host
