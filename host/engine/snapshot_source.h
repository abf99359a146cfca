// One snapshot for all queries of one request.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "host/engine/result.h"

namespace tessera_host {

// Keeps the snapshot of the request that is running, so that all its queries see one state of the data. One
// for each pane; used by one thread at a time. The result is shared with other panes; each has its own
// snapshots. Pane makes a SnapshotHold for each request, and the table-tree engine a SnapshotUse for each
// query.
class SnapshotSource {
  public:
    // Begins nothing. REQUIRES: `result` is not null.
    explicit SnapshotSource(std::shared_ptr<IResult> result) : m_result(std::move(result)) {}
    SnapshotSource(const SnapshotSource&) = delete;
    SnapshotSource& operator=(const SnapshotSource&) = delete;

    // Counts the snapshots, from 1; 0 before the first. Values that are kept for a snapshot are kept under
    // its number.
    [[nodiscard]] std::uint64_t number() const noexcept { return m_number; }

  private:
    friend class SnapshotUse;
    friend class SnapshotHold;

    // Called by uses and holds as they are made and destroyed.
    void begin(const RunOptions& options);
    void endUse();
    void endHold();
    void endUnlessNeeded();  // ends the snapshot with the last of them

    const std::shared_ptr<IResult> m_result;
    std::unique_ptr<ISnapshot> m_snapshot;  // null while none is needed, or when it could not be begun
    std::optional<Error> m_error;           // why the present snapshot could not be begun
    std::uint64_t m_number = 0;
    int m_uses = 0;   // that are alive
    int m_holds = 0;  // that are alive
};

// While it lives, all questions see the database as it was when the first use was made. A use within another
// one, or within a hold, shares that one's snapshot, its error included. REQUIRES: the source outlives it.
class SnapshotUse {
  public:
    // Begins a snapshot, when there is none, with these options. That may wait for a lock of another
    // program; state() says how it ended.
    SnapshotUse(SnapshotSource& source, const RunOptions& options);
    ~SnapshotUse();
    SnapshotUse(const SnapshotUse&) = delete;
    SnapshotUse& operator=(const SnapshotUse&) = delete;

    // The error says why nothing can be read: the snapshot could not be begun, or the database was lost
    // meanwhile. All uses within one hold get the same error.
    [[nodiscard]] Expected<void> state() const;
    // Valid as long as this use. REQUIRES: the snapshot could be begun.
    [[nodiscard]] ISnapshot& snapshot() const noexcept { return *m_source.m_snapshot; }

  private:
    SnapshotSource& m_source;
};

// Keeps the first snapshot that is begun while it lives until its own end. A request without queries begins
// none and waits for no lock.
class SnapshotHold {
  public:
    explicit SnapshotHold(SnapshotSource& source);
    ~SnapshotHold();
    SnapshotHold(const SnapshotHold&) = delete;
    SnapshotHold& operator=(const SnapshotHold&) = delete;

  private:
    SnapshotSource& m_source;
};

}  // namespace tessera_host
