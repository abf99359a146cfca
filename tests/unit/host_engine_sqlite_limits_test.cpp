// Limits on time and memory, from the first byte of a statement on.
#include <gtest/gtest.h>

#include <atomic>
#include <string>

#include "host/engine/declaration_check.h"
#include "host/engine/sqlite/heap.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds margin{5000};  // without the limits it is minutes, or for ever
constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20U;

// An expression whose compiling takes twice the time and the memory with each level.
std::string doubling(int levels) {
    std::string sql = "SUM(i) + (WITH a0 AS (SELECT 1 AS x)";
    for (int i = 1; i <= levels; ++i) {
        const std::string before = "SELECT x FROM a" + std::to_string(i - 1);
        sql += ", a" + std::to_string(i) + " AS (" + before + " UNION ALL " + before + ")";
    }
    return sql + " SELECT COUNT(*) FROM a" + std::to_string(levels) + ")";
}

// A text of 400,000 characters.
const std::string longText = "replace(hex(zeroblob(200000)), '0', 'a')";

class SqliteLimits : public testing::Test {
  protected:
    SqliteLimits() { makeDatabase(path, numbersTable("n", 5000)); }

    // Runs what does not end before a limit; the query after it still has its value, from the same snapshot.
    std::string failureOf(const std::string& expression, const Settings& settings) {
        Pane pane(path, settings);
        pane.query("Long", "n", expression).query("Short", "n", "COUNT(*)");
        const SnapshotHold hold(pane.source());
        const auto start = std::chrono::steady_clock::now();
        const std::string text = pane.failure("/Long");
        EXPECT_LT(elapsedSince(start), settings.query + margin) << expression;
        EXPECT_EQ(pane.value("/Short"), "5000");
        EXPECT_EQ(pane.source().number(), 1U);
        return text;
    }
    static Settings within(milliseconds time, std::uint64_t memory = 1024 * mebibyte) {
        Settings settings;
        settings.query = time;
        settings.memory = memory;
        return settings;
    }

    TempFolder folder;
    const std::string path = folder.file("a.db");
};

TEST_F(SqliteLimits, TheHeapIsBounded) {
    EXPECT_TRUE(isHeapBounded());  // nothing here would hold otherwise
}

TEST_F(SqliteLimits, CompilingIsStoppedAtTheTimeLimit) {
    EXPECT_EQ(failureOf(doubling(40), within(milliseconds(100))),
              "query \"Long\": it was stopped after 0.1 s");
}

TEST_F(SqliteLimits, CompilingIsStoppedAtTheMemoryLimit) {
    EXPECT_EQ(failureOf(doubling(40), within(milliseconds(60'000), 40 * mebibyte)),
              "query \"Long\": it was stopped because the database needs more than 20.0 MiB of memory for "
              "it, half of "
              "what a request may take");
}

TEST_F(SqliteLimits, CompilingIsCancelled) {
    Pane pane(path);
    pane.query("Long", "n", doubling(40)).query("Short", "n", "COUNT(*)");
    Progress progress;
    progress.cancelAfter(milliseconds(100));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pane.value("/Long", &progress), "[Cancelled]");
    EXPECT_LT(elapsedSince(start), milliseconds(100) + margin);
    EXPECT_EQ(pane.value("/Short"), "5000");
}

TEST_F(SqliteLimits, CheckingIsStoppedAndGoesOnWithTheNextQuery) {
    Pane pane(path);
    pane.query("Long", "n", doubling(40)).query("Wrong", "n", "SUM(j)");
    const auto start = std::chrono::steady_clock::now();
    const auto problems = checkAgainstResult(pane.result(), pane.declarations(), {},
                                             {{}, {milliseconds(100), 1024 * mebibyte}});
    EXPECT_LT(elapsedSince(start), milliseconds(100) + margin);
    ASSERT_EQ(problems.size(), 2U);
    EXPECT_EQ(problems[0].text, "query \"Long\": it was stopped after 0.1 s");
    EXPECT_EQ(problems[1].text, "query \"Wrong\": no such column: j");
}

// No loop comes before the end of these.
TEST_F(SqliteLimits, LongRowsOfCallsAreStopped) {
    std::string patterns = "SUM(0";
    std::string texts = "SUM(0";
    for (int i = 0; i < 500; ++i) {
        patterns += " + (t LIKE '%" + std::string(90, 'a') + "b%')";
        texts += " + length(hex(substr(t, " + std::to_string(i) + ", 30000)))";
    }
    // As long as such a statement may work on.
    makeDatabase(path,
                 "CREATE TABLE long AS SELECT substr(" + longText +
                     ", 1, 60000) AS t FROM (WITH RECURSIVE r(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM r "
                     "WHERE i < 100) SELECT i FROM r)");
    for (const std::string& expression : {patterns + ")", texts + ")"}) {
        Pane pane(path, within(milliseconds(100)));
        pane.query("Long", "long", expression);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(pane.failure("/Long"), "query \"Long\": it was stopped after 0.1 s");
        EXPECT_LT(elapsedSince(start), milliseconds(100) + margin);
    }
}

TEST_F(SqliteLimits, ManyLargeValuesInsideAreStopped) {
    std::string expression = "MAX((SELECT 0";
    for (int i = 0; i < 100; ++i)
        expression += " + length(json_group_array(b.x || substr(hex(zeroblob(300)), 1, 400 + " +
                      std::to_string(i) + ")))";
    EXPECT_EQ(failureOf(expression + " FROM n b WHERE b.i < 300 AND n.i = 0))",
                        within(milliseconds(60'000), 20 * mebibyte)),
              "query \"Long\": it was stopped because the database needs more than 10.0 MiB of memory for "
              "it, half of "
              "what a request may take");
}

TEST_F(SqliteLimits, TemporaryFilesAreBounded) {
    EXPECT_EQ(failureOf("MAX((SELECT COUNT(*) FROM (SELECT zeroblob(40000) AS z FROM n ORDER BY random() "
                        "LIMIT -1 OFFSET 1)))",
                        within(milliseconds(60'000), 32 * mebibyte)),
              "query \"Long\": it was stopped because it needs temporary files of more than 32.0 MiB");
}

TEST_F(SqliteLimits, WhatNeedsTemporaryFilesWithinTheLimitRuns) {
    Pane pane(path);
    pane.query(
        "Sorted", "n",
        "MAX((SELECT COUNT(*) FROM (SELECT zeroblob(4000) AS z FROM n ORDER BY random() LIMIT -1 OFFSET 1)))",
        {{"where", "i = 0"}});
    EXPECT_EQ(pane.value("/Sorted"), "4999");
}

TEST_F(SqliteLimits, AStatementThatIsTooLongSaysSo) {
    std::string expression = "SUM(i IN (0";
    for (int i = 1; i < 11'000; ++i)
        expression += ",i+" + std::to_string(i);
    EXPECT_EQ(failureOf(expression + "))", {}), "query \"Long\": it is too long");
}

// A value is counted once, and three times for each cell that shows it.
TEST_F(SqliteLimits, ValuesOfARequestAreBounded) {
    Pane pane(path, within(milliseconds(60'000), 8 * mebibyte));
    pane.query("Text", "n", longText + " || COUNT(*)", {{"key", "i"}}).query("Short", "n", "COUNT(*)");
    const SnapshotHold hold(pane.source());
    for (const char* reference : {"/Text/1", "/Text/2"})  // 1.6 MB each; the limit is 4.2 MB
        EXPECT_EQ(pane.value(reference).size(), 400'001U);
    EXPECT_EQ(pane.failure("/Text/3"),
              "query \"Text\": the values of this request need more than 4.00 MiB of memory, half "
              "of what a request may take");
    EXPECT_EQ(pane.value("/Short"), "5000");
}

TEST_F(SqliteLimits, TheNextRequestHasTheWholeLimitAgain) {
    Pane pane(path, within(milliseconds(60'000), 8 * mebibyte));
    pane.query("Text", "n", longText + " || COUNT(*)", {{"key", "i"}});
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(pane.value("/Text/1").size(), 400'001U);
}

// Each asks for a key that no row has, so that all of them get the one value over no rows.
TEST_F(SqliteLimits, ManyReferencesToOneLargeValueAreBounded) {
    Pane pane(path, within(milliseconds(60'000), 16 * mebibyte));
    pane.query("Text", "n", longText + " || COUNT(*)", {{"key", "x"}});
    std::vector<std::string> references;
    for (int i = 0; i < 2000; ++i)
        references.push_back("/Text/none" + std::to_string(i));
    sptr_t<qlib_1::ITableTree> tree;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(pane.run(references, tree).is_success());
    EXPECT_LT(elapsedSince(start), milliseconds(30'000));
    EXPECT_NE(pane.messenger.take().find("the values of this request need more than 8.00 MiB"),
              std::string::npos);
}

}  // namespace
}  // namespace tessera_host::sqlite_test
