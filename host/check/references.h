// Whether what a document's rows show is declared, and the declarations themselves.
#pragma once

#include "host/check/display_sections.h"
#include "host/document/declarations.h"

namespace tessera_host {

// Reports references to undeclared queries, with wrong keys, and rows that never show a value.
void checkReferences(const DisplaySections::RowSets& rowSets, const Declarations& declarations,
                     Findings& findings, Watch& watch);

// Reports doubled and incomplete declarations, and filters that are never applied. `declarations` are those
// of `viewpoint`.
void checkDeclarations(const basekit2::variant_bag_t& viewpoint, const Declarations& declarations,
                       Findings& findings, Watch& watch);

// Reports pieces of SQL that cannot be put into a statement, as far as that can be seen without a database.
void checkSqlText(const Declarations& declarations, const Filters& filters, Findings& findings, Watch& watch);

}  // namespace tessera_host
