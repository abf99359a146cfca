// What SQLite's result codes mean to people.
#pragma once

#include <sqlite3.h>

#include <string>

namespace tessera_host {

// The text of a failed call on `database` that returned `code`, on one line.
[[nodiscard]] std::string errorText(sqlite3* database, int code);

// True when the connection cannot be used any more: it should be opened again.
[[nodiscard]] bool isLossOfDatabase(int code);

}  // namespace tessera_host
