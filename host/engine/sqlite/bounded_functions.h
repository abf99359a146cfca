// SQL functions that neither hold up a cancelled request nor take memory without bound.
#pragma once

#include <sqlite3.h>

namespace tessera_host {

// Replaces functions of SQLite that nothing can interrupt while they run:
// - instr, replace, trim, ltrim and rtrim, whose time is proportional to the product of two lengths. The time
//   of the new ones is proportional to the sum. They return the same, except that a malformed character of
//   more than four bytes in the set of characters to trim is ignored.
// - COUNT(*), which counts a whole table in one step.
// - LIKE and GLOB (pattern_functions.h), printf and format (printf_function.h), json_group_array and
//   json_group_object (json_group_functions.h).
// Returns an SQLite result code.
[[nodiscard]] int registerBoundedFunctions(sqlite3* database);

}  // namespace tessera_host
