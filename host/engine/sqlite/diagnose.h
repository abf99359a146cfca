// Everything that a database rejects in a document.
#pragma once

#include <vector>

#include "host/document/declarations.h"
#include "host/document/problem.h"
#include "host/engine/sqlite/database.h"

namespace tessera_host {

// Looks at every declared query, and at `filters`, which are those that will apply to each of them. Nothing
// is run. The problems come in the order of the declarations, at their places; what is wrong with a filter
// wherever it is applied comes first and once, at the filter's place. A database that cannot be read is one
// problem without a place.
[[nodiscard]] std::vector<Problem> diagnose(const std::shared_ptr<Database>& database,
                                            const Declarations& declarations, const Filters& filters,
                                            const relay2::IProgress* progress = nullptr);

}  // namespace tessera_host
