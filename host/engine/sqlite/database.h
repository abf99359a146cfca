// The database of a pane: one file, read through one connection, a snapshot at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/engine/sqlite/connection.h"
#include "host/engine/sqlite/database_file.h"
#include "host/engine/sqlite/failure.h"
#include "platform/relay2/progress.h"

namespace tessera_host {

// Used by one thread at a time. Between snapshots it holds no lock, so other programs may write to the file
// or put another one in its place; the next snapshot sees what is there then.
class Database {
  public:
    using Settings = Connection::Timeouts;

    // Opens the file and makes sure that it is a database. Empty on failure, with the reason as a clause for
    // people.
    [[nodiscard]] static std::shared_ptr<Database> open(const std::string& path, const Settings& settings,
                                                        const relay2::IProgress* progress,
                                                        std::string& reason);
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // REQUIRES: a snapshot is open and has no failure.
    [[nodiscard]] Connection& connection() noexcept { return *m_connection; }
    // Changes whenever statements prepared before have become useless: the file or its schema is another one.
    [[nodiscard]] std::uint64_t epoch() const noexcept { return m_epoch; }
    // Counts the snapshots; within one, every query sees the same state.
    [[nodiscard]] std::uint64_t snapshotNumber() const noexcept { return m_snapshotNumber; }

  private:
    friend class Snapshot;
    friend class SnapshotHold;

    Database(std::string path, const Settings& settings) : m_path(std::move(path)), m_settings(settings) {}

    void enter(const relay2::IProgress* progress);
    void leave() noexcept;
    void hold() noexcept { ++m_holds; }
    void release() noexcept;
    void end() noexcept;
    [[nodiscard]] std::optional<Failure> begin(const relay2::IProgress* progress);
    [[nodiscard]] std::optional<Failure> reopen(const relay2::IProgress* progress);

    const std::string m_path;
    const Settings m_settings;
    std::unique_ptr<Connection> m_connection;
    std::optional<FileState> m_fileState;  // as it was before the connection was opened
    std::optional<Failure> m_failure;      // of the present snapshot
    std::uint64_t m_epoch = 0;
    std::uint64_t m_snapshotNumber = 0;
    int m_depth = 0;
    int m_holds = 0;
    bool m_isOpen = false;  // a snapshot is
};

}  // namespace tessera_host
