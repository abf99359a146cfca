// What SQLite's result codes mean to people.
#pragma once

#include <sqlite3.h>

#include <string>

namespace tessera_host {

// The text of a failed call on `database` that answered `code`, on one line.
[[nodiscard]] std::string errorText(sqlite3* database, int code);

// True when nothing more can be expected of the connection: it should be opened anew.
[[nodiscard]] bool isLossOfDatabase(int code);

}  // namespace tessera_host
