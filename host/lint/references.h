// Whether what a document's rows show is declared, and the declarations themselves.
#pragma once

#include "host/document/viewpoint.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Reports references to undeclared queries or with the wrong keys, and rows that never show a value.
void checkReferences(const DocumentStructure& structure, const Declarations& declarations,
                     ProblemList& problems, const tessera_support::CancelToken& token);

// Reports queries and filters that are declared twice, and filters that are never applied. Those that could
// not be read are `Viewpoint::problems()`.
void checkDeclarations(const Viewpoint& viewpoint, ProblemList& problems,
                       const tessera_support::CancelToken& token);

}  // namespace tessera_host
