// The SQL of declared queries.
#pragma once

#include <string>
#include <string_view>

#include "host/engine/selection.h"

namespace tessera_host {

// How the key values of a reference are compared.
enum class KeyMatch {
    text,    // no value is a number: only equal text matches
    number,  // some are: they match equal text and equal numbers
};

[[nodiscard]] std::string quoteName(std::string_view name);

// All of these REQUIRE fragments that scanSql() accepts.
//
// The second column of a single value keeps SQLite from counting rows in one go, which could not be stopped.

// The value over the rows that the filters and the keys leave. Parameter i is the text of key i; for
// KeyMatch::number, parameter n + i of n keys is a flag that says whether key i is a number.
[[nodiscard]] std::string singleSql(const Selection& selection, KeyMatch match);
// The value over no rows.
[[nodiscard]] std::string noRowsSql(const Selection& selection);
// The keys and the value of every group of rows with equal keys. REQUIRES: the query has keys.
[[nodiscard]] std::string groupedSql(const Selection& selection);

// "SELECT COLUMN FROM TABLE" (any SQL expression) and "SELECT 1 FROM TABLE WHERE (PREDICATE)", to find out
// what the database says to a part.
[[nodiscard]] std::string columnSql(const Selection& selection, std::string_view column);
[[nodiscard]] std::string predicateSql(const Selection& selection, std::string_view predicate);
// The same with the expression as the condition on groups, where aggregates are allowed and windows are not.
[[nodiscard]] std::string havingSql(const Selection& selection);

// Whether SQLite may drop a condition unseen, with unknown names in it: it does so beside a condition that is the
// number 0. True as well for conditions that merely contain a 0.
[[nodiscard]] bool mayDropConditions(const Selection& selection);

// True when no fragment has common table expressions of its own.
[[nodiscard]] bool mayRecurse(const Selection& selection);

}  // namespace tessera_host
