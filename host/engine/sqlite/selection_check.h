// Checks a selection without running it.
#pragma once

#include <string>
#include <vector>

#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/query_sql.h"

namespace tessera_host {

// Texts are clauses for people: `filter "selection" has a ";" (at character 7)`.

// An error when the filter cannot stand in a statement, whatever the table. Uses no database.
[[nodiscard]] Expected<void> checkFilterText(const NamedFilter& filter);

// The fragments of the selection that cannot be put into SQL. Its filters are not among them. Uses no
// database.
[[nodiscard]] std::vector<std::string> fragmentProblems(const Selection& selection);

// An error when the expression has a value for each row and not one for all rows. REQUIRES: the statement of
// the selection could be prepared.
[[nodiscard]] Expected<void> checkAggregate(Connection& connection, const Selection& selection);

// Everything that the database rejects, each part of the selection by itself. Parts that fragmentProblems()
// lists are skipped. REQUIRES: checkFilterText() accepts the filters.
[[nodiscard]] std::vector<std::string> databaseProblems(Connection& connection, const Selection& selection);

}  // namespace tessera_host
