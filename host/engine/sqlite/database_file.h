// The file of a database, seen from outside. Opened through SQLite only: closing a file in another way would
// drop the locks that SQLite holds on it for the whole process.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

#include "host/error.h"

namespace tessera_host {

// Changes when the file is written to or another one takes its place.
struct FileState {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modified = 0;  // nanoseconds

    friend bool operator==(const FileState&, const FileState&) = default;
};

// None when there is no such file.
[[nodiscard]] std::optional<FileState> fileStateOf(const std::string& path);

// An error of kind cannotOpen when the file cannot be a database that may be read; its text is a clause that
// does not name the file. Does not open it.
[[nodiscard]] Expected<void> checkDatabaseFile(const std::string& path);

// Whether the file begins as SQLite's files do. False for what cannot be read.
[[nodiscard]] bool hasSqliteHeader(const std::string& path);

// Whether nothing can be made beside the file and no unfinished changes stand there. SQLite then cannot make
// what it wants beside a file in WAL mode, and needs none of it.
[[nodiscard]] bool isSettledInClosedFolder(const std::string& path);

// A form of `path` that SQLite takes as the name of that file, whatever it looks like. REQUIRES: not empty.
[[nodiscard]] std::string literalPath(const std::string& path);
// The same as a URI, for SQLITE_OPEN_URI: a file that is read without looking for locks and changes.
[[nodiscard]] std::string immutableUri(const std::string& path);

}  // namespace tessera_host
