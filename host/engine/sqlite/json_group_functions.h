// json_group_array() and json_group_object().
#pragma once

#include <sqlite3.h>

namespace tessera_host {

// Replaces both by ones that keep to SQLite's limit on the length of a value while they collect. SQLite's own
// collect gigabytes and compare the length at the end. The texts are the same, also as window functions, except that
// a NULL for a name is an empty name, where SQLite's own writes no JSON. Returns an SQLite result code.
[[nodiscard]] int registerJsonGroups(sqlite3* database);

}  // namespace tessera_host
