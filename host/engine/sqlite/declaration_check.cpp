#include "host/engine/sqlite/declaration_check.h"

#include "host/document/text.h"
#include "host/engine/sqlite/sql_guard.h"

namespace tessera_host {
namespace {

constexpr const char* expressionSubject = "the expression";
constexpr const char* whereSubject = "the condition (\"where\")";

// What the database says to `sql`; "" when it accepts it.
std::string rejection(Connection& connection, const std::string& sql, bool recursion) {
    std::string problem;
    if (connection.prepare(sql, recursion, problem)) return {};
    return problem;
}

}  // namespace

std::string filterSubject(const std::string& name) {
    return "filter " + quoted(name);
}

std::optional<std::string> fragmentProblem(std::string_view subject, std::string_view sql) {
    const auto defect = scanSql(sql).defect;
    if (!defect) return std::nullopt;
    std::string text = std::string(subject).append(" ").append(defect->reason);
    if (!isBlank(sql)) text += " (at character " + std::to_string(defect->offset + 1) + ")";
    return text;
}

std::vector<std::string> fragmentProblems(const QueryDeclaration& query) {
    std::vector<std::string> problems;
    if (query.from.empty()) problems.emplace_back("it names no table (\"from\")");
    if (auto problem = fragmentProblem(expressionSubject, query.expression))
        problems.push_back(std::move(*problem));
    if (query.where.empty()) return problems;
    if (auto problem = fragmentProblem(whereSubject, query.where)) problems.push_back(std::move(*problem));
    return problems;
}

// Where only values of single rows may stand, SQLite takes neither an aggregate nor a window function; where
// values of groups may stand, it takes the first only.
std::optional<std::string> aggregateProblem(Connection& connection, const QueryDeclaration& query) {
    const bool recursion = mayRecurse(query, {});
    if (rejection(connection, predicateSql(query, query.expression), recursion).empty())
        return "the expression is no aggregate expression: it has a value for every row, not one for all";
    const std::string windowProblem = rejection(connection, havingSql(query), recursion);
    if (windowProblem.empty()) return std::nullopt;
    return "the expression is no aggregate expression: " + windowProblem;
}

std::vector<std::string> databaseProblems(Connection& connection, const QueryDeclaration& query,
                                          const FilterList& filters) {
    if (query.from.empty()) return {};
    const bool recursion = mayRecurse(query, filters);
    const std::string tableProblem = rejection(connection, columnSql(query, "1"), recursion);
    if (!tableProblem.empty()) return {tableProblem};

    std::vector<std::string> problems;
    const auto add = [&](const std::string& subject, const std::string& sql) {
        const std::string problem = rejection(connection, sql, recursion);
        if (!problem.empty()) problems.push_back(subject.empty() ? problem : subject + ": " + problem);
        return problem.empty();
    };
    const bool hasSoundWhere = query.where.empty() || !scanSql(query.where).defect;
    const bool hasSoundExpression = !scanSql(query.expression).defect;
    for (const std::string& key : query.keys)
        add("key " + quoted(key), columnSql(query, quoteName(key)));
    if (hasSoundWhere && !query.where.empty()) add(whereSubject, predicateSql(query, query.where));
    for (const NamedFilter& filter : filters)
        add(filterSubject(filter.name), predicateSql(query, filter.predicate));
    if (hasSoundExpression && add("", columnSql(query, "(\n" + query.expression + "\n)")))
        if (auto problem = aggregateProblem(connection, query)) problems.push_back(std::move(*problem));
    // The parts are right one by one; together they may still be too much.
    if (problems.empty() && hasSoundWhere && hasSoundExpression)
        add("", singleSql(query, filters, KeyMatch::number));
    return problems;
}

}  // namespace tessera_host
