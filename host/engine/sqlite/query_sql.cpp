#include "host/engine/sqlite/query_sql.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

#include "host/engine/sqlite/sql_guard.h"

namespace tessera_host {
namespace {

// The line ends keep a comment at the end of a fragment from reaching further.
std::string enclosed(std::string_view fragment) {
    return std::string("(\n").append(fragment).append("\n)");
}

// False for a text that scanSql() rejects: that is never put into a statement.
bool hasWith(std::string_view sql) {
    const auto fragment = scanSql(sql);
    return fragment && fragment->hasWith;
}

std::string parameter(std::size_t number) {
    return "?" + std::to_string(number);
}

// Indexes serve the first comparison, in which SQLite first converts the value to what the column usually
// holds. The second one, after the plus sign, sees both as they are: the text '05' does not match the
// number 5 that it became. With IS, and not =, the first is left alone by the optimizer, which would put the
// parameter into the second.
std::string textTerm(const std::string& column, std::size_t key) {
    const std::string value = parameter(key) + " COLLATE BINARY";
    return column + " IS " + value + " AND +" + column + " = " + value;
}

std::string numberTerm(const std::string& column, std::size_t key, std::size_t keyCount) {
    const std::string text = parameter(key);
    const std::string number =
        "CASE WHEN " + parameter(keyCount + key) + " THEN CAST(" + text + " AS NUMERIC) END";
    const std::string among = column + " COLLATE BINARY IN (" + text + ", " + number + ")";
    return among + " AND +" + among;
}

std::vector<std::string> rowTerms(const Selection& selection) {
    std::vector<std::string> terms;
    if (!selection.where.empty()) terms.push_back(enclosed(selection.where));
    for (const NamedFilter& filter : selection.filters)
        terms.push_back(enclosed(filter.predicate));
    return terms;
}

// A 0 that begins a number, such as 0, 00 or 0x0.
bool hasZero(std::string_view sql) {
    const auto isPart = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '.' || c == '\'';
    };
    for (std::size_t i = 0; i < sql.size(); ++i)
        if (sql[i] == '0' && (i == 0 || !isPart(static_cast<unsigned char>(sql[i - 1])))) return true;
    return false;
}

std::string fromWhere(const Selection& selection, const std::vector<std::string>& terms) {
    std::string sql = " FROM " + quoteName(selection.from);
    for (std::size_t i = 0; i < terms.size(); ++i)
        sql.append(i == 0 ? " WHERE " : " AND ").append(terms[i]);
    return sql;
}

std::string valueFrom(const Selection& selection, const std::vector<std::string>& terms) {
    return "SELECT " + enclosed(selection.expression) + fromWhere(selection, terms);
}

}  // namespace

std::string quoteName(std::string_view name) {
    std::string text = "\"";
    for (const char c : name)
        text.append(c == '"' ? 2 : 1, c);
    return text + '"';
}

std::string singleSql(const Selection& selection, KeyMatch match) {
    std::vector<std::string> terms = rowTerms(selection);
    for (std::size_t i = 0; i < selection.keys.size(); ++i) {
        const std::string column = quoteName(selection.keys[i]);
        terms.push_back(match == KeyMatch::text ? textTerm(column, i + 1)
                                                : numberTerm(column, i + 1, selection.keys.size()));
    }
    return valueFrom(selection, terms);
}

// The term "0" is false for every row.
std::string noRowsSql(const Selection& selection) {
    std::vector<std::string> terms = rowTerms(selection);
    terms.emplace_back("0");
    return valueFrom(selection, terms);
}

std::string groupedSql(const Selection& selection) {
    std::string columns;
    std::string groups;
    for (const std::string& key : selection.keys) {
        columns += quoteName(key) + ", ";
        groups += (groups.empty() ? " GROUP BY " : ", ") + quoteName(key) + " COLLATE BINARY";
    }
    return "SELECT " + columns + enclosed(selection.expression) + fromWhere(selection, rowTerms(selection)) +
           groups;
}

std::string columnSql(const Selection& selection, std::string_view column) {
    return std::string("SELECT ").append(column) + fromWhere(selection, {});
}

std::string predicateSql(const Selection& selection, std::string_view predicate) {
    return "SELECT 1" + fromWhere(selection, {enclosed(predicate)});
}

std::string havingSql(const Selection& selection) {
    return "SELECT 1" + fromWhere(selection, {}) + " GROUP BY 1 HAVING " + enclosed(selection.expression);
}

bool mayDropConditions(const Selection& selection) {
    const auto isZero = [](const NamedFilter& filter) { return hasZero(filter.predicate); };
    return hasZero(selection.where) ||
           std::any_of(selection.filters.begin(), selection.filters.end(), isZero);
}

bool mayRecurse(const Selection& selection) {
    return !hasWith(selection.expression) && !hasWith(selection.where) &&
           std::none_of(selection.filters.begin(), selection.filters.end(),
                        [](const NamedFilter& filter) { return hasWith(filter.predicate); });
}

}  // namespace tessera_host
