// For tests that compare SQL functions of this engine with SQLite's own.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

namespace tessera_host {

// A database in memory, with SQLite's own functions or with the bounded ones.
class Memory {
  public:
    Memory() {
        EXPECT_EQ(sqlite3_open(":memory:", &m_database), SQLITE_OK);
        sqlite3_limit(m_database, SQLITE_LIMIT_LENGTH, 500'000);
        sqlite3_limit(m_database, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100);
    }
    ~Memory() { sqlite3_close(m_database); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    [[nodiscard]] sqlite3* get() const { return m_database; }
    // The rows of one column, as SQL writes them, or the error. `texts` are the parameters.
    [[nodiscard]] std::string rows(const std::string& sql, const std::vector<std::string>& texts = {}) const {
        sqlite3_stmt* statement = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(m_database);
        for (std::size_t i = 0; i < texts.size(); ++i)
            sqlite3_bind_text(statement, static_cast<int>(i + 1), texts[i].data(),
                              static_cast<int>(texts[i].size()), SQLITE_STATIC);
        std::string text;
        int code = SQLITE_ROW;
        while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
            const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, 0));
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, 0));
            text += std::to_string(sqlite3_column_type(statement, 0)) + ":" +
                    (bytes == nullptr ? "" : std::string(bytes, size)) + "\n";
        }
        if (code != SQLITE_DONE) text += sqlite3_errmsg(m_database);
        sqlite3_finalize(statement);
        return text;
    }

    // Type and value of an expression, or the error.
    [[nodiscard]] std::string value(const std::string& expression) const {
        const std::string row =
            rows("SELECT typeof(v) || ' ' || quote(v) FROM (SELECT " + expression + " AS v)");
        return row.starts_with("3:") ? row.substr(2, row.size() - 3) : row;
    }

  private:
    sqlite3* m_database = nullptr;
};

}  // namespace tessera_host
