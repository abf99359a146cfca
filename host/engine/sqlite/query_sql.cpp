#include "host/engine/sqlite/query_sql.h"

#include <algorithm>
#include <cstddef>

#include "host/engine/sqlite/sql_guard.h"

namespace tessera_host {
namespace {

// The line ends keep a comment at the end of a fragment from reaching further.
std::string enclosed(std::string_view fragment) {
    return std::string("(\n").append(fragment).append("\n)");
}

std::string parameter(std::size_t number) {
    return "?" + std::to_string(number);
}

// Indexes serve the first comparison, in which SQLite first converts the value to what the column usually
// holds. The second one, behind the plus sign, sees both as they are: the text '05' is no match for the
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

std::vector<std::string> rowTerms(const QueryDeclaration& query, const FilterList& filters) {
    std::vector<std::string> terms;
    if (!query.where.empty()) terms.push_back(enclosed(query.where));
    for (const NamedFilter& filter : filters)
        terms.push_back(enclosed(filter.predicate));
    return terms;
}

std::string fromWhere(const QueryDeclaration& query, const std::vector<std::string>& terms) {
    std::string sql = " FROM " + quoteName(query.from);
    for (std::size_t i = 0; i < terms.size(); ++i)
        sql.append(i == 0 ? " WHERE " : " AND ").append(terms[i]);
    return sql;
}

std::string valueFrom(const QueryDeclaration& query, const std::vector<std::string>& terms) {
    return "SELECT " + enclosed(query.expression) + fromWhere(query, terms);
}

}  // namespace

std::string quoteName(std::string_view name) {
    std::string text = "\"";
    for (const char c : name)
        text.append(c == '"' ? 2 : 1, c);
    return text + '"';
}

std::string singleSql(const QueryDeclaration& query, const FilterList& filters, KeyMatch match) {
    std::vector<std::string> terms = rowTerms(query, filters);
    for (std::size_t i = 0; i < query.keys.size(); ++i) {
        const std::string column = quoteName(query.keys[i]);
        terms.push_back(match == KeyMatch::text ? textTerm(column, i + 1)
                                                : numberTerm(column, i + 1, query.keys.size()));
    }
    return valueFrom(query, terms);
}

std::string noRowsSql(const QueryDeclaration& query, const FilterList& filters) {
    std::vector<std::string> terms = rowTerms(query, filters);
    terms.emplace_back("0");
    return valueFrom(query, terms);
}

std::string groupedSql(const QueryDeclaration& query, const FilterList& filters) {
    std::string columns;
    std::string groups;
    for (const std::string& key : query.keys) {
        columns += quoteName(key) + ", ";
        groups += (groups.empty() ? " GROUP BY " : ", ") + quoteName(key) + " COLLATE BINARY";
    }
    return "SELECT " + columns + enclosed(query.expression) + fromWhere(query, rowTerms(query, filters)) +
           groups;
}

std::string columnSql(const QueryDeclaration& query, std::string_view column) {
    return std::string("SELECT ").append(column) + fromWhere(query, {});
}

std::string predicateSql(const QueryDeclaration& query, std::string_view predicate) {
    return "SELECT 1" + fromWhere(query, {enclosed(predicate)});
}

std::string havingSql(const QueryDeclaration& query) {
    return "SELECT 1" + fromWhere(query, {}) + " GROUP BY 1 HAVING " + enclosed(query.expression);
}

bool mayRecurse(const QueryDeclaration& query, const FilterList& filters) {
    return !scanSql(query.expression).hasWith && !scanSql(query.where).hasWith &&
           std::none_of(filters.begin(), filters.end(),
                        [](const NamedFilter& filter) { return scanSql(filter.predicate).hasWith; });
}

}  // namespace tessera_host
