// One read-only connection to an SQLite file.
#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/engine/sqlite/authorizer.h"
#include "host/engine/sqlite/database_file.h"
#include "host/engine/sqlite/failure.h"
#include "host/engine/sqlite/statement.h"
#include "host/engine/sqlite/step_watch.h"

namespace tessera_host {

// Used by one thread at a time. Never writes to the file, and SQL of a document cannot make it do so: the
// connection is read-only and defensive, and an authorizer looks at every action of a document's SQL.
class Connection {
  public:
    // How long to wait for a lock of another program, and how long one statement may run.
    struct Timeouts {
        std::chrono::milliseconds busy{5'000};
        std::chrono::milliseconds query{600'000};
    };

    // Opens the file and reads its schema. `path` is taken literally. Empty on failure, with `failure` saying
    // why.
    [[nodiscard]] static std::unique_ptr<Connection> open(const std::string& path, const Timeouts& timeouts,
                                                          const relay2::IProgress* progress,
                                                          Failure& failure);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Begins a transaction and fixes what it sees; on failure there is none. REQUIRES: none is open.
    [[nodiscard]] std::optional<Failure> beginSnapshot(const relay2::IProgress* progress);
    void endSnapshot() noexcept;
    // False as well when SQLite gave up the transaction because of an error.
    [[nodiscard]] bool isInSnapshot() const noexcept { return sqlite3_get_autocommit(m_database) == 0; }

    // Changes with the tables and views. Statements prepared under another one have to be prepared again.
    [[nodiscard]] std::int64_t schemaVersion() const noexcept { return m_schemaVersion; }

    // Prepares SQL made of a document's fragments. `mayRecurse` is the authorizer's. Empty on failure, with
    // `problem` as a clause for people. Best inside of a snapshot, so that the schema it sees is the one that
    // the run will see.
    [[nodiscard]] Statement prepare(const std::string& sql, bool mayRecurse, std::string& problem);

    // False when a file that is read without locks was changed meanwhile: what was read may be no one state.
    [[nodiscard]] bool isUnchanged() const;

    // An error has happened after which the connection is of no more use.
    [[nodiscard]] bool isLost() const noexcept { return m_isLost; }
    [[nodiscard]] const Timeouts& timeouts() const noexcept { return m_timeouts; }

  private:
    friend class StatementRun;

    explicit Connection(const Timeouts& timeouts) : m_timeouts(timeouts), m_watch(timeouts.busy) {}

    enum class Access {
        locked,
        unlocked,  // for a file that SQLite cannot lock; nobody should write to it meanwhile
    };
    [[nodiscard]] std::optional<Failure> start(const std::string& path, Access access,
                                               const relay2::IProgress* progress);
    [[nodiscard]] int openFile(const std::string& path, Access access);
    [[nodiscard]] int loadBuiltIns();
    void connectVirtualTable(const std::string& name);
    [[nodiscard]] int beginReading();
    // Runs SQL of the host's own and hands every row to `visit(sqlite3_stmt*)`; answers the result code.
    template <class Visit>
    [[nodiscard]] int forEachRow(const char* sql, Visit visit);
    // Why a call answered `code`: the watch, the authorizer, or SQLite's own reason.
    [[nodiscard]] Failure failureOf(int code);

    sqlite3* m_database = nullptr;
    const Timeouts m_timeouts;
    StepWatch m_watch;
    Authorizer m_authorizer;
    std::int64_t m_schemaVersion = -1;
    bool m_isLost = false;
    // Of a file that is read without locks: where it is and what it looked like.
    std::string m_unlockedPath;
    std::optional<FileState> m_unlockedState;
};

}  // namespace tessera_host
