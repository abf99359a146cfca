// Everything that a result rejects in a document.
#pragma once

#include <memory>
#include <vector>

#include "host/document/declarations.h"
#include "host/document/problem.h"
#include "host/engine/engine_registry.h"

namespace tessera_host {

// Looks at every declared query under `filters`, which are those that will apply to each of them. Nothing is
// run. The problems come in the order of the declarations, at their places; what is wrong with a filter
// wherever it is applied comes first and once, at the filter's place. A result that cannot be read is one
// problem without a position. Stops early, with the problems so far, once it is cancelled. The limits hold
// for each query.
[[nodiscard]] std::vector<Problem> checkAgainstResult(IResult& result, const Declarations& declarations,
                                                      const Filters& filters, const RunOptions& options = {});

// What an engine's SQL says about the same without a database, in the same order.
[[nodiscard]] std::vector<Problem> checkWithoutResult(const Engine& engine, const Declarations& declarations,
                                                      const Filters& filters, const CancelToken& cancel = {});

}  // namespace tessera_host
