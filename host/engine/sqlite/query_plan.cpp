#include "host/engine/sqlite/query_plan.h"

#include <string_view>

#include "host/engine/sqlite/query_sql.h"

namespace tessera_host {
namespace {

// A line of a plan without what may differ although rows come in the same order: whether all entries of an
// index are visited or those of one key, and whether the index alone is enough.
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

// The order in which `sql` visits rows, or "" when there is no plan.
std::string planOrder(Connection& connection, const std::string& sql, bool recursion) {
    const auto plan = queryPlan(connection, sql, recursion);
    if (!plan) return {};
    std::string order;
    for (const std::string& line : *plan)
        if (!line.starts_with("USE TEMP B-TREE FOR GROUP BY")) order += orderOf(line) + '\n';
    return order;
}

}  // namespace

Expected<std::vector<std::string>> queryPlan(Connection& connection, const std::string& sql,
                                             bool mayRecurse) {
    constexpr int detailColumn = 3;
    auto explain = connection.prepare("EXPLAIN QUERY PLAN " + sql, mayRecurse);
    if (!explain) return std::move(explain).error();
    StatementRun run(connection, *explain);
    std::vector<std::string> lines;
    auto hasRow = run.step();
    for (; hasRow && *hasRow; hasRow = run.step())
        lines.emplace_back(run.columnText(detailColumn));
    if (!hasRow) return std::move(hasRow).error();
    return lines;
}

bool hasSameOrder(Connection& connection, const Selection& selection) {
    const bool recursion = mayRecurse(selection);
    const std::string grouped = planOrder(connection, groupedSql(selection), recursion);
    return !grouped.empty() &&
           grouped == planOrder(connection, singleSql(selection, KeyMatch::text), recursion) &&
           grouped == planOrder(connection, singleSql(selection, KeyMatch::number), recursion);
}

}  // namespace tessera_host
