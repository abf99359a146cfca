#include "host/engine/sqlite/database.h"

#include <utility>

#include "host/document/text.h"

namespace tessera_host {

std::shared_ptr<Database> Database::open(const std::string& path, const Settings& settings,
                                         const relay2::IProgress* progress, std::string& reason) {
    std::shared_ptr<Database> database(new Database(path, settings));
    if (const auto failure = database->reopen(progress)) {
        reason = failure->text;
        return nullptr;
    }
    return database;
}

std::optional<Failure> Database::reopen(const relay2::IProgress* progress) {
    m_connection.reset();
    ++m_epoch;
    m_fileState = fileStateOf(m_path);
    Failure failure;
    m_connection = Connection::open(m_path, m_settings, progress, failure);
    if (m_connection) return std::nullopt;
    return failure;
}

// A file that was written to is opened anew, too: whoever copies another file over it may leave a header by
// which SQLite cannot tell them apart.
std::optional<Failure> Database::begin(const relay2::IProgress* progress) {
    if (!m_connection || m_connection->isLost() || fileStateOf(m_path) != m_fileState)
        if (auto failure = reopen(progress))
            return Failure{quoted(m_path) + ": " + failure->text, failure->isCancelled};
    const std::int64_t schemaVersion = m_connection->schemaVersion();
    auto failure = m_connection->beginSnapshot(progress);
    if (m_connection->schemaVersion() != schemaVersion) ++m_epoch;
    return failure;
}

void Database::enter(const relay2::IProgress* progress) {
    ++m_depth;
    if (std::exchange(m_isOpen, true)) return;
    ++m_snapshotNumber;
    m_failure = begin(progress);
}

void Database::leave() noexcept {
    if (--m_depth == 0 && m_holds == 0) end();
}

void Database::release() noexcept {
    if (--m_holds == 0 && m_depth == 0) end();
}

void Database::end() noexcept {
    if (std::exchange(m_isOpen, false) && m_connection) m_connection->endSnapshot();
}

}  // namespace tessera_host
