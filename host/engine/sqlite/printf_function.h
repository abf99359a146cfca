// SQL's printf() and format().
#pragma once

#include <sqlite3.h>

namespace tessera_host {

// Replaces both by ones that make no more than SQLite's limit on the length of a value, in time proportional to
// what they make. SQLite's own take seconds to repeat a character billions of times and then to say that the text
// is too long. The texts are the same. Returns an SQLite result code.
[[nodiscard]] int registerPrintf(sqlite3* database);

}  // namespace tessera_host
