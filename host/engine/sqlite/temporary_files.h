// SQLite's temporary files, so that a limit holds for them.
#pragma once

namespace tessera_host {

// The name of a file system for sqlite3_open_v2(): the system's own, except that what a connection writes to
// temporary files, as for sorting, is counted by the LimitEnforcer of the running thread and refused far beyond
// its limit. Null when the system has no file system for SQLite, which means the default to SQLite. Any thread.
[[nodiscard]] const char* boundedFileSystem();

}  // namespace tessera_host
