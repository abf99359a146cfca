// Tests the authorizer with SQL that the guard would reject before it.
#include "host/engine/sqlite/authorizer.h"

#include <gtest/gtest.h>

#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

class SqliteAuthorizer : public testing::Test {
  protected:
    SqliteAuthorizer() {
        EXPECT_EQ(sqlite3_open(":memory:", &m_database), SQLITE_OK);
        run("CREATE TABLE t(a); CREATE INDEX ti ON t(a);");
        run("SELECT * FROM pragma_table_info('t')");  // its declaring is not what is to be seen here
        authorizer.setTables({"t"});
        authorizer.setBuiltIns({"sqlite_stmt"}, {"count", "max"});
        authorizer.install(m_database);
    }
    ~SqliteAuthorizer() override { sqlite3_close(m_database); }

    void run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(m_database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(m_database);
    }

    // What is refused of `sql`; "" when it may be prepared.
    std::string refusal(const std::string& sql, bool mayRecurse = true) {
        authorizer.guard(mayRecurse);
        sqlite3_stmt* statement = nullptr;
        const int code = sqlite3_prepare_v2(m_database, sql.c_str(), -1, &statement, nullptr);
        sqlite3_finalize(statement);
        authorizer.release();
        EXPECT_EQ(code == SQLITE_OK, authorizer.refusal().empty())
            << sql << ": " << sqlite3_errmsg(m_database);
        return authorizer.refusal();
    }

    Authorizer authorizer;

  private:
    sqlite3* m_database = nullptr;
};

TEST_F(SqliteAuthorizer, ReadingIsAllowed) {
    EXPECT_EQ(refusal("SELECT COUNT(*), MAX(a) FROM t WHERE T.A > 1"), "");
    EXPECT_EQ(refusal("SELECT a FROM main.T"), "");
    EXPECT_EQ(refusal("WITH c AS (SELECT 1) SELECT count(*) FROM c"), "");
}

TEST_F(SqliteAuthorizer, EverythingElseIsRefused) {
    EXPECT_EQ(refusal("INSERT INTO t VALUES (1)"), "only reading is allowed, not INSERT \"t\"");
    EXPECT_EQ(refusal("UPDATE t SET a = 1"), "only reading is allowed, not UPDATE \"t\"");
    EXPECT_EQ(refusal("DELETE FROM t"), "only reading is allowed, not DELETE \"t\"");
    EXPECT_EQ(refusal("PRAGMA table_info(t)"), "only reading is allowed, not PRAGMA \"table_info\"");
    EXPECT_EQ(refusal("ATTACH 'x' AS x"), "only reading is allowed, not ATTACH \"x\"");
    EXPECT_EQ(refusal("DETACH x"), "only reading is allowed, not DETACH \"x\"");
    EXPECT_EQ(refusal("BEGIN"), "only reading is allowed, not a transaction \"BEGIN\"");
    EXPECT_EQ(refusal("SAVEPOINT s"), "only reading is allowed, not a savepoint \"BEGIN\"");
    EXPECT_NE(refusal("ANALYZE t"), "");
    EXPECT_EQ(refusal("REINDEX ti"), "only reading is allowed, not REINDEX \"ti\"");
    EXPECT_NE(refusal("CREATE TABLE u(a)"), "");
    EXPECT_NE(refusal("CREATE TEMP TABLE u(a)"), "");
    EXPECT_NE(refusal("DROP INDEX ti"), "");
    EXPECT_EQ(refusal("SELECT min(a) FROM t"), "the function \"min\" is not allowed");
    EXPECT_EQ(refusal("SELECT name FROM pragma_table_info('t')"),
              "\"pragma_table_info\" is not a table or view of the database");
}

TEST_F(SqliteAuthorizer, RecursionNeedsAViewAndPermission) {
    const std::string recursion = "WITH c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT x FROM c";
    const std::string text = "a recursive query is only allowed in a view of the database";
    run("CREATE VIEW v AS " + recursion);
    EXPECT_EQ(refusal("SELECT x FROM v", true), "");
    EXPECT_EQ(refusal("SELECT x FROM v", false), text);
    EXPECT_EQ(refusal(recursion, false), text);
}

TEST_F(SqliteAuthorizer, TheHostsOwnStatementsAreFree) {
    authorizer.guard(false);
    authorizer.release();
    run("BEGIN; INSERT INTO t VALUES (1); PRAGMA user_version = 3; ROLLBACK");
}

class SqliteVirtualTables : public testing::Test {
  protected:
    TempFolder folder;
    const std::string path = folder.file("a.db");
};

TEST_F(SqliteVirtualTables, OfTheDatabaseAreRead) {
    makeDatabase(path,
                 "CREATE VIRTUAL TABLE boxes USING rtree(id, x0, x1);"
                 "INSERT INTO boxes VALUES (1, 0, 1), (2, 5, 6), (3, 5.5, 9);");
    Pane pane(path);
    pane.query("Boxes", "boxes", "COUNT(*) || ':' || SUM(id)", {{"where", "x0 < 6 AND x1 > 5"}});
    EXPECT_EQ(pane.value("/Boxes"), "2:5");
    Writer(path).run("INSERT INTO boxes VALUES (4, 5, 6); CREATE VIRTUAL TABLE late USING rtree(id, x0, x1)");
    EXPECT_EQ(pane.value("/Boxes"), "3:9");
}

}  // namespace
}  // namespace tessera_host::sqlite_test
