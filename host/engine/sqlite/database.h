// One SQLite file, read through one connection, a snapshot at a time.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/database_file.h"
#include "host/engine/sqlite/prepared_selections.h"

namespace tessera_host {

// Used by one thread at a time. Between snapshots it holds no lock, so other programs may write to the file
// or put another one in its place; the next snapshot sees what is there then.
class Database {
  public:
    // Opens nothing yet. `lockWait` is how long to wait for a lock of another program.
    Database(std::string path, std::chrono::milliseconds lockWait)
        : m_path(std::move(path)), m_lockWait(lockWait) {}
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Opens the file and makes sure that it is a database. The error is a clause that does not name the file.
    [[nodiscard]] Expected<void> open(const RunOptions& options);

    // Begins a snapshot of the newest state; opens the file again when that is needed. REQUIRES: none is
    // open.
    [[nodiscard]] Expected<void> begin(const RunOptions& options);
    void end() noexcept;

    // These REQUIRE a snapshot.
    [[nodiscard]] Connection& connection() noexcept { return *m_connection; }
    [[nodiscard]] PreparedSelections& selections() noexcept { return m_selections; }

  private:
    const std::string m_path;
    const std::chrono::milliseconds m_lockWait;
    std::unique_ptr<Connection> m_connection;
    PreparedSelections m_selections;       // of the connection, and of its schema
    std::optional<FileState> m_fileState;  // as it was before the connection was opened
};

}  // namespace tessera_host
