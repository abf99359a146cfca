// What is wrong with a selection, found without running it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/query_sql.h"

namespace tessera_host {

// Why `sql` cannot stand where a fragment stands, as "SUBJECT has a ... (at character N)"; none when it can.
[[nodiscard]] std::optional<std::string> fragmentProblem(std::string_view subject, std::string_view sql);
// The subject under which a filter is spoken of.
[[nodiscard]] std::string filterSubject(const std::string& name);

// Why the filter cannot stand in a statement, whatever the table; none when it can.
[[nodiscard]] std::optional<std::string> filterTextProblem(const NamedFilter& filter);

// The fragments of the query that cannot be put into SQL, as clauses for people. The database is not asked.
[[nodiscard]] std::vector<std::string> fragmentProblems(const Selection& selection);

// Why the expression has not one value for all rows; none when it has. REQUIRES: the query could be prepared.
[[nodiscard]] std::optional<std::string> aggregateProblem(Connection& connection, const Selection& selection);

// Everything that the database rejects, each part of the query looked at by itself. Parts that
// fragmentProblems() lists are passed over. REQUIRES: the filters have no problem as fragments.
[[nodiscard]] std::vector<std::string> databaseProblems(Connection& connection, const Selection& selection);

}  // namespace tessera_host
