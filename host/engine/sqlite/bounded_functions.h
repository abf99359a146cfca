// SQL functions that cannot hold up a cancelled request.
#pragma once

#include <sqlite3.h>

namespace tessera_host {

// Puts versions of instr, replace, trim, ltrim and rtrim in the place of SQLite's own, which for long texts
// take time in proportion to the product of two lengths, in one piece that nothing can interrupt. These take
// time in proportion to the sum. They answer the same, except that a malformed character of more than four
// bytes in the set of characters to trim is ignored. And a version of COUNT(*), for which SQLite goes through
// a whole table in one piece. Returns an SQLite result code.
[[nodiscard]] int registerBoundedFunctions(sqlite3* database);

}  // namespace tessera_host
