#include "host/engine/sqlite/grouped_answers.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "host/values/number_text.h"

namespace tessera_host {
namespace {

// Adds the text by which a reference names the value in `column`; false when none does that can be served.
bool appendGroupKey(KeyText& text, const StatementRun& run, int column) {
    switch (run.columnType(column)) {
        case SQLITE_TEXT:
            appendKey(text, run.columnText(column));
            return true;
        case SQLITE_INTEGER:
            appendKey(text, std::to_string(run.columnInteger(column)));
            return true;
        case SQLITE_FLOAT: {
            constexpr double limit = 9223372036854775808.0;
            const double value = run.columnReal(column);
            if (!(value >= -limit && value < limit) || std::trunc(value) != value) return false;
            appendKey(text, std::to_string(static_cast<std::int64_t>(value)));
            return true;
        }
        default:
            return false;
    }
}

// A line of a query plan without what may differ although rows come in the same order: whether all entries of
// an index are visited or those of one key, and whether the index alone is enough.
std::string orderOf(std::string line) {
    for (const std::string_view word : {"SCAN ", "SEARCH "})
        if (line.starts_with(word)) line.erase(0, word.size());
    if (const std::size_t constraint = line.rfind(" (");
        constraint != std::string::npos && line.ends_with(')'))
        line.erase(constraint);
    for (const std::string_view word : {" USING INTEGER PRIMARY KEY", " COVERING"})
        if (const std::size_t at = line.find(word); at != std::string::npos) line.erase(at, word.size());
    return line;
}

// The plan of `sql`, or "" when there is none.
std::string planOrder(Connection& connection, const std::string& sql, bool recursion) {
    std::string problem;
    Statement explain = connection.prepare("EXPLAIN QUERY PLAN " + sql, recursion, problem);
    if (!explain) return {};
    StatementRun run(connection, explain, {nullptr, connection.timeouts().query});
    std::string plan;
    while (run.step() == StatementRun::Step::row) {
        const std::string line(run.columnText(3));
        if (!line.starts_with("USE TEMP B-TREE FOR GROUP BY")) plan += orderOf(line) + '\n';
    }
    return plan;
}

}  // namespace

bool GroupedAnswers::canServe(const std::vector<std::string>& keys) {
    return std::all_of(keys.begin(), keys.end(),
                       [](const std::string& key) { return !isNumeric(key) || isCanonicalInteger(key); });
}

bool GroupedAnswers::hasSameOrder(Connection& connection, const QueryDeclaration& query,
                                  const FilterList& filters) {
    const bool recursion = mayRecurse(query, filters);
    const std::string grouped = planOrder(connection, groupedSql(query, filters), recursion);
    return !grouped.empty() &&
           grouped == planOrder(connection, singleSql(query, filters, KeyMatch::text), recursion) &&
           grouped == planOrder(connection, singleSql(query, filters, KeyMatch::number), recursion);
}

void GroupedAnswers::clear() {
    m_groups.clear();
    m_state = State::untried;
}

std::optional<Failure> GroupedAnswers::load(Connection& connection, const QueryDeclaration& query,
                                            const FilterList& filters,
                                            const std::unordered_set<KeyText>& wanted,
                                            const RunLimits& limits) {
    m_state = State::refused;
    std::string problem;
    Statement statement = connection.prepare(groupedSql(query, filters), mayRecurse(query, filters), problem);
    if (!statement) return std::nullopt;
    StatementRun run(connection, statement, limits);
    StatementRun::Step step = StatementRun::Step::row;
    while ((step = run.step()) == StatementRun::Step::row)
        keep(run, query, wanted);
    if (step == StatementRun::Step::done) {
        m_state = State::loaded;
        return std::nullopt;
    }
    m_groups.clear();
    if (run.failure().isCancelled) return run.failure();
    return std::nullopt;
}

void GroupedAnswers::keep(const StatementRun& run, const QueryDeclaration& query,
                          const std::unordered_set<KeyText>& wanted) {
    KeyText key;
    const int keyCount = static_cast<int>(query.keys.size());
    for (int column = 0; column < keyCount; ++column)
        if (!appendGroupKey(key, run, column)) return;
    if (!wanted.contains(key)) return;
    const auto [it, isNew] = m_groups.try_emplace(std::move(key));
    if (isNew)
        it->second.answer = formatCell(run.columnValue(keyCount), query.format, query.unit);
    else
        it->second.isShared = true;
}

GroupedAnswers::Found GroupedAnswers::find(const KeyText& key, const Answer*& answer) const {
    const auto it = m_groups.find(key);
    if (it == m_groups.end()) return Found::none;
    if (it->second.isShared) return Found::several;
    answer = &it->second.answer;
    return Found::one;
}

}  // namespace tessera_host
