// Many references to one query: the answers are those of single statements, only sooner.
#include <gtest/gtest.h>

#include <random>

#include "host/document/percent_encoding.h"
#include "host/engine/sqlite/declared_query.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

constexpr RunLimits noLimits{nullptr, std::chrono::minutes(10)};

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

// The heart of it: for every reference that a group can serve, the group's answer is the single statement's.
TEST_F(SqliteGrouping, GroupsAnswerWhatSingleStatementsAnswer) {
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
        const FilterList filters{{"selection", "x > 20"}};
        const auto pool = std::make_shared<ReferencePool>(Declarations::read(pane.document()));
        const QueryDeclaration& query = pool->declarations->queries().front();
        std::vector<sptr_t<ReferenceQuery>> references;
        for (int i = 0; i < 60; ++i) {
            std::string reason;
            auto reference = pool->declarations->parseReference(referenceFor("Q", keyCount, random), reason);
            ASSERT_TRUE(reference) << reason;
            references.push_back(basekit2::make_counted<ReferenceQuery>(pool, std::move(*reference), ""));
        }

        const Snapshot snapshot(pane.database(), nullptr);
        Connection& connection = pane.database()->connection();
        if (!GroupedAnswers::hasSameOrder(connection, query, filters)) continue;
        GroupedAnswers groups;
        ASSERT_FALSE(groups.load(connection, query, filters, references.front()->siblings(), noLimits));
        ASSERT_EQ(groups.state(), GroupedAnswers::State::loaded) << shape.name;
        // 60 references to 300 rows are too few for a DeclaredQuery to group by itself.
        DeclaredQuery single(query, filters);
        for (const auto& reference : references) {
            if (!GroupedAnswers::canServe(reference->keys())) continue;
            const Answer* grouped = nullptr;
            const auto found = groups.find(reference->keyText(), grouped);
            const Answer& expected = single.answer(*reference, {connection, nullptr, 1});
            ASSERT_TRUE(std::holds_alternative<std::string>(expected)) << std::get<Failure>(expected).text;
            if (found != GroupedAnswers::Found::one) continue;
            EXPECT_EQ(std::get<std::string>(*grouped), std::get<std::string>(expected))
                << shape.name << " " << query.expression << " " << reference->keyText();
            ++compared;
        }
    }
    EXPECT_GT(compared, 500);
}

// From end to end, with tables that are large enough for grouping to be chosen.
TEST_F(SqliteGrouping, APaneAnswersTheSameForManyAndForFewReferences) {
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

TEST_F(SqliteGrouping, SeveralGroupsOfOneKeyTextAreNotMixedUp) {
    makeDatabase(folder.file("a.db"),
                 "CREATE TABLE t(k, v); INSERT INTO t VALUES (5, 1), ('5', 2), (5.0, 4), ('6', 8)");
    Pane pane(folder.file("a.db"));
    pane.query("Q", "t", "SUM(v)", {{"key", "k"}});
    const auto five = pane.reference("/Q/5");
    const auto six = pane.reference("/Q/6");
    const Snapshot snapshot(pane.database(), nullptr);
    GroupedAnswers groups;
    ASSERT_FALSE(
        groups.load(pane.database()->connection(), five->declaration(), {}, five->siblings(), noLimits));
    const Answer* answer = nullptr;
    EXPECT_EQ(groups.find(five->keyText(), answer), GroupedAnswers::Found::several);
    EXPECT_EQ(groups.find(six->keyText(), answer), GroupedAnswers::Found::one);
    EXPECT_EQ(pane.value("/Q/5"), "7");
}

TEST_F(SqliteGrouping, OnlyWantedGroupsAreKept) {
    makeDatabase(folder.file("a.db"), numbersTable("n", 1000));
    Pane pane(folder.file("a.db"));
    pane.query("Q", "n", "SUM(x)", {{"key", "i"}});
    const auto reference = pane.reference("/Q/17");
    const Snapshot snapshot(pane.database(), nullptr);
    GroupedAnswers groups;
    ASSERT_FALSE(groups.load(pane.database()->connection(), reference->declaration(), {},
                             reference->siblings(), noLimits));
    const Answer* answer = nullptr;
    EXPECT_EQ(groups.find(reference->keyText(), answer), GroupedAnswers::Found::one);
    EXPECT_EQ(groups.find(keyTextOf({"18"}), answer), GroupedAnswers::Found::none);
}

TEST_F(SqliteGrouping, ABudgetThatIsUsedUpOrAFailureIsNoAnswer) {
    makeDatabase(
        folder.file("a.db"),
        numbersTable("n", 50000) + "INSERT INTO n VALUES (9223372036854775807, 0), (9223372036854775807, 0)");
    Pane pane(folder.file("a.db"));
    pane.query("Q", "n", "SUM(x)", {{"key", "i"}}).query("Overflow", "n", "SUM(i)", {{"key", "x"}});
    const auto reference = pane.reference("/Q/17");
    const auto overflow = pane.reference("/Overflow/0.5");
    const Snapshot snapshot(pane.database(), nullptr);
    Connection& connection = pane.database()->connection();
    GroupedAnswers groups;
    EXPECT_FALSE(groups.load(connection, reference->declaration(), {}, reference->siblings(),
                             {nullptr, noLimits.timeout, 20000}));
    EXPECT_EQ(groups.state(), GroupedAnswers::State::refused);
    groups.clear();
    EXPECT_FALSE(groups.load(connection, overflow->declaration(), {}, overflow->siblings(), noLimits));
    EXPECT_EQ(groups.state(), GroupedAnswers::State::refused);
    Progress progress;
    progress.cancel();
    groups.clear();
    const auto failure = groups.load(connection, reference->declaration(), {}, reference->siblings(),
                                     {&progress, noLimits.timeout});
    ASSERT_TRUE(failure);
    EXPECT_TRUE(failure->isCancelled);
    EXPECT_EQ(pane.value("/Q/17"), "8.5");
}

TEST_F(SqliteGrouping, AnotherOrderOfTheRowsIsNoticed) {
    makeDatabase(folder.file("a.db"),
                 "CREATE TABLE t(k, x REAL, v); CREATE INDEX by_k ON t(k); CREATE TABLE u(k, l, x);"
                 "CREATE INDEX by_l ON u(l)");
    Pane pane(folder.file("a.db"));
    pane.query("Same", "t", "SUM(x)", {{"key", "k"}})
        .query("None", "t", "SUM(x)", {{"key", "v"}})
        .query("Other", "u", "SUM(x)", {{"key", "k l"}});
    const Snapshot snapshot(pane.database(), nullptr);
    const auto hasSameOrder = [&](std::size_t query) {
        return GroupedAnswers::hasSameOrder(pane.database()->connection(),
                                            pane.declarations().queries()[query], {});
    };
    EXPECT_TRUE(hasSameOrder(0));   // both by the index
    EXPECT_TRUE(hasSameOrder(1));   // both by row number
    EXPECT_FALSE(hasSameOrder(2));  // one by an index on half of the keys, the other by row number
}

TEST_F(SqliteGrouping, ManyReferencesAreAnsweredTogether) {
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
