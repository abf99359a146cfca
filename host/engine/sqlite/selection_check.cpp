#include "host/engine/sqlite/selection_check.h"

#include <string_view>
#include <utility>

#include "host/document/text.h"
#include "host/engine/sqlite/sql_guard.h"

namespace tessera_host {
namespace {

constexpr const char* expressionSubject = "the expression";
constexpr const char* whereSubject = "the condition (\"where\")";

std::string filterSubject(const std::string& name) {
    return "filter " + quoted(name);
}

// The error is "SUBJECT has a ... (at character N)".
Expected<void> checkFragment(std::string_view subject, std::string_view sql) {
    const auto fragment = scanSql(sql);
    if (fragment) return {};
    std::string text = std::string(subject).append(" ").append(fragment.error().text);
    if (!isBlank(sql)) text += " (at character " + std::to_string(fragment.error().position.column) + ")";
    return Error{ErrorKind::failed, std::move(text)};
}

// What the database says to `sql`.
Expected<void> tryPrepare(Connection& connection, const std::string& sql, bool recursion) {
    auto statement = connection.prepare(sql, recursion);
    if (!statement) return std::move(statement).error();
    return {};
}

Error notAnAggregate(const std::string& reason) {
    return {ErrorKind::failed, "the expression is not an aggregate expression: " + reason};
}

}  // namespace

Expected<void> checkFilterText(const NamedFilter& filter) {
    return checkFragment(filterSubject(filter.name), filter.predicate);
}

std::vector<std::string> fragmentProblems(const Selection& selection) {
    std::vector<std::string> problems;
    if (selection.from.empty()) problems.emplace_back("it names no table (\"from\")");
    if (auto checked = checkFragment(expressionSubject, selection.expression); !checked)
        problems.push_back(std::move(checked).error().text);
    if (selection.where.empty()) return problems;
    if (auto checked = checkFragment(whereSubject, selection.where); !checked)
        problems.push_back(std::move(checked).error().text);
    return problems;
}

// Where only values of single rows may stand, SQLite takes neither an aggregate nor a window function; where
// values of groups may stand, it takes the first only.
Expected<void> checkAggregate(Connection& connection, const Selection& selection) {
    const bool recursion = mayRecurse(selection);
    if (tryPrepare(connection, predicateSql(selection, selection.expression), recursion))
        return notAnAggregate("it has a value for every row, not one for all");
    if (auto stopped = connection.stopError()) return *std::move(stopped);
    const auto asCondition = tryPrepare(connection, havingSql(selection), recursion);
    if (auto stopped = connection.stopError()) return *std::move(stopped);
    if (!asCondition) return notAnAggregate(asCondition.error().text);
    return {};
}

std::vector<std::string> databaseProblems(Connection& connection, const Selection& selection) {
    if (selection.from.empty()) return {};
    const bool recursion = mayRecurse(selection);
    if (auto table = tryPrepare(connection, columnSql(selection, "1"), recursion); !table)
        return {std::move(table).error().text};

    std::vector<std::string> problems;
    // `subject` is "" for a part that needs no name.
    const auto accepts = [&](const std::string& subject, const std::string& sql) {
        if (connection.stopError()) return false;
        const auto prepared = tryPrepare(connection, sql, recursion);
        if (!prepared) problems.push_back((subject.empty() ? "" : subject + ": ") + prepared.error().text);
        return prepared.hasValue();
    };
    const bool hasSoundWhere = selection.where.empty() || scanSql(selection.where);
    const bool hasSoundExpression = scanSql(selection.expression).hasValue();
    for (const std::string& key : selection.keys)
        accepts("key " + quoted(key), columnSql(selection, quoteName(key)));
    if (hasSoundWhere && !selection.where.empty())
        accepts(whereSubject, predicateSql(selection, selection.where));
    for (const NamedFilter& filter : selection.filters)
        accepts(filterSubject(filter.name), predicateSql(selection, filter.predicate));
    if (hasSoundExpression && accepts("", columnSql(selection, "(\n" + selection.expression + "\n)")))
        if (auto checked = checkAggregate(connection, selection); !checked)
            problems.push_back(std::move(checked).error().text);
    // The parts are right one by one; all of them may still be too much for one statement.
    if (problems.empty() && hasSoundWhere && hasSoundExpression)
        accepts("", singleSql(selection, KeyMatch::number));
    return problems;
}

}  // namespace tessera_host
