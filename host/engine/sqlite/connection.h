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
#include "host/engine/sqlite/limit_enforcer.h"
#include "host/engine/sqlite/statement.h"
#include "host/error.h"

namespace tessera_host {

// Used by one thread at a time. Never writes to the file, and SQL of a document cannot make it do so: the
// connection is read-only and defensive, and an authorizer looks at every action of a document's SQL.
class Connection {
  public:
    // Opens the file and reads its schema. `path` is taken literally. `lockWait` is how long to wait for a
    // lock of another program, now and later.
    [[nodiscard]] static Expected<std::unique_ptr<Connection>> open(const std::string& path,
                                                                    std::chrono::milliseconds lockWait,
                                                                    const RunOptions& options);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Begins a transaction and fixes what it sees; on failure there is none. REQUIRES: none is open.
    [[nodiscard]] Expected<void> beginSnapshot(const RunOptions& options);
    void endSnapshot() noexcept;
    // False as well when SQLite gave up the transaction because of an error.
    [[nodiscard]] bool isInSnapshot() const noexcept { return sqlite3_get_autocommit(m_database) == 0; }

    // Changes with the tables and views. Statements prepared under another one have to be prepared again.
    [[nodiscard]] std::int64_t schemaVersion() const noexcept { return m_schemaVersion; }

    // Whose limits hold for what is prepared and run: see LimitScope.
    [[nodiscard]] LimitEnforcer& enforcer() noexcept { return m_enforcer; }
    // Why everything in the present scope fails from now on; none while no limit is reached.
    [[nodiscard]] std::optional<Error> stopError() const;

    // Prepares SQL made of a document's fragments. `mayRecurse` is the authorizer's. Best inside of a
    // snapshot, so that the schema it sees is the one that the run will see.
    [[nodiscard]] Expected<Statement> prepare(const std::string& sql, bool mayRecurse);

    // False when a file that is read without locks was changed meanwhile: what was read may be no one state.
    [[nodiscard]] bool isUnchanged() const;

    // An error has happened after which the connection is of no more use.
    [[nodiscard]] bool isLost() const noexcept { return m_isLost; }

  private:
    friend class StatementRun;

    explicit Connection(std::chrono::milliseconds lockWait) : m_enforcer(lockWait) {}

    enum class Access {
        locked,
        unlocked,  // for a file that SQLite cannot lock; no program should write to it meanwhile
    };
    [[nodiscard]] Expected<void> start(const std::string& path, Access access, const RunOptions& options);
    [[nodiscard]] int openFile(const std::string& path, Access access);
    [[nodiscard]] int loadBuiltIns();
    void connectVirtualTable(const std::string& name);
    [[nodiscard]] int beginReading();
    // Runs SQL of the host's own and hands every row to `visit(sqlite3_stmt*)`; returns the result code.
    template <class Visit>
    [[nodiscard]] int forEachRow(const char* sql, Visit visit);
    // Why a call returned `code`: a limit, the authorizer, or SQLite's own reason.
    [[nodiscard]] Error errorOf(int code);

    sqlite3* m_database = nullptr;
    LimitEnforcer m_enforcer;
    Authorizer m_authorizer;
    std::int64_t m_schemaVersion = -1;
    bool m_isLost = false;
    // Of a file that is read without locks: where it is and what it looked like.
    std::string m_unlockedPath;
    std::optional<FileState> m_unlockedState;
};

}  // namespace tessera_host
