// Many references to one query: the values are those of single statements, only sooner.
#include <gtest/gtest.h>

#include <random>

#include "host/document/percent_encoding.h"
#include "host/engine/sqlite/query_plan.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

constexpr std::uint64_t noLimit = RunLimits::noBudget;

const std::vector<std::string> sqlValues{"NULL",
                                         "'a'",
                                         "'b'",
                                         "'A'",
                                         "''",
                                         "5",
                                         "5.0",
                                         "'5'",
                                         "'05'",
                                         "' 5 '",
                                         "5.5",
                                         "'5.5'",
                                         "x'61'",
                                         "-3",
                                         "'-3'",
                                         "1e20",
                                         "'x' || char(233)",
                                         "'0'",
                                         "-0.0",
                                         "9007199254740993",
                                         "9007199254740992.0",
                                         "'a' || char(0)",
                                         "0.1"};
const std::vector<std::string> keyValues{"a",
                                         "b",
                                         "A",
                                         "",
                                         "5",
                                         "5.0",
                                         "05",
                                         " 5 ",
                                         "5.5",
                                         "-3",
                                         "1e20",
                                         "x\u00E9",
                                         "0",
                                         "-0",
                                         "9007199254740993",
                                         "9007199254740992",
                                         std::string("a\0", 2),
                                         "0.1",
                                         "100000000000000000000",
                                         "nobody",
                                         "7"};

// Sums of reals and joined texts depend on the order of the rows.
const std::vector<std::string> expressions{"COUNT(*)",
                                           "SUM(x)",
                                           "group_concat(x, ' ')",
                                           "MAX(x) || MIN(v)",
                                           "AVG(x) * COUNT(DISTINCT v)",
                                           "x || COUNT(*)",
                                           "SUM(v)",
                                           "COUNT(*) + (SELECT COUNT(*) FROM t)"};

struct Shape {
    const char* name;
    const char* sql;  // makes what the query is from out of t(k1, k2, v, x)
    const char* from;
};
const std::vector<Shape> shapes{
    {"table", "", "t"},
    {"typed", "CREATE TABLE u(k1 TEXT, k2 INTEGER, v, x REAL); INSERT INTO u SELECT * FROM t", "u"},
    {"numeric", "CREATE TABLE u(k1 NUMERIC, k2 REAL, v, x REAL); INSERT INTO u SELECT * FROM t", "u"},
    {"collated",
     "CREATE TABLE u(k1 TEXT COLLATE NOCASE, k2 COLLATE RTRIM, v, x); INSERT INTO u SELECT * FROM t", "u"},
    {"indexed", "CREATE INDEX ti ON t(k1, k2)", "t"},
    {"half indexed", "CREATE INDEX ti ON t(k2)", "t"},
    {"covered", "CREATE INDEX ti ON t(x, k1, k2, v)", "t"},
    {"view", "CREATE VIEW w AS SELECT k1, k2, v, x FROM t WHERE v <> 3", "w"},
    {"expressions", "CREATE VIEW w AS SELECT k1 || '' AS k1, coalesce(k2, 5) AS k2, v, x FROM t", "w"},
    {"union", "CREATE TABLE u(k1 TEXT, k2, v, x); CREATE VIEW w AS SELECT * FROM t UNION ALL SELECT * FROM u",
     "w"},
    {"join",
     "CREATE TABLE o(v INTEGER PRIMARY KEY, k2); INSERT INTO o SELECT DISTINCT v, v % 2 FROM t;"
     "CREATE VIEW w AS SELECT k1, o.k2, v, x FROM t JOIN o USING (v)",
     "w"},
};

class SqliteGrouping : public testing::Test {
  protected:
    static std::string pick(const std::vector<std::string>& from, std::mt19937& random) {
        return from[random() % from.size()];
    }

    static std::string randomTable(std::mt19937& random, int rows) {
        std::string sql = "CREATE TABLE t(k1, k2, v INTEGER, x REAL); INSERT INTO t VALUES ";
        for (int i = 0; i < rows; ++i) {
            sql += i == 0 ? "(" : ", (";
            sql += pick(sqlValues, random) + ", " + pick(sqlValues, random) + ", " +
                   std::to_string(random() % 5) + ", ";
            sql += std::to_string(static_cast<double>(random() % 100000) / 977.0) + ")";
        }
        return sql + ";";
    }

    static std::string referenceFor(const std::string& id, int keyCount, std::mt19937& random) {
        std::string reference = "/" + id;
        for (int i = 0; i < keyCount; ++i)
            reference += "/" + percentEncode(pick(keyValues, random));
        return reference;
    }

    TempFolder folder;
};

// The heart of it: what questions get together is what each gets by itself.
TEST_F(SqliteGrouping, GroupsGiveWhatSingleStatementsGive) {
    int compared = 0;
    for (unsigned seed = 1; seed <= 110; ++seed) {
        std::mt19937 random(seed);
        const Shape& shape = shapes[seed % shapes.size()];
        const std::string path = folder.file(std::to_string(seed));
        makeDatabase(path, randomTable(random, 300) + shape.sql);
        Pane pane(path);
        const int keyCount = 1 + static_cast<int>(random() % 2);
        pane.query("Q", shape.from, pick(expressions, random),
                   {{"key", keyCount == 1 ? "k1" : "k1 k2"}, {"where", "v <> 4"}});
        const Selection selection(pane.declarations().queries().front(), {{"selection", "x > 20"}});
        std::vector<sptr_t<ReferenceQuery>> references;
        for (int i = 0; i < 60; ++i)
            references.push_back(pane.reference(referenceFor("Q", keyCount, random)));

        const SnapshotUse snapshot(pane.source(), {});
        std::vector<Question> questions;
        for (const auto& reference : references)
            questions.push_back({&selection, &reference->keys()});
        const auto together = snapshot.snapshot().answerTogether(questions, noLimit, {});
        ASSERT_TRUE(together) << together.error().text;
        for (std::size_t i = 0; i < questions.size(); ++i) {
            if (!(*together)[i]) continue;
            const auto single = snapshot.snapshot().answer(questions[i], {});
            ASSERT_TRUE(single) << single.error().text;
            EXPECT_EQ(*(*together)[i], single->value)
                << shape.name << " " << selection.expression << " " << references[i]->keyText();
            ++compared;
        }
    }
    EXPECT_GT(compared, 500);
}

// From end to end, with tables that are large enough for grouping to be chosen.
TEST_F(SqliteGrouping, APaneGetsTheSameForManyAndForFewReferences) {
    for (unsigned seed = 1; seed <= 11; ++seed) {
        std::mt19937 random(seed);
        const Shape& shape = shapes[seed % shapes.size()];
        const std::string path = folder.file(std::to_string(seed));
        makeDatabase(path, randomTable(random, 2000) + shape.sql);
        const std::string expression = pick(expressions, random);
        Pane many(path);
        many.query("Q", shape.from, expression, {{"key", "k1 k2"}});
        std::vector<std::string> references;
        for (int i = 0; i < 200; ++i)
            references.push_back(referenceFor("Q", 2, random));
        sptr_t<qlib_1::ITableTree> tree;
        ASSERT_TRUE(many.run(references, tree).is_success());
        for (std::size_t i = 0; i < references.size(); i += 3) {
            Pane one(path);  // knows one reference only, so it runs it by itself
            one.query("Q", shape.from, expression, {{"key", "k1 k2"}});
            EXPECT_EQ(tree->getRow(0)->getCellText(i), one.value(references[i]))
                << shape.name << " " << expression << " " << references[i];
        }
    }
}

// Queries all of these key values at once.
std::vector<std::optional<CellValue>> together(const SnapshotUse& use, const Selection& selection,
                                               const std::vector<KeyValues>& keys,
                                               std::uint64_t maxWork = noLimit) {
    std::vector<Question> questions;
    for (const KeyValues& each : keys)
        questions.push_back({&selection, &each});
    auto values = use.snapshot().answerTogether(questions, maxWork, {});
    EXPECT_TRUE(values);
    return values ? *std::move(values) : std::vector<std::optional<CellValue>>();
}

using Values = std::vector<std::optional<CellValue>>;

TEST_F(SqliteGrouping, SeveralGroupsOfOneKeyTextAreNotMixedUp) {
    makeDatabase(folder.file("a.db"),
                 "CREATE TABLE t(k, v); INSERT INTO t VALUES (5, 1), ('5', 2), (5.0, 4), ('6', 8)");
    Pane pane(folder.file("a.db"));
    pane.query("Q", "t", "SUM(v)", {{"key", "k"}});
    const Selection selection(pane.declarations().queries().front(), {});
    const SnapshotUse snapshot(pane.source(), {});
    EXPECT_EQ(together(snapshot, selection, {{"5"}, {"6"}}),
              (Values{std::nullopt, CellValue(std::int64_t{8})}));
    EXPECT_EQ(pane.value("/Q/5"), "7");
}

TEST_F(SqliteGrouping, KeysWithoutRowsHaveTheValueOverNoRows) {
    makeDatabase(folder.file("a.db"), numbersTable("n", 1000));
    Pane pane(folder.file("a.db"));
    pane.query("Sum", "n", "SUM(x)", {{"key", "i"}}).query("Count", "n", "COUNT(*)", {{"key", "i"}});
    const Selection sum(pane.declarations().queries()[0], {});
    const Selection count(pane.declarations().queries()[1], {});
    const SnapshotUse snapshot(pane.source(), {});
    EXPECT_EQ(together(snapshot, sum, {{"17"}, {"-1"}, {"5.0"}}),
              (Values{CellValue(8.5), CellValue(), std::nullopt}));  // no group serves "5.0"
    EXPECT_EQ(together(snapshot, count, {{"17"}, {"-1"}}),
              (Values{CellValue(std::int64_t{1}), CellValue(std::int64_t{0})}));
}

TEST_F(SqliteGrouping, AFailureOrAnExceededBudgetLeavesValuesEmpty) {
    makeDatabase(
        folder.file("a.db"),
        numbersTable("n", 50000) + "INSERT INTO n VALUES (9223372036854775807, 0), (9223372036854775807, 0)");
    Pane pane(folder.file("a.db"));
    pane.query("Q", "n", "SUM(x)", {{"key", "i"}})
        .query("Overflow", "n", "SUM(i)", {{"key", "x"}})
        .query("Typo", "n", "SUM(y)", {{"key", "x"}});
    const Selection sum(pane.declarations().queries()[0], {});
    const Selection overflow(pane.declarations().queries()[1], {});
    const Selection typo(pane.declarations().queries()[2], {});
    const SnapshotUse snapshot(pane.source(), {});
    EXPECT_EQ(together(snapshot, sum, {{"17"}}), Values{CellValue(8.5)});
    EXPECT_EQ(together(snapshot, sum, {{"17"}}, 20000), Values{std::nullopt});
    EXPECT_EQ(together(snapshot, overflow, {{"0.5"}}), Values{std::nullopt});
    EXPECT_EQ(together(snapshot, typo, {{"1"}}), Values{std::nullopt});
    CancelSource source;
    source.cancel();
    const KeyValues keys{"17"};
    const std::vector<Question> questions{{&sum, &keys}};
    const auto cancelled = snapshot.snapshot().answerTogether(questions, noLimit, {source.token(), {}});
    ASSERT_FALSE(cancelled);
    EXPECT_TRUE(cancelled.error().isCancelled());
    EXPECT_EQ(pane.value("/Q/17"), "8.5");
}

TEST_F(SqliteGrouping, ValuesOfSeveralSelectionsComeInTheOrderOfTheQuestions) {
    makeDatabase(folder.file("a.db"), numbersTable("n", 1000));
    Pane pane(folder.file("a.db"));
    pane.query("Sum", "n", "SUM(x)", {{"key", "i"}}).query("Max", "n", "MAX(i)", {{"key", "i"}});
    const Selection sum(pane.declarations().queries()[0], {});
    const Selection max(pane.declarations().queries()[1], {});
    const KeyValues two{"2"};
    const KeyValues three{"3"};
    const std::vector<Question> questions{{&sum, &two}, {&max, &three}, {&max, &two}, {&sum, &three}};
    const SnapshotUse snapshot(pane.source(), {});
    const auto values = snapshot.snapshot().answerTogether(questions, noLimit, {});
    ASSERT_TRUE(values);
    EXPECT_EQ(*values, (Values{CellValue(1.0), CellValue(std::int64_t{3}), CellValue(std::int64_t{2}),
                               CellValue(1.5)}));
}

TEST_F(SqliteGrouping, AnotherOrderOfTheRowsIsNoticed) {
    makeDatabase(folder.file("a.db"),
                 "CREATE TABLE t(k, x REAL, v); CREATE INDEX by_k ON t(k); CREATE TABLE u(k, l, x);"
                 "CREATE INDEX by_l ON u(l)");
    Pane pane(folder.file("a.db"));
    pane.query("Same", "t", "SUM(x)", {{"key", "k"}})
        .query("None", "t", "SUM(x)", {{"key", "v"}})
        .query("Other", "u", "SUM(x)", {{"key", "k l"}});
    const SnapshotUse snapshot(pane.source(), {});
    const auto isSameOrder = [&](std::size_t query) {
        return hasSameOrder(Pane::connection(snapshot), Selection(pane.declarations().queries()[query], {}));
    };
    EXPECT_TRUE(isSameOrder(0));   // both by the index
    EXPECT_TRUE(isSameOrder(1));   // both by row number
    EXPECT_FALSE(isSameOrder(2));  // one by an index on half of the keys, the other by row number
}

TEST_F(SqliteGrouping, ThePlanOfManyQuestionsNamesBothStatements) {
    makeDatabase(folder.file("a.db"), "CREATE TABLE t(k TEXT, v); CREATE INDEX by_k ON t(k)");
    Pane pane(folder.file("a.db"));
    pane.query("Q", "t", "SUM(v)", {{"key", "k"}}).query("All", "t", "COUNT(*)").query("Bad", "t", "SUM(x)");
    const Selection keyed(pane.declarations().queries()[0], {});
    const Selection all(pane.declarations().queries()[1], {});
    const Selection bad(pane.declarations().queries()[2], {});
    const KeyValues a{"a"};
    const KeyValues b{"b"};
    const KeyValues none;
    const SnapshotUse snapshot(pane.source(), {});
    const std::vector<Question> questions{{&keyed, &a}, {&keyed, &b}, {&all, &none}};
    const auto plans = snapshot.snapshot().explain(questions, {});
    ASSERT_TRUE(plans) << plans.error().text;
    ASSERT_EQ(plans->size(), 3U);
    EXPECT_EQ((*plans)[0].method, StatementPlan::Method::oneByOne);
    EXPECT_EQ((*plans)[0].questions, 2U);
    EXPECT_EQ((*plans)[0].sql.find("GROUP BY"), std::string::npos);
    ASSERT_EQ((*plans)[0].plan.size(), 1U);
    EXPECT_NE((*plans)[0].plan[0].find("SEARCH t USING INDEX by_k"), std::string::npos);
    EXPECT_EQ((*plans)[1].method, StatementPlan::Method::together);
    EXPECT_NE((*plans)[1].sql.find("GROUP BY \"k\""), std::string::npos);
    EXPECT_EQ((*plans)[2].method, StatementPlan::Method::oneByOne);
    EXPECT_EQ((*plans)[2].questions, 1U);
    EXPECT_EQ((*plans)[2].plan, std::vector<std::string>{"SCAN t USING COVERING INDEX by_k"});
    const std::vector<Question> wrong{{&bad, &none}};
    const auto rejected = snapshot.snapshot().explain(wrong, {});
    ASSERT_FALSE(rejected);
    EXPECT_EQ(rejected.error().text, "no such column: x");
}

TEST_F(SqliteGrouping, ManyReferencesShareAStatement) {
    makeDatabase(folder.file("a.db"), "CREATE TABLE t(k TEXT, v REAL);" + numbersTable("n", 20000) +
                                          "INSERT INTO t SELECT 'key ' || i, x FROM n");
    Pane pane(folder.file("a.db"));
    pane.query("Q", "t", "SUM(v)", {{"key", "k"}});
    std::vector<std::string> references;
    for (int i = 0; i < 20000; ++i)
        references.push_back("/Q/key%20" + std::to_string(i * 2));  // half of them match
    sptr_t<qlib_1::ITableTree> tree;
    ASSERT_TRUE(pane.run(references, tree).is_success());
    for (int i = 0; i < 20000; ++i) {
        const std::string expected = i >= 10000 ? "" : std::to_string(i);  // x is half of the number
        ASSERT_EQ(tree->getRow(0)->getCellText(static_cast<std::size_t>(i)), i == 0 ? "0" : expected);
    }
}

}  // namespace
}  // namespace tessera_host::sqlite_test
