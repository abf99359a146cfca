#include "host/engine/sqlite/connection.h"

#include <log4cplus/logger.h>
#include <log4cplus/loggingmacros.h>

#include <initializer_list>
#include <utility>
#include <vector>

#include "host/engine/sqlite/bounded_functions.h"
#include "host/engine/sqlite/database_file.h"
#include "host/engine/sqlite/error_text.h"
#include "host/engine/sqlite/heap.h"
#include "host/engine/sqlite/query_sql.h"
#include "host/engine/sqlite/temporary_files.h"
#include "host/values/cell_format.h"

namespace tessera_host {
namespace {

struct Setting {
    int id;
    int value;
};

// Enough for any honest query. Each keeps a hostile one from using up memory, or time where a statement does not
// check its limits: finding equal aggregates takes time in proportion to the square of their number, and a long
// row of calls, each with a long text, has no loop in which it could be interrupted.
constexpr int schemaSqlLength = 200'000;  // of a definition in the database
constexpr int sqlLength = 100'000;        // of a document's statement
constexpr std::initializer_list<Setting> limits{
    {SQLITE_LIMIT_LENGTH, maxTextSize},      {SQLITE_LIMIT_SQL_LENGTH, schemaSqlLength},
    {SQLITE_LIMIT_EXPR_DEPTH, 1'000},        {SQLITE_LIMIT_COMPOUND_SELECT, 100},
    {SQLITE_LIMIT_VDBE_OP, 50'000},          {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100}, {SQLITE_LIMIT_WORKER_THREADS, 0},
};

// Without DQS a name in double quotes that no column has is an error and never turns into a text.
constexpr std::initializer_list<Setting> switches{
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_DQS_DML, 0},
    {SQLITE_DBCONFIG_DQS_DDL, 0},
    {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
};

// Bit of "PRAGMA function_list": not for use in schemas, which is what functions with effects are marked
// with.
constexpr std::int64_t directOnly = SQLITE_DIRECTONLY;

std::string_view textColumn(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    return text ? std::string_view(text) : std::string_view();
}

std::string secondsText(std::chrono::milliseconds time) {
    return formatCell(static_cast<double>(time.count()) / 1000, CellFormat(), "s");
}

std::string bytesText(std::uint64_t bytes) {
    return formatCell(static_cast<std::int64_t>(bytes), {CellFormat::Kind::binary, 3}, "B");
}

}  // namespace

Expected<std::unique_ptr<Connection>> Connection::open(const std::string& path,
                                                       std::chrono::milliseconds lockWait,
                                                       const RunOptions& options) {
    if (auto checked = checkDatabaseFile(path); !checked) return std::move(checked).error();
    if (!isHeapBounded())
        LOG4CPLUS_WARN(log4cplus::Logger::getInstance("tessera.host"),
                       "SQLite was used before it could be given a limit on memory");
    std::unique_ptr<Connection> connection(new Connection(lockWait));
    auto started = connection->start(path, Access::locked, options);
    if (!started && connection->isLost() && isSettledInClosedFolder(path)) {
        connection.reset(new Connection(lockWait));
        started = connection->start(path, Access::unlocked, options);
    }
    if (!started) return std::move(started).error();
    return connection;
}

Expected<void> Connection::start(const std::string& path, Access access, const RunOptions& options) {
    // Reading the schema compiles all that it has.
    const LimitScope scope(m_enforcer, {options});
    int code = openFile(path, access);
    if (code == SQLITE_OK) code = loadBuiltIns();
    if (code != SQLITE_OK) return errorOf(code);
    if (auto begun = beginSnapshot(options); !begun) return begun;
    // SQLite notices missing pages, but not that the last one is only half there.
    std::int64_t pageSize = 0;
    (void)forEachRow("PRAGMA page_size", [&](sqlite3_stmt* row) { pageSize = sqlite3_column_int64(row, 0); });
    const auto state = fileStateOf(path);
    endSnapshot();
    if (pageSize > 0 && state && state->size % pageSize != 0)
        return Error{ErrorKind::failed, "the database is damaged or truncated"};
    return {};
}

bool Connection::isUnchanged() const {
    return m_unlockedPath.empty() || fileStateOf(m_unlockedPath) == m_unlockedState;
}

Connection::~Connection() {
    if (m_database == nullptr) return;
    // Statements that still exist keep SQLite's own part alive, but must not call what is destroyed here.
    sqlite3_set_authorizer(m_database, nullptr, nullptr);
    sqlite3_progress_handler(m_database, 0, nullptr, nullptr);
    sqlite3_busy_handler(m_database, nullptr, nullptr);
    sqlite3_close_v2(m_database);
}

int Connection::openFile(const std::string& path, Access access) {
    constexpr int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    int code = SQLITE_OK;
    if (access == Access::locked) {
        code = sqlite3_open_v2(literalPath(path).c_str(), &m_database, flags, boundedFileSystem());
    } else {
        m_unlockedPath = path;
        m_unlockedState = fileStateOf(path);
        code = sqlite3_open_v2(immutableUri(path).c_str(), &m_database, flags | SQLITE_OPEN_URI,
                               boundedFileSystem());
    }
    if (code != SQLITE_OK) return code;
    for (const Setting& limit : limits)
        sqlite3_limit(m_database, limit.id, limit.value);
    for (const Setting& each : switches)
        sqlite3_db_config(m_database, each.id, each.value, nullptr);
    m_enforcer.install(m_database);
    m_authorizer.install(m_database);
    // The file is not trusted: check the structure of every page, and do not map a file that might be
    // truncated.
    return sqlite3_exec(m_database, "PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0", nullptr, nullptr,
                        nullptr);
}

template <class Visit>
int Connection::forEachRow(const char* sql, Visit visit) {
    sqlite3_stmt* prepared = nullptr;
    const int code = sqlite3_prepare_v2(m_database, sql, -1, &prepared, nullptr);
    if (code != SQLITE_OK) return code;
    StatementHandle statement(prepared);  // `visit` may throw
    while (sqlite3_step(prepared) == SQLITE_ROW)
        visit(prepared);
    return sqlite3_finalize(statement.release());
}

int Connection::loadBuiltIns() {
    NameSet modules;
    NameSet functions;
    NameSet refused;
    const int code = forEachRow("PRAGMA module_list",
                                [&](sqlite3_stmt* row) { modules.insert(foldName(textColumn(row, 0))); });
    if (code != SQLITE_OK) return code;
    // Columns: name, builtin, type, enc, narg, flags. A function of several forms is allowed when all of them
    // are.
    const int last = forEachRow("PRAGMA function_list", [&](sqlite3_stmt* row) {
        const std::string name = foldName(textColumn(row, 0));
        const bool isBuiltIn = sqlite3_column_int(row, 1) != 0;
        const bool isHarmless = isBuiltIn && (sqlite3_column_int64(row, 5) & directOnly) == 0;
        (isHarmless && !name.starts_with("sqlite_") ? functions : refused).insert(name);
    });
    if (last != SQLITE_OK) return last;
    refused.insert("json_patch");  // takes time in proportion to the product of two lengths
    for (const std::string& name : refused)
        functions.erase(name);
    m_authorizer.setBuiltIns(std::move(modules), std::move(functions));
    for (const char* table : {"json_each", "json_tree"})
        connectVirtualTable(table);
    return registerBoundedFunctions(m_database);
}

// When a virtual table is first named, SQLite declares it by statements that the authorizer would have to
// refuse. One that cannot be connected fails the queries that name it.
void Connection::connectVirtualTable(const std::string& name) {
    (void)forEachRow(("SELECT 1 FROM " + quoteName(name) + " LIMIT 0").c_str(), [](sqlite3_stmt*) {});
}

// The schema version is read first, so it is what fixes the state that the transaction sees.
int Connection::beginReading() {
    int code = sqlite3_exec(m_database, "BEGIN", nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) return code;
    std::int64_t version = -1;
    code = forEachRow("PRAGMA schema_version",
                      [&](sqlite3_stmt* row) { version = sqlite3_column_int64(row, 0); });
    if (code != SQLITE_OK || version == m_schemaVersion) return code;
    NameSet tables{"sqlite_master", "sqlite_schema"};
    std::vector<std::string> virtualTables;
    code = forEachRow(
        "SELECT name, type = 'table' AND rootpage = 0 FROM sqlite_master WHERE type IN ('table', 'view')",
        [&](sqlite3_stmt* row) {
            tables.insert(foldName(textColumn(row, 0)));
            if (sqlite3_column_int(row, 1) != 0) virtualTables.emplace_back(textColumn(row, 0));
        });
    if (code != SQLITE_OK) return code;
    for (const std::string& table : virtualTables)
        connectVirtualTable(table);
    m_authorizer.setTables(std::move(tables));
    m_schemaVersion = version;
    return SQLITE_OK;
}

Expected<void> Connection::beginSnapshot(const RunOptions& options) {
    const LimitScope scope(m_enforcer, {options});
    const int code = beginReading();
    if (code == SQLITE_OK) return {};
    Error error = errorOf(code);
    endSnapshot();
    return error;
}

void Connection::endSnapshot() noexcept {
    if (isInSnapshot()) sqlite3_exec(m_database, "ROLLBACK", nullptr, nullptr, nullptr);
}

Expected<Statement> Connection::prepare(const std::string& sql, bool mayRecurse) {
    sqlite3_stmt* statement = nullptr;
    m_authorizer.guard(mayRecurse);
    m_enforcer.setCompiling(true);
    sqlite3_limit(m_database, SQLITE_LIMIT_SQL_LENGTH, sqlLength);
    const int code = sqlite3_prepare_v3(m_database, sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    sqlite3_limit(m_database, SQLITE_LIMIT_SQL_LENGTH, schemaSqlLength);
    m_enforcer.setCompiling(false);
    Expected<Statement> prepared = Statement(statement, mayRecurse);
    if (code != SQLITE_OK) prepared = errorOf(code);
    m_authorizer.release();
    return prepared;
}

std::optional<Error> Connection::stopError() const {
    using Stop = LimitEnforcer::Stop;
    const QueryLimits& reached = m_enforcer.limits();
    switch (m_enforcer.stop()) {
        case Stop::cancelled:
            return Error{ErrorKind::cancelled, "the request was cancelled"};
        case Stop::timeout:
            return Error{ErrorKind::failed, "it was stopped after " + secondsText(reached.time)};
        case Stop::memory:
            return Error{ErrorKind::failed, "it was stopped because the database needs more than " +
                                                bytesText(reached.memory / 2) +
                                                " of memory for it, half of what a request may take"};
        case Stop::temporaryFiles:
            return Error{ErrorKind::failed, "it was stopped because it needs temporary files of more than " +
                                                bytesText(reached.memory)};
        case Stop::budget:  // never shown: the questions are then asked one by one
            return Error{ErrorKind::failed, "it takes too many steps"};
        case Stop::none:
            break;
    }
    return std::nullopt;
}

Error Connection::errorOf(int code) {
    if (isLossOfDatabase(code)) m_isLost = true;
    if (auto stopped = stopError()) return *std::move(stopped);
    if (m_authorizer.isGuarding() && !m_authorizer.refusal().empty())
        return {ErrorKind::failed, m_authorizer.refusal()};
    // SQLite says the same when a statement becomes too long while it is compiled.
    if (code == SQLITE_NOMEM && isHeapBounded() && !m_enforcer.isMemoryShort())
        return {ErrorKind::failed, "it is too long"};
    return {ErrorKind::failed, errorText(m_database, code)};
}

}  // namespace tessera_host
