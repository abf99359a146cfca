#include "host/engine/sqlite/error_text.h"

#include <fmt/format.h>

#include "host/document/text.h"

namespace tessera_host {
namespace {

int primary(int code) {
    return code & 0xFF;
}

}  // namespace

std::string errorText(sqlite3* database, int code) {
    std::string message = oneLine(sqlite3_errmsg(database));
    switch (primary(code)) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return "the database is locked by another program";
        case SQLITE_CORRUPT:
            if (message.ends_with("string or blob too big"))
                return fmt::format(
                    "a definition in the database has more than {} bytes, the most that is read ({})",
                    sqlite3_limit(database, SQLITE_LIMIT_SQL_LENGTH, -1), message);
            return "the database is damaged or truncated (" + message + ")";
        case SQLITE_NOTADB:
            return "the file is not an SQLite database";
        case SQLITE_CANTOPEN:
            return "the database cannot be opened (" + message + ")";
        case SQLITE_IOERR:
            return "the database cannot be read (" + message + ")";
        // A reader cannot do what is left to do after a writer's crash.
        case SQLITE_READONLY:
            return "the database has unfinished changes that a program with write access must settle first";
        case SQLITE_FULL:
            return "there is no space left for temporary data";
        case SQLITE_TOOBIG:
            if (message == "statement too long") return "it is too long";
            return fmt::format("a value has more than {} bytes, the most that a query can work on",
                               sqlite3_limit(database, SQLITE_LIMIT_LENGTH, -1));
        case SQLITE_NOMEM:
            return "there is not enough memory";
        default:
            return message;
    }
}

bool isLossOfDatabase(int code) {
    switch (primary(code)) {
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_CANTOPEN:
        case SQLITE_IOERR:
        case SQLITE_READONLY:
            return true;
        default:
            return false;
    }
}

}  // namespace tessera_host
