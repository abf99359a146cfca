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
// `sqlProblems` are what an engine finds wrong with its SQL. All problems in the order of the document. Fails
// only when it is cancelled; it looks at the token all the time.
[[nodiscard]] Expected<std::vector<Problem>> checkDocument(const Viewpoint& viewpoint,
                                                           std::span<const Problem> sqlProblems,
                                                           const tessera_support::CancelToken& token);

}  // namespace tessera_host
