#include "host/engine/sqlite/statement.h"

#include <algorithm>

#include "host/engine/sqlite/connection.h"

namespace tessera_host {
namespace {

// Instructions in a row, with no loop among them, are not interrupted. The slowest ones, which read a text as a
// number, need about 4 ns for a byte of text and 48 bytes of the statement; this lets them run for about a second.
constexpr std::size_t maxStatementTimesText = 24'000'000'000;

}  // namespace

std::size_t Statement::bytes() const {
    if (!m_statement) return 0;
    return static_cast<std::size_t>(sqlite3_stmt_status(m_statement.get(), SQLITE_STMTSTATUS_MEMUSED, 0));
}

int Statement::textSize() const {
    const std::size_t size = maxStatementTimesText / std::max<std::size_t>(bytes(), 1);
    return static_cast<int>(std::min<std::size_t>(size, maxTextSize));
}

StatementRun::StatementRun(Connection& connection, Statement& statement)
    : m_connection(connection), m_statement(statement.m_statement.get()) {
    m_connection.m_authorizer.guard(statement.m_mayRecurse);
    sqlite3_limit(m_connection.m_database, SQLITE_LIMIT_LENGTH, statement.textSize());
    // Sets the counter of steps to 0 for this run.
    sqlite3_stmt_status(m_statement, SQLITE_STMTSTATUS_VM_STEP, 1);
}

// The bindings refer to texts of the caller, which may end with the run.
StatementRun::~StatementRun() {
    sqlite3_reset(m_statement);
    sqlite3_clear_bindings(m_statement);
    sqlite3_limit(m_connection.m_database, SQLITE_LIMIT_LENGTH, maxTextSize);
    m_connection.m_authorizer.release();
}

void StatementRun::bindText(int parameter, std::string_view text) {
    sqlite3_bind_text64(m_statement, parameter, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

void StatementRun::bindFlag(int parameter, bool flag) {
    sqlite3_bind_int(m_statement, parameter, flag ? 1 : 0);
}

Expected<bool> StatementRun::step() {
    const int code = sqlite3_step(m_statement);
    // Checked before the row is used: without locks it may mix states from before and after a change.
    if (!m_connection.isUnchanged())
        return Error{ErrorKind::failed, "the database was changed while it was read"};
    if (code == SQLITE_ROW) return true;
    if (code == SQLITE_DONE) return false;
    return m_connection.errorOf(code);
}

int StatementRun::columnType(int column) const {
    return sqlite3_column_type(m_statement, column);
}

std::int64_t StatementRun::columnInteger(int column) const {
    return sqlite3_column_int64(m_statement, column);
}

double StatementRun::columnReal(int column) const {
    return sqlite3_column_double(m_statement, column);
}

std::string_view StatementRun::columnText(int column) const {
    const void* text = sqlite3_column_type(m_statement, column) == SQLITE_BLOB
                           ? sqlite3_column_blob(m_statement, column)
                           : sqlite3_column_text(m_statement, column);
    // The size is valid only after the call that fixes the representation.
    const int size = sqlite3_column_bytes(m_statement, column);
    return text ? std::string_view(static_cast<const char*>(text), static_cast<std::size_t>(size))
                : std::string_view();
}

CellValue StatementRun::columnValue(int column) const {
    switch (columnType(column)) {
        case SQLITE_INTEGER:
            return columnInteger(column);
        case SQLITE_FLOAT:
            return columnReal(column);
        case SQLITE_NULL:
            return std::monostate();
        default:
            return std::string(columnText(column));
    }
}

std::uint64_t StatementRun::steps() const {
    // SQLite counts in 32 bits without sign, but returns an int.
    return static_cast<std::uint32_t>(sqlite3_stmt_status(m_statement, SQLITE_STMTSTATUS_VM_STEP, 0));
}

}  // namespace tessera_host
