// Prepared statements of a document and their runs.
#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "host/engine/sqlite/limit_enforcer.h"
#include "host/error.h"
#include "host/values/cell_format.h"

namespace tessera_host {

class Connection;

// The most bytes that a text or blob may have in any statement.
constexpr int maxTextSize = 500'000;

struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

// A statement made by Connection::prepare, or nothing. May outlive its connection, but is then of no use.
class Statement {
  public:
    Statement() = default;
    Statement(sqlite3_stmt* statement, bool mayRecurse) : m_statement(statement), m_mayRecurse(mayRecurse) {}

    explicit operator bool() const noexcept { return m_statement != nullptr; }
    // What it takes of memory, in bytes, while it is not run; 0 for nothing.
    [[nodiscard]] std::size_t bytes() const;
    // The most bytes that a text or blob may have in this one: the longer the statement, the fewer.
    [[nodiscard]] int textSize() const;

  private:
    friend class StatementRun;

    StatementHandle m_statement;
    bool m_mayRecurse = false;
};

// One run of a statement, under guard from its making to its end, and within the limits of the LimitScope
// around it; only one at a time exists on a connection. REQUIRES: the statement is one of this connection and
// not empty; bound texts live as long as the run.
class StatementRun {
  public:
    StatementRun(Connection& connection, Statement& statement);
    ~StatementRun();
    StatementRun(const StatementRun&) = delete;
    StatementRun& operator=(const StatementRun&) = delete;

    // Parameters are counted from 1. Those that are not bound are NULL.
    void bindText(int parameter, std::string_view text);
    void bindFlag(int parameter, bool flag);

    // Goes to the next row; false after the last one. The error says what failed, which limit was reached, or
    // that the request was cancelled; the run is over then.
    [[nodiscard]] Expected<bool> step();

    // Columns of the present row, counted from 0. The text stays valid until the next step.
    [[nodiscard]] int columnType(int column) const;
    [[nodiscard]] std::int64_t columnInteger(int column) const;
    [[nodiscard]] double columnReal(int column) const;
    [[nodiscard]] std::string_view columnText(int column) const;
    [[nodiscard]] CellValue columnValue(int column) const;

    // Virtual-machine steps so far.
    [[nodiscard]] std::uint64_t steps() const;

  private:
    Connection& m_connection;
    sqlite3_stmt* m_statement;
};

}  // namespace tessera_host
