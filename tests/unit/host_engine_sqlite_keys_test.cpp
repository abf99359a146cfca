// Which rows a key value means.
#include <gtest/gtest.h>

#include "host/document/percent_encoding.h"
#include "host/engine/sqlite/query_plan.h"
#include "host/engine/sqlite/query_sql.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

class SqliteKeys : public testing::Test {
  protected:
    // Every row has a bit of its own, so that the sum of a query says which rows it saw.
    SqliteKeys() {
        makeDatabase(path, R"sql(
            CREATE TABLE loose(k, bit INTEGER);
            INSERT INTO loose VALUES ('5', 1), (5, 2), (5.0, 4), ('05', 8), (' 5 ', 16), ('5.0', 32), (5.5, 64),
                                     (NULL, 128), (x'35', 256), ('a', 512), ('A', 1024), ('', 2048), ('1e1', 4096),
                                     (10, 8192), ('9007199254740993', 16384), (9007199254740993, 32768),
                                     (9007199254740992.0, 65536), (0, 131072), (-0.0, 262144);
            CREATE TABLE texts(k TEXT, bit INTEGER);
            INSERT INTO texts SELECT k, bit FROM loose;
            CREATE TABLE numbers(k NUMERIC, bit INTEGER);
            INSERT INTO numbers SELECT k, bit FROM loose;
            CREATE TABLE anycase(k TEXT COLLATE NOCASE, bit INTEGER);
            INSERT INTO anycase VALUES ('a', 1), ('A', 2), ('a ', 4);
            CREATE TABLE padded(k TEXT COLLATE RTRIM PRIMARY KEY, bit INTEGER);
            INSERT INTO padded VALUES ('a', 1), ('b ', 2);
            CREATE TABLE ids(k INTEGER PRIMARY KEY, bit INTEGER);
            INSERT INTO ids VALUES (1, 1), (2, 2);
            CREATE VIEW computed AS SELECT k AS k, bit FROM loose;
            CREATE VIEW joined AS SELECT k || '' AS k, bit FROM loose;
            CREATE VIEW both AS SELECT k, bit FROM texts WHERE bit = 1 UNION ALL SELECT k, bit FROM ids;
        )sql");
    }

    std::string bits(const std::string& table, const std::string& key) {
        Pane pane(path);
        pane.query("Bits", table, "SUM(bit)", {{"key", "k"}});
        return pane.value("/Bits/" + percentEncode(key));
    }

    TempFolder folder;
    const std::string path = folder.file("a.db");
};

TEST_F(SqliteKeys, ANumberMatchesEqualNumbersAndItsOwnText) {
    for (const char* table : {"loose", "computed"}) {
        EXPECT_EQ(bits(table, "5"), std::to_string(1 + 2 + 4)) << table;
        EXPECT_EQ(bits(table, "05"), std::to_string(2 + 4 + 8)) << table;
        EXPECT_EQ(bits(table, "5.0"), std::to_string(2 + 4 + 32)) << table;
        EXPECT_EQ(bits(table, "+5"), std::to_string(2 + 4)) << table;
        EXPECT_EQ(bits(table, "55e-1"), "64") << table;
        EXPECT_EQ(bits(table, "1e1"), std::to_string(4096 + 8192)) << table;
        EXPECT_EQ(bits(table, "0"), std::to_string(131072 + 262144)) << table;
        EXPECT_EQ(bits(table, "9007199254740993"), std::to_string(16384 + 32768)) << table;
        EXPECT_EQ(bits(table, "9007199254740992"), "65536") << table;
    }
}

TEST_F(SqliteKeys, OtherTextMatchesEqualTextOnly) {
    for (const char* table : {"loose", "computed", "joined"}) {
        EXPECT_EQ(bits(table, " 5 "), "16") << table;
        EXPECT_EQ(bits(table, "a"), "512") << table;
        EXPECT_EQ(bits(table, ""), "2048") << table;
        EXPECT_EQ(bits(table, "NULL"), "") << table;
        EXPECT_EQ(bits(table, "0x5"), "") << table;
    }
}

TEST_F(SqliteKeys, ColumnsOfTextCompareAsText) {
    // What was inserted as a number is the text '5', '5.0', '0.0' and so on there.
    EXPECT_EQ(bits("texts", "5"), std::to_string(1 + 2));
    EXPECT_EQ(bits("texts", "5.0"), std::to_string(4 + 32));
    EXPECT_EQ(bits("texts", "05"), "8");
    EXPECT_EQ(bits("texts", " 5 "), "16");
    EXPECT_EQ(bits("texts", "+5"), "");
    EXPECT_EQ(bits("joined", "05"), "8");
    // From a view without a type of its own: the same.
    EXPECT_EQ(bits("joined", "5"), std::to_string(1 + 2 + 256));  // || makes text of the blob, too
}

TEST_F(SqliteKeys, ColumnsOfNumbersCompareAsNumbers) {
    // '5', '05', ' 5 ' and '5.0' became the number 5 when they were inserted.
    EXPECT_EQ(bits("numbers", "5"), std::to_string(1 + 2 + 4 + 8 + 16 + 32));
    EXPECT_EQ(bits("numbers", "05"), std::to_string(1 + 2 + 4 + 8 + 16 + 32));
    EXPECT_EQ(bits("numbers", " 5 "), "");  // no number, and no such text
    EXPECT_EQ(bits("numbers", "a"), "512");
    EXPECT_EQ(bits("ids", "2"), "2");
    EXPECT_EQ(bits("ids", "2.0"), "2");
    EXPECT_EQ(bits("ids", "x"), "");
    EXPECT_EQ(bits("ids", "1.5"), "");
}

TEST_F(SqliteKeys, CaseAndSpacesCount) {
    EXPECT_EQ(bits("anycase", "a"), "1");
    EXPECT_EQ(bits("anycase", "A"), "2");
    EXPECT_EQ(bits("anycase", "a "), "4");
    EXPECT_EQ(bits("padded", "a"), "1");
    EXPECT_EQ(bits("padded", "a "), "");
    EXPECT_EQ(bits("padded", "b"), "");
}

TEST_F(SqliteKeys, ViewsMayMixTextsAndNumbers) {
    EXPECT_EQ(bits("both", "5"), "1");
    EXPECT_EQ(bits("both", "2"), "2");
    EXPECT_EQ(bits("both", "05"), "");
}

TEST_F(SqliteKeys, IndexesAreUsed) {
    makeDatabase(path,
                 "CREATE TABLE wide(a TEXT, b INTEGER, c, v); CREATE INDEX wide_ab ON wide(a, b); "
                 "CREATE INDEX wide_c ON wide(c); CREATE VIEW seen AS SELECT * FROM wide WHERE v > 0");
    Pane pane(path);
    pane.query("AB", "wide", "SUM(v)", {{"key", "a b"}})
        .query("C", "wide", "SUM(v)", {{"key", "c"}})
        .query("Id", "ids", "SUM(bit)", {{"key", "k"}})
        .query("Seen", "seen", "SUM(v)", {{"key", "c"}});
    const SnapshotUse snapshot(pane.source(), {});
    const auto plan = [&](std::size_t query, KeyMatch match) {
        const std::string sql = singleSql(Selection(pane.declarations().queries()[query], {}), match);
        const auto lines = queryPlan(Pane::connection(snapshot), sql, false);
        EXPECT_TRUE(lines);
        EXPECT_EQ(lines->size(), 1U);
        return lines->front();
    };
    for (const KeyMatch match : {KeyMatch::text, KeyMatch::number}) {
        EXPECT_EQ(plan(1, match), "SEARCH wide USING INDEX wide_c (c=?)");
        EXPECT_EQ(plan(2, match), "SEARCH ids USING INTEGER PRIMARY KEY (rowid=?)");
        EXPECT_EQ(plan(3, match), "SEARCH wide USING INDEX wide_c (c=?)");
    }
    EXPECT_EQ(plan(0, KeyMatch::text), "SEARCH wide USING INDEX wide_ab (a=? AND b=?)");
    EXPECT_EQ(plan(0, KeyMatch::number), "SEARCH wide USING INDEX wide_ab (a=? AND b=?)");
}

}  // namespace
}  // namespace tessera_host::sqlite_test
