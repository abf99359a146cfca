// SQLite's own plans.
#pragma once

#include <string>
#include <vector>

#include "host/engine/result.h"
#include "host/engine/sqlite/connection.h"

namespace tessera_host {

// Both run within the limits of the LimitScope around the call.

// The lines of EXPLAIN QUERY PLAN for `sql`.
[[nodiscard]] Expected<std::vector<std::string>> queryPlan(Connection& connection, const std::string& sql,
                                                           bool mayRecurse);

// True when the grouped statement of a selection visits the rows of a group in the order in which single
// statements visit them. Sums of reals and joined texts depend on it. REQUIRES: the selection has keys.
[[nodiscard]] bool hasSameOrder(Connection& connection, const Selection& selection);

}  // namespace tessera_host
