// Whether what a document's rows show is declared.
#pragma once

#include "host/check/finding.h"
#include "host/queries/declarations.h"

namespace tessera_host {

// Reports references to undeclared queries, with wrong keys, and rows that refer to nothing.
void checkReferences(const basekit2::variant_bag_t& viewpoint, const Declarations& declarations,
                     Findings& findings);

// Reports doubled and incomplete declarations, and filters that are never applied.
void checkDeclarations(const Declarations& declarations, Findings& findings);

// Reports pieces of SQL that cannot be put into a statement, as far as that can be seen without a database.
void checkSqlText(const Declarations& declarations, const Filters& filters, Findings& findings);

}  // namespace tessera_host
