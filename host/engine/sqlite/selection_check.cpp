#include "host/engine/sqlite/selection_check.h"

#include "host/document/text.h"
#include "host/engine/sqlite/sql_guard.h"

namespace tessera_host {
namespace {

constexpr const char* expressionSubject = "the expression";
constexpr const char* whereSubject = "the condition (\"where\")";

// What the database says to `sql`; "" when it accepts it.
std::string rejection(Connection& connection, const std::string& sql, bool recursion) {
    const auto statement = connection.prepare(sql, recursion);
    return statement ? std::string() : statement.error().text;
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

std::optional<std::string> filterTextProblem(const NamedFilter& filter) {
    return fragmentProblem(filterSubject(filter.name), filter.predicate);
}

std::vector<std::string> fragmentProblems(const Selection& selection) {
    std::vector<std::string> problems;
    if (selection.from.empty()) problems.emplace_back("it names no table (\"from\")");
    if (auto problem = fragmentProblem(expressionSubject, selection.expression))
        problems.push_back(std::move(*problem));
    if (selection.where.empty()) return problems;
    if (auto problem = fragmentProblem(whereSubject, selection.where))
        problems.push_back(std::move(*problem));
    return problems;
}

// Where only values of single rows may stand, SQLite takes neither an aggregate nor a window function; where
// values of groups may stand, it takes the first only.
std::optional<std::string> aggregateProblem(Connection& connection, const Selection& selection) {
    const bool recursion = mayRecurse(selection);
    if (rejection(connection, predicateSql(selection, selection.expression), recursion).empty())
        return "the expression is not an aggregate expression: it has a value for every row, not one for all";
    const std::string windowProblem = rejection(connection, havingSql(selection), recursion);
    if (windowProblem.empty()) return std::nullopt;
    return "the expression is not an aggregate expression: " + windowProblem;
}

std::vector<std::string> databaseProblems(Connection& connection, const Selection& selection) {
    if (selection.from.empty()) return {};
    const bool recursion = mayRecurse(selection);
    const std::string tableProblem = rejection(connection, columnSql(selection, "1"), recursion);
    if (!tableProblem.empty()) return {tableProblem};

    std::vector<std::string> problems;
    const auto add = [&](const std::string& subject, const std::string& sql) {
        const std::string problem = rejection(connection, sql, recursion);
        if (!problem.empty()) problems.push_back(subject.empty() ? problem : subject + ": " + problem);
        return problem.empty();
    };
    const bool hasSoundWhere = selection.where.empty() || !scanSql(selection.where).defect;
    const bool hasSoundExpression = !scanSql(selection.expression).defect;
    for (const std::string& key : selection.keys)
        add("key " + quoted(key), columnSql(selection, quoteName(key)));
    if (hasSoundWhere && !selection.where.empty())
        add(whereSubject, predicateSql(selection, selection.where));
    for (const NamedFilter& filter : selection.filters)
        add(filterSubject(filter.name), predicateSql(selection, filter.predicate));
    if (hasSoundExpression && add("", columnSql(selection, "(\n" + selection.expression + "\n)")))
        if (auto problem = aggregateProblem(connection, selection)) problems.push_back(std::move(*problem));
    // The parts are right one by one; together they may still be too much.
    if (problems.empty() && hasSoundWhere && hasSoundExpression)
        add("", singleSql(selection, KeyMatch::number));
    return problems;
}

}  // namespace tessera_host
