// One state of the database for a whole request.
#pragma once

#include <memory>
#include <optional>

#include "host/engine/sqlite/database.h"

namespace tessera_host {

// While it lives, all queries see the database as it was when it was made. A snapshot made while another one
// of the same database lives shares that one's state, its failure included. Destroyed in the reverse order of
// making, on the thread that uses the database.
class Snapshot {
  public:
    // Waits for a lock of another program as long as the database's settings say, or until `progress` (which
    // may be null) reports cancellation.
    Snapshot(std::shared_ptr<Database> database, const relay2::IProgress* progress)
        : m_database(std::move(database)) {
        m_database->enter(progress);
    }
    ~Snapshot() { m_database->leave(); }
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    // Why nothing can be read, if so: the file could not be opened or locked, or was lost meanwhile.
    [[nodiscard]] std::optional<Failure> failure() const {
        if (m_database->m_failure) return m_database->m_failure;
        if (!m_database->m_connection->isInSnapshot())
            return Failure{"the database was lost during the request"};
        return std::nullopt;
    }

  private:
    const std::shared_ptr<Database> m_database;
};

// Keeps the first snapshot made while it lives, and so its state for all that follow, until its own end: a
// request that asks nothing waits for no lock.
class SnapshotHold {
  public:
    explicit SnapshotHold(std::shared_ptr<Database> database) : m_database(std::move(database)) {
        m_database->hold();
    }
    ~SnapshotHold() { m_database->release(); }
    SnapshotHold(const SnapshotHold&) = delete;
    SnapshotHold& operator=(const SnapshotHold&) = delete;

  private:
    const std::shared_ptr<Database> m_database;
};

}  // namespace tessera_host
