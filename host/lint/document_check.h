// Everything wrong with a document, in one run.
#pragma once

#include <span>
#include <vector>

#include "host/document/problem.h"
#include "host/document/viewpoint.h"
#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Checks the vocabulary, ids, links, display entries, references, declarations and cycles of a document.
// Called by `tessera check`; making a diagram does not need it. `sqlProblems` are what an engine found in the
// document's SQL (host/engine/declaration_check.h); they are merged with the others.
//
// Returns all problems in the order of the document; an empty list means that nothing was found. The only
// error is cancellation. n log n time. Any thread.
[[nodiscard]] Expected<std::vector<Problem>> checkDocument(const Viewpoint& viewpoint,
                                                           std::span<const Problem> sqlProblems,
                                                           const tessera_support::CancelToken& token);

}  // namespace tessera_host
