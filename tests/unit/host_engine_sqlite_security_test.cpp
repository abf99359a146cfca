// What SQL from a document cannot do.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "host/engine/sqlite/sql_guard.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

constexpr const char* countUp =
    "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c LIMIT 5) SELECT SUM(x) FROM c";

class SqliteSecurity : public testing::Test {
  protected:
    SqliteSecurity() {
        makeDatabase(path, std::string("CREATE TABLE t(a, b); INSERT INTO t VALUES (1, 'x'), (2, 'y');"
                                       "CREATE VIEW tower AS ") +
                               countUp +
                               ";CREATE VIEW nested AS SELECT * FROM tower;"
                               "CREATE VIEW evil AS SELECT load_extension('x') AS a;"
                               "CREATE TABLE json(j); INSERT INTO json VALUES ('[1, 2, 3]');");
        before = contentOf(path);
    }
    // Whatever was tried: the file is as it was, and nothing has appeared beside it.
    ~SqliteSecurity() override {
        EXPECT_EQ(contentOf(path), before);
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.file("")))
            files += entry.exists() ? 1 : 0;
        EXPECT_EQ(files, 1);
    }

    // The message with which the expression fails on the table t.
    std::string failureOf(const std::string& expression, const std::string& from = "t") {
        Pane pane(path);
        pane.query("Q", from, expression);
        const std::string text = pane.failure("/Q");
        EXPECT_TRUE(text.starts_with("query \"Q\": ")) << text;
        return text.substr(std::min<std::size_t>(text.size(), 11));
    }
    std::string valueOf(const std::string& expression, const std::string& from = "t") {
        Pane pane(path);
        pane.query("Q", from, expression);
        return pane.value("/Q");
    }

    TempFolder folder;
    const std::string path = folder.file("a.db");
    std::string before;
};

TEST_F(SqliteSecurity, FragmentsCannotLeaveTheirParentheses) {
    EXPECT_EQ(failureOf("1) FROM t; DROP TABLE t --"),
              "the expression closes a parenthesis that it did not open (at character 2)");
    EXPECT_EQ(failureOf("COUNT(*)) FROM t /*"),
              "the expression closes a parenthesis that it did not open (at character 9)");
    EXPECT_EQ(failureOf("COUNT(*); DROP TABLE t"), "the expression has a \";\" (at character 9)");
    EXPECT_EQ(failureOf("COUNT(*) /*"),
              "the expression has a comment that is never closed (at character 10)");
    EXPECT_EQ(failureOf("COUNT(*) || '"), "the expression has a ' that is never closed (at character 13)");
    EXPECT_EQ(failureOf("COUNT(*) + ?1"), "the expression has a parameter (\"?\") (at character 12)");
    EXPECT_EQ(valueOf("COUNT(*) -- ) FROM t WHERE a = 1"), "2");
}

// SQLite does not look at what stands beside a condition that is the number 0.
TEST_F(SqliteSecurity, FiltersWithUnknownColumnsFailBesideAFalseConditionToo) {
    for (const char* where : {"0", "1", "a = 0"}) {
        Pane pane(path);
        pane.query("Count", "t", "COUNT(*)", {{"where", where}});
        pane.filter("selection", "nowhere > 1");
        EXPECT_EQ(pane.failure("/Count"), "query \"Count\": filter \"selection\": no such column: nowhere")
            << where;
    }
}

TEST_F(SqliteSecurity, ConditionsAndFiltersCannotEither) {
    Pane pane(path);
    pane.query("W", "t", "COUNT(*)", {{"where", "a = 1) OR (1"}}).query("F", "t", "COUNT(*)");
    pane.filter("selection", "a = 1 UNION SELECT 1");
    EXPECT_EQ(
        pane.failure("/W"),
        "query \"W\": the condition (\"where\") closes a parenthesis that it did not open (at character 6)");
    EXPECT_EQ(pane.failure("/F"), "query \"F\": filter \"selection\": near \"UNION\": syntax error");
    pane.inputData()->setFilters({{"selection", {"1) --", {}}}});
    EXPECT_EQ(pane.failure("/F"),
              "query \"F\": filter \"selection\" closes a parenthesis that it did not open (at character 2)");
}

TEST_F(SqliteSecurity, OtherStatementsAreNotExpressions) {
    for (const char* sql :
         {"ATTACH DATABASE 'x.db' AS x", "PRAGMA user_version = 7", "DELETE FROM t", "VACUUM",
          "INSERT INTO t VALUES (1, 2)", "CREATE TABLE u(a)", "BEGIN", "DROP TABLE t"})
        EXPECT_NE(failureOf(sql), "") << sql;
}

TEST_F(SqliteSecurity, FunctionsWithEffectsAreRefused) {
    EXPECT_EQ(failureOf("COUNT(*) + (SELECT load_extension('x'))"),
              "the function \"load_extension\" is not allowed");
    EXPECT_EQ(failureOf("COUNT(load_extension('x', 'y'))"), "the function \"load_extension\" is not allowed");
    EXPECT_EQ(failureOf("COUNT(a)", "evil"), "unsafe use of load_extension()");
    EXPECT_EQ(failureOf("COUNT(fts3_tokenizer('simple'))"), "the function \"fts3_tokenizer\" is not allowed");
    EXPECT_EQ(failureOf("COUNT(sqlite_compileoption_get(1))"),
              "the function \"sqlite_compileoption_get\" is not allowed");
    for (const char* name : {"writefile", "readfile", "edit", "eval"})
        EXPECT_EQ(failureOf(std::string("COUNT(") + name + "('" + folder.file("out") + "', 'x'))"),
                  std::string("no such function: ") + name);
}

TEST_F(SqliteSecurity, EndlessTextIsRefusedBeforeItIsMade) {
    for (const char* name : {"printf", "format"})
        EXPECT_EQ(failureOf(std::string("COUNT(") + name + "('%.*c', 2147483647, 'x'))"),
                  std::string("the function \"") + name +
                      "\" is not allowed; the query's \"format\" and \"unit\" say how a value is shown");
}

TEST_F(SqliteSecurity, ComputingFunctionsAreAllowed) {
    EXPECT_EQ(valueOf("group_concat(upper(b) || substr('0' || a, -2), ',')"), "X01,Y02");
    EXPECT_EQ(valueOf("round(AVG(a), 1) || '/' || TOTAL(a) || '/' || MAX(length(b))"), "1.5/3.0/1");
    EXPECT_EQ(valueOf("SUM(json_extract('{\"n\":5}', '$.n')) + SUM('[7]' ->> 0)"), "24");
    EXPECT_EQ(valueOf("COUNT(*) FILTER (WHERE b LIKE 'X' OR b GLOB '?z')"), "1");
    EXPECT_EQ(valueOf("MIN(strftime('%Y', '2001-02-03')) || COUNT(coalesce(NULL, abs(-1)))"), "20012");
    EXPECT_EQ(valueOf("SUM((SELECT SUM(value) FROM json_each(j)))", "json"), "6");
}

TEST_F(SqliteSecurity, OnlyTablesOfTheDatabaseAreRead) {
    const std::string refusal = "only tables and views of the database may be read";
    EXPECT_EQ(failureOf("COUNT(*) + (SELECT COUNT(*) FROM pragma_table_info('t'))"), refusal);
    EXPECT_EQ(failureOf("COUNT(*) + (SELECT name FROM pragma_database_list)"), refusal);
    for (const char* table : {"pragma_module_list", "sqlite_stmt", "dbstat"})
        EXPECT_EQ(failureOf("COUNT(*)", table), refusal) << table;
    EXPECT_EQ(failureOf("COUNT(*) + (SELECT COUNT(*) FROM sqlite_temp_schema)"),
              "\"sqlite_temp_schema\" is not a table or view of the database");
    EXPECT_EQ(valueOf("COUNT(*)", "sqlite_schema"), "5");  // the schema is a table of the database
}

TEST_F(SqliteSecurity, ATableMayHaveTheNameOfAModule) {
    makeDatabase(path, "CREATE TABLE dbstat(a); INSERT INTO dbstat VALUES (1)");
    before = contentOf(path);
    EXPECT_EQ(valueOf("COUNT(*) + SUM(a)", "dbstat"), "2");
}

TEST_F(SqliteSecurity, RecursionIsForViewsOnly) {
    const std::string refusal = "a recursive query is only allowed in a view of the database";
    EXPECT_EQ(failureOf(std::string("COUNT(*) + (") + countUp + ")"), refusal);
    EXPECT_EQ(
        failureOf(
            "COUNT(*) + (WITH c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT COUNT(*) FROM c)"),
        refusal);
    // Called like a view of the database, it is still the document's own.
    EXPECT_EQ(failureOf("COUNT(*) + (WITH tower(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM tower) "
                        "SELECT COUNT(*) FROM tower)"),
              refusal);
    EXPECT_EQ(failureOf("COUNT(*) + (WITH c AS (SELECT 1) SELECT COUNT(*) FROM c, tower)"), refusal);
    EXPECT_EQ(valueOf("SUM(\"SUM(x)\")", "tower"), "15");
    EXPECT_EQ(valueOf("COUNT(*) + (SELECT * FROM nested)"), "17");
    EXPECT_EQ(valueOf("COUNT(*) + (WITH c(x) AS (SELECT a FROM t) SELECT SUM(x) FROM c)"), "5");
    EXPECT_EQ(valueOf("COUNT(*) + (WITH c(x) AS (SELECT a FROM t) SELECT COUNT(*) FROM c)"), "4");
}

// A row of calls without a loop is not interrupted, so that their number times the size of a text has a limit.
TEST_F(SqliteSecurity, LongStatementsWorkOnShorterTexts) {
    const std::string text = "hex(zeroblob(200000 + a))";
    EXPECT_EQ(valueOf("MAX(length(" + text + ")) > 400000"), "1");
    std::string calls = "length(" + text + ")";
    while (calls.size() < 90'000)
        calls += ",length(" + text + ")";
    const std::string failure = failureOf("MAX(1 IN (" + calls + "))");
    EXPECT_TRUE(failure.starts_with("a value has more than ")) << failure;
    EXPECT_FALSE(failure.starts_with("a value has more than 500000 ")) << failure;
}

TEST_F(SqliteSecurity, LargeValuesAreRefused) {
    const std::string tooLarge = "a value has more than 500000 bytes, the most that a query can work on";
    EXPECT_EQ(failureOf("COUNT(zeroblob(1000000000))"), tooLarge);
    EXPECT_EQ(failureOf("COUNT(replace('aaaaaaaaaa', 'a', hex(zeroblob(40000))))"), tooLarge);
    EXPECT_EQ(failureOf("COUNT(hex(zeroblob(200000)) || hex(zeroblob(200000)))"), tooLarge);
    EXPECT_NE(failureOf("COUNT(" + std::string(2000, '(') + "1" + std::string(2000, ')') + ")"), "");
}

// Checks the guard's promise with SQLite itself: what it accepts is one value, whatever its parts are.
TEST_F(SqliteSecurity, WhatTheGuardLetsPassStaysInItsPlace) {
    const std::vector<std::string> tokens{"(",        ")",  "'",    "\"",   "`", "[",  "]",       "--",
                                          "\n",       "/*", "*/",   "*",    "/", ";",  "1",       "a",
                                          ",",        " ",  " AS ", "''",   "$", "?",  "x'",      "-",
                                          " FROM t ", "\\", "\xC3", " OR ", "+", "\r", "SELECT ", "\f"};
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    std::mt19937 random(7);
    int passed = 0;
    for (int i = 0; i < 300'000; ++i) {
        std::string fragment;
        for (auto count = random() % 8 + 1; count > 0; --count)
            fragment += tokens[random() % tokens.size()];
        if (!scanSql(fragment)) continue;
        std::string sql = "SELECT (\n";
        sql.append(fragment).append("\n), 'end' FROM t WHERE (\n").append(fragment).append("\n) AND 7");
        sqlite3_stmt* statement = nullptr;
        const char* tail = nullptr;
        if (sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, &tail) == SQLITE_OK) {
            ++passed;
            ASSERT_EQ(sqlite3_column_count(statement), 2) << fragment;
            ASSERT_STREQ(sqlite3_column_name(statement, 1), "'end'") << fragment;
            ASSERT_EQ(sqlite3_bind_parameter_count(statement), 0) << fragment;
            ASSERT_STREQ(tail, "") << fragment;
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(database);
    EXPECT_GT(passed, 1000);
}

}  // namespace
}  // namespace tessera_host::sqlite_test
