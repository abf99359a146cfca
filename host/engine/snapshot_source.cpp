#include "host/engine/snapshot_source.h"

namespace tessera_host {

void SnapshotSource::begin(const RunOptions& options) {
    ++m_uses;
    if (m_snapshot || m_error) return;
    ++m_number;
    // An error is kept like a snapshot: all uses until the end of a hold fail for the same reason.
    auto snapshot = m_result->begin(options);
    if (snapshot)
        m_snapshot = *std::move(snapshot);
    else
        m_error = std::move(snapshot).error();
}

void SnapshotSource::endUse() {
    --m_uses;
    endUnlessNeeded();
}

void SnapshotSource::endHold() {
    --m_holds;
    endUnlessNeeded();
}

// A hold keeps the snapshot between uses, so that all of them see one state.
void SnapshotSource::endUnlessNeeded() {
    if (m_uses > 0 || m_holds > 0) return;
    m_snapshot.reset();
    m_error.reset();
}

SnapshotUse::SnapshotUse(SnapshotSource& source, const RunOptions& options) : m_source(source) {
    m_source.begin(options);
}

SnapshotUse::~SnapshotUse() {
    m_source.endUse();
}

Expected<void> SnapshotUse::state() const {
    if (m_source.m_error) return *m_source.m_error;
    return m_source.m_snapshot->state();
}

SnapshotHold::SnapshotHold(SnapshotSource& source) : m_source(source) {
    ++m_source.m_holds;
}

SnapshotHold::~SnapshotHold() {
    m_source.endHold();
}

}  // namespace tessera_host
