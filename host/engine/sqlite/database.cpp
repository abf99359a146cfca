#include "host/engine/sqlite/database.h"

#include <utility>

#include "host/document/text.h"

namespace tessera_host {

Expected<void> Database::open(const RunOptions& options) {
    m_selections.clear();
    m_connection.reset();
    m_fileState = fileStateOf(m_path);
    auto connection = Connection::open(m_path, m_lockWait, options);
    if (!connection) return std::move(connection).error();
    m_connection = *std::move(connection);
    return {};
}

// A file that was written to is opened again, too: another file copied over it may have a header by which
// SQLite cannot tell the two apart.
Expected<void> Database::begin(const RunOptions& options) {
    if (!m_connection || m_connection->isLost() || fileStateOf(m_path) != m_fileState) {
        if (auto opened = open(options); !opened)
            return Error{opened.error().kind, quoted(m_path) + ": " + opened.error().text};
    }
    const std::int64_t schemaVersion = m_connection->schemaVersion();
    auto begun = m_connection->beginSnapshot(options);
    if (m_connection->schemaVersion() != schemaVersion) m_selections.clear();
    m_selections.startSnapshot();
    return begun;
}

void Database::end() noexcept {
    if (m_connection) m_connection->endSnapshot();
}

}  // namespace tessera_host
