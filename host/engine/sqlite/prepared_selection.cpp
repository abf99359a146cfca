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

KeyMatch matchOf(const KeyValues& keys) {
    return std::any_of(keys.begin(), keys.end(), [](const std::string& key) { return isNumeric(key); })
               ? KeyMatch::number
               : KeyMatch::text;
}

void bindKeys(StatementRun& run, const KeyValues& keys, KeyMatch match) {
    const int count = static_cast<int>(keys.size());
    for (int i = 0; i < count; ++i) {
        const std::string& key = keys[static_cast<std::size_t>(i)];
        run.bindText(i + 1, key);
        if (match == KeyMatch::number) run.bindFlag(count + i + 1, isNumeric(key));
    }
}

// An aggregate has one row, always.
Expected<CellValue> valueOf(StatementRun& run) {
    if (run.step() == StatementRun::Step::row) return run.columnValue(0);
    return run.error();
}

}  // namespace

void PreparedSelection::dropStatements() {
    m_text = {};
    m_number = {};
}

Expected<void> PreparedSelection::requireAcceptable(Connection& connection) {
    if (!m_isAcceptable && !m_defect) m_defect = findDefect(connection);
    if (m_defect) return *m_defect;
    m_isAcceptable = true;
    return {};
}

// Why the selection has no value, whatever the rows; the first of all reasons, since one is reported.
std::optional<Error> PreparedSelection::findDefect(Connection& connection) {
    std::vector<std::string> problems = fragmentProblems(m_selection);
    for (const NamedFilter& filter : m_selection.filters)
        if (auto problem = filterTextProblem(filter)) problems.push_back(std::move(*problem));
    if (problems.empty()) {
        auto prepared = connection.prepare(singleSql(m_selection, KeyMatch::text), mayRecurse(m_selection));
        if (!prepared) {
            problems = databaseProblems(connection, m_selection);
            if (problems.empty()) problems.push_back(prepared.error().text);
        } else if (auto problem = aggregateProblem(connection, m_selection)) {
            problems.push_back(*problem);
        } else {
            m_text = *std::move(prepared);
        }
    }
    if (problems.empty()) return std::nullopt;
    return Error{ErrorKind::failed, problems.front()};
}

Expected<Answer> PreparedSelection::answer(Connection& connection, const KeyValues& keys,
                                           const RunOptions& options) {
    if (auto acceptable = requireAcceptable(connection); !acceptable) return std::move(acceptable).error();
    const KeyMatch match = matchOf(keys);
    Statement& statement = match == KeyMatch::text ? m_text : m_number;
    if (!statement) {
        auto prepared = connection.prepare(singleSql(m_selection, match), mayRecurse(m_selection));
        if (!prepared) return std::move(prepared).error();
        statement = *std::move(prepared);
    }
    StatementRun run(connection, statement, {options});
    bindKeys(run, keys, match);
    auto value = valueOf(run);
    if (!value) return std::move(value).error();
    return Answer{*std::move(value), run.steps() + stepsPerRun};
}

bool PreparedSelection::mayGroup(Connection& connection, const RunOptions& options) {
    if (!m_mayGroup) m_mayGroup = hasSameOrder(connection, m_selection, options);
    return *m_mayGroup;
}

Expected<void> PreparedSelection::answerTogether(Connection& connection, std::span<const Question> questions,
                                                 const RunLimits& limits,
                                                 std::span<std::optional<CellValue>> values) {
    if (m_selection.keys.empty()) return {};
    if (!requireAcceptable(connection) || !mayGroup(connection, limits.options)) return {};
    auto groups = GroupedValues::load(connection, m_selection, questions, limits);
    if (!groups) {
        if (groups.error().isCancelled()) return std::move(groups).error();
        return {};
    }
    std::optional<CellValue> noRows;
    for (std::size_t i = 0; i < questions.size(); ++i) {
        const KeyValues& keys = *questions[i].keys;
        if (!GroupedValues::canServe(keys)) continue;
        const GroupedValues::Found found = groups->find(keys);
        if (found.count == 1) values[i] = *found.value;
        if (found.count != 0) continue;
        if (!noRows) {
            auto value = valueOverNoRows(connection, limits.options);
            if (!value && value.error().isCancelled()) return std::move(value).error();
            if (!value) return {};
            noRows = *std::move(value);
        }
        values[i] = *noRows;
    }
    return {};
}

Expected<CellValue> PreparedSelection::valueOverNoRows(Connection& connection,
                                                       const RunOptions& options) const {
    auto statement = connection.prepare(noRowsSql(m_selection), mayRecurse(m_selection));
    if (!statement) return std::move(statement).error();
    StatementRun run(connection, *statement, {options});
    return valueOf(run);
}

Expected<std::vector<StatementPlan>> PreparedSelection::explain(Connection& connection, std::size_t questions,
                                                                const RunOptions& options) {
    if (auto acceptable = requireAcceptable(connection); !acceptable) return std::move(acceptable).error();
    std::vector<StatementPlan> plans;
    const auto add = [&](StatementPlan::Method method, std::string sql) -> Expected<void> {
        auto plan = queryPlan(connection, sql, mayRecurse(m_selection), options);
        if (!plan) return std::move(plan).error();
        plans.push_back({method, questions, std::move(sql), *std::move(plan)});
        return {};
    };
    if (auto added = add(StatementPlan::Method::lookUp, singleSql(m_selection, KeyMatch::text)); !added)
        return std::move(added).error();
    if (questions > 1 && !m_selection.keys.empty() && mayGroup(connection, options))
        if (auto added = add(StatementPlan::Method::together, groupedSql(m_selection)); !added)
            return std::move(added).error();
    return plans;
}

}  // namespace tessera_host
