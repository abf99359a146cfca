// LIKE and GLOB.
#pragma once

#include <sqlite3.h>

namespace tessera_host {

// Replaces both by ones that a limit or a cancelled request can end in the middle: comparing takes time in
// proportion to the product of both lengths, and a statement may have thousands of them in a row. They return the
// same. SQLite uses no index for the beginning of a pattern then. Returns an SQLite result code.
[[nodiscard]] int registerPatterns(sqlite3* database);

}  // namespace tessera_host
