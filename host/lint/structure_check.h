// The graph and display sections of a document.
#pragma once

#include "host/document/document_structure.h"
#include "host/document/problem.h"
#include "support/cancel_token.h"

namespace tessera_host {

// Reports missing and duplicate ids, links whose ends find no node, and a document that shows nothing.
void checkGraph(const basekit2::variant_bag_t& viewpoint, const DocumentStructure& structure,
                ProblemList& problems, const tessera_support::CancelToken& token);

// Reports entries that reach no node or link, and what a later entry, label, mode or row set replaces.
void checkDisplay(const DocumentStructure& structure, ProblemList& problems,
                  const tessera_support::CancelToken& token);

}  // namespace tessera_host
