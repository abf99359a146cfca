// Queries as a pane runs them: values, keys, filters, and the messages when they fail.
#include <gtest/gtest.h>

#include <thread>

#include "platform/basekit2/object_registry.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

class SqliteEngine : public testing::Test {
  protected:
    SqliteEngine() {
        makeDatabase(path, R"sql(
            CREATE TABLE flows(src TEXT, dst TEXT, bytes INTEGER, seconds REAL, status INTEGER);
            INSERT INTO flows VALUES ('web', 'db', 3000000, 2, 200), ('web', 'db', 1000000, 2, 500),
                                     ('web', 'cache', 500, 1, 200), ('db', 'disk', 7, 4, 503);
            CREATE TABLE "odd ""table"(k, "a b" INTEGER);
            INSERT INTO "odd ""table" VALUES ('O''Hare', 1), ('100%', 2), ('a/b', 4), ('', 8), ('Zürich', 16),
                                             ('"', 32), (NULL, 64), (x'61', 128), ('a', 256);
        )sql");
    }

    TempFolder folder;
    const std::string path = folder.file("result.db");
    Pane pane{path};
};

TEST_F(SqliteEngine, ReturnsFormattedValues) {
    pane.query("Rate", "flows", "SUM(bytes) / SUM(seconds)",
               {{"key", "src dst"}, {"format", "si:3"}, {"unit", "B/s"}})
        .query("Errors", "flows", "COUNT(*)", {{"where", "status >= 500"}})
        .query("Nothing", "flows", "MAX(bytes)", {{"where", "0"}, {"unit", "B"}});
    EXPECT_EQ(pane.value("/Rate/web/db"), "1.00 MB/s");  // 4,000,000 bytes in 4 seconds
    EXPECT_EQ(pane.value("/Rate/web/cache"), "500 B/s");
    EXPECT_EQ(pane.value("/Rate/web/nowhere"), "");  // a sum over no rows is NULL
    EXPECT_EQ(pane.value("/Errors"), "2");
    EXPECT_EQ(pane.value("/Nothing"), "");
    EXPECT_TRUE(pane.messenger.texts.empty());
}

TEST_F(SqliteEngine, TheTreeHasOneRowAndAValueColumnAMember) {
    pane.query("Count", "flows", "COUNT(*)").query("Bytes", "flows", "SUM(bytes)", {{"key", "src"}});
    sptr_t<qlib_1::ITableTree> tree;
    ASSERT_TRUE(pane.run({"/Bytes/db", "/Count", "/Bytes/db"}, tree).is_success());
    ASSERT_EQ(tree->getColumnCount(), 3u);
    ASSERT_EQ(tree->getRowCount(), 1u);
    const std::vector<std::string> identifiers{"Bytes/db", "Count", "Bytes/db"};
    const std::vector<std::string> cells{"7", "4", "7"};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto column = tree->getColumn(i);
        EXPECT_EQ(column->getFlags(), qlib_1::columnIsValue);
        EXPECT_EQ(column->getMemberIndex(), i);
        const auto vector = qlib_1::IVectorQuery::cast(column->getQuery());
        ASSERT_FALSE(vector.is_null());
        EXPECT_EQ(vector->at(i)->getIdentifier(), identifiers[i]);
        EXPECT_EQ(tree->getRow(0)->getCellText(i), cells[i]);
    }
}

TEST_F(SqliteEngine, NoColumnsAreATreeWithoutColumns) {
    sptr_t<qlib_1::ITableTree> tree;
    ASSERT_TRUE(pane.run({}, tree).is_success());
    EXPECT_EQ(tree->getColumnCount(), 0u);
    EXPECT_EQ(tree->getRowCount(), 1u);
}

TEST_F(SqliteEngine, KeysAreBoundAndNamesAreQuoted) {
    pane.query("Odd", "odd \"table", "SUM(\"a b\")", {{"key", "k"}});
    EXPECT_EQ(pane.value("/Odd/O'Hare"), "1");
    EXPECT_EQ(pane.value("/Odd/100%25"), "2");
    EXPECT_EQ(pane.value("/Odd/a%2Fb"), "4");
    EXPECT_EQ(pane.value("/Odd/"), "8");
    EXPECT_EQ(pane.value("/Odd/Z%C3%BCrich"), "16");
    EXPECT_EQ(pane.value("/Odd/Zürich"), "16");
    EXPECT_EQ(pane.value("/Odd/\""), "32");
    EXPECT_EQ(pane.value("/Odd/a"), "256");  // not the blob of the same byte
    EXPECT_EQ(pane.value("/Odd/' OR 1=1 --"), "");
    EXPECT_EQ(pane.value("/Odd/A"), "");
}

TEST_F(SqliteEngine, ColumnsMayHaveAnyName) {
    makeDatabase(
        path,
        "CREATE TABLE wide(\"from\" TEXT, \"a'\"\"b\" INT); INSERT INTO wide VALUES ('x', 5), ('y', 6)");
    pane.query("W", "wide", "SUM(\"a'\"\"b\")", {{"key", "from a'\"b"}});
    EXPECT_EQ(pane.value("/W/x/5"), "5");
    EXPECT_EQ(pane.value("/W/x/6"), "");
}

TEST_F(SqliteEngine, FiltersApplyToEveryQuery) {
    pane.query("Count", "flows", "COUNT(*)", {{"where", "bytes > 100 OR 0"}})
        .filter("selection", "src = 'web' -- chosen")
        .filter("global", "status < 300 OR status IS NULL");
    EXPECT_EQ(pane.value("/Count"), "2");
    pane.inputData()->setFilters({{"selection", {"src = 'db'", {}}}, {"global", {"1", {}}}});
    EXPECT_EQ(pane.value("/Count"), "0");  // db's only row has 7 bytes
    pane.inputData()->setFilters({{"selection", {"NULL", {}}}, {"global", {"1", {}}}});
    EXPECT_EQ(pane.value("/Count"), "0");
}

TEST_F(SqliteEngine, ARowsFilterNeverWidensTheConditions) {
    pane.query("Count", "flows", "COUNT(*)", {{"where", "status = 200"}})
        .filter("selection", "src = 'web' OR 1 = 1");
    EXPECT_EQ(pane.value("/Count"), "2");
}

TEST_F(SqliteEngine, TheRegistryKnowsTheFilters) {
    pane.filter("selection", "1");
    const auto& objects = basekit2::object_registry_t::process();
    const auto registry = objects.query<qlib_1::IFilterRegistry>(pane.inputData());
    ASSERT_FALSE(registry.is_null());
    EXPECT_TRUE(registry->hasFilter("selection"));
    EXPECT_FALSE(registry->hasFilter("global"));
    EXPECT_EQ(objects.query<qlib_1::IInputData>(pane.inputData()), pane.inputData());
    EXPECT_FALSE(objects.query<slicekit_1_0::ITableTreeEngine>(pane.inputData()).is_null());
    EXPECT_TRUE(objects.query<qlib_1::IQueryLibrary>(pane.inputData()).is_null());
}

TEST_F(SqliteEngine, FailuresNameQueryAndReason) {
    pane.query("Typo", "flows", "SUM(bytez)")
        .query("NoTable", "flowz", "COUNT(*)")
        .query("NoKey", "flows", "COUNT(*)", {{"key", "source"}})
        .query("BadWhere", "flows", "COUNT(*)", {{"where", "bytes >"}})
        .query("Quoted", "flows", "COUNT(\"nowhere\")")
        .query("Empty", "flows", " -- nothing")
        .query("Tableless", "", "COUNT(*)");
    EXPECT_EQ(pane.failure("/Typo"), "query \"Typo\": no such column: bytez");
    EXPECT_EQ(pane.failure("/NoTable"), "query \"NoTable\": no such table: flowz");
    EXPECT_EQ(pane.failure("/NoKey/a"), "query \"NoKey\": key \"source\": no such column: source");
    EXPECT_EQ(pane.failure("/BadWhere"),
              "query \"BadWhere\": the condition (\"where\"): near \")\": syntax error");
    EXPECT_EQ(pane.failure("/Quoted"), "query \"Quoted\": no such column: nowhere");
    EXPECT_EQ(pane.failure("/Empty"), "query \"Empty\": the expression is empty (at character 1)");
    EXPECT_EQ(pane.failure("/Tableless"), "query \"Tableless\": it names no table (\"from\")");
}

TEST_F(SqliteEngine, AFilterOnAColumnThatTheTableLacksFailsTheQuery) {
    pane.query("Odd", "odd \"table", "COUNT(*)")
        .query("Count", "flows", "COUNT(*)")
        .filter("selection", "status < 300");
    EXPECT_EQ(pane.value("/Count"), "2");
    EXPECT_EQ(pane.failure("/Odd"), "query \"Odd\": filter \"selection\": no such column: status");
    pane.inputData()->setFilters(
        {{"selection", {"\"status\" = 1", {}}}});  // quoted names do not turn into texts
    EXPECT_EQ(pane.failure("/Odd"), "query \"Odd\": filter \"selection\": no such column: status");
}

TEST_F(SqliteEngine, ExpressionsMustBeAggregates) {
    pane.query("Row", "flows", "bytes + 1")
        .query("Constant", "flows", "42")
        .query("Sub", "flows", "(SELECT COUNT(*) FROM flows)")
        .query("Window", "flows", "SUM(bytes) OVER ()")
        .query("Two", "flows", "COUNT(*), 1")
        .query("Fine", "flows", "COUNT(*) + (SELECT COUNT(*) FROM flows) + CAST(42 AS INTEGER)");
    const std::string reason =
        ": the expression is not an aggregate expression: it has a value for every row, not one for all";
    EXPECT_EQ(pane.failure("/Row"), "query \"Row\"" + reason);
    EXPECT_EQ(pane.failure("/Constant"), "query \"Constant\"" + reason);
    EXPECT_EQ(pane.failure("/Sub"), "query \"Sub\"" + reason);
    EXPECT_EQ(
        pane.failure("/Window"),
        "query \"Window\": the expression is not an aggregate expression: misuse of window function SUM()");
    EXPECT_EQ(pane.failure("/Two"), "query \"Two\": row value misused");
    EXPECT_EQ(pane.value("/Fine"), "50");
}

TEST_F(SqliteEngine, RunTimeErrorsAreReported) {
    makeDatabase(path, "CREATE TABLE big(n INTEGER); INSERT INTO big VALUES (9223372036854775807), (1)");
    pane.query("Overflow", "big", "SUM(n)");
    EXPECT_EQ(pane.failure("/Overflow"), "query \"Overflow\": integer overflow");
}

TEST_F(SqliteEngine, ABrokenQueryIsReportedOnceASnapshot) {
    pane.query("Typo", "flows", "SUM(bytez)", {{"key", "src"}}).query("Other", "flows", "nope");
    {
        const SnapshotUse snapshot(pane.source(), {});
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(pane.value("/Typo/" + std::to_string(i)), "[FailedTo]");
        EXPECT_EQ(pane.value("/Other"), "[FailedTo]");
        EXPECT_EQ(pane.messenger.texts.size(), 2u);
        EXPECT_EQ(pane.messenger.lines, (std::vector<std::uint32_t>{1, 2}));
    }
    EXPECT_EQ(pane.value("/Typo/1"), "[FailedTo]");
    EXPECT_EQ(pane.messenger.texts.size(), 3u);
}

TEST_F(SqliteEngine, LaterColumnsAreNotRunAfterAFailure) {
    pane.query("Typo", "flows", "SUM(bytez)").query("AlsoBroken", "flows", "nope");
    sptr_t<qlib_1::ITableTree> tree;
    const error_code_t error = pane.run({"/Typo", "/AlsoBroken"}, tree);
    EXPECT_TRUE(error.is(bk2::error::FailedTo));
    EXPECT_EQ(error.message(), "query \"Typo\": no such column: bytez");
    EXPECT_EQ(pane.messenger.texts.size(), 1u);
}

TEST_F(SqliteEngine, RequestsOfAnotherFormAreRefused) {
    pane.query("Count", "flows", "COUNT(*)");
    const auto engine =
        basekit2::object_registry_t::process().query<slicekit_1_0::ITableTreeEngine>(pane.inputData());
    const auto count = qlib_1::IVectorQuery::create({pane.library()->getQuery("Count")});
    const auto root = qlib_1::IVectorQuery::create({pane.library()->getQuery("RootGrouping")});
    const auto twice = qlib_1::IVectorQuery::pushBack(root, root->at(0));
    sptr_t<qlib_1::ITableTree> tree;
    for (const auto& request : {slicekit_1_0::table_tree_request_t{nullptr, count, {}},
                                slicekit_1_0::table_tree_request_t{count, count, {}},
                                slicekit_1_0::table_tree_request_t{twice, count, {}},
                                slicekit_1_0::table_tree_request_t{root, nullptr, {}},
                                slicekit_1_0::table_tree_request_t{root, root, {}},
                                slicekit_1_0::table_tree_request_t{root, count, {"selection"}}}) {
        EXPECT_TRUE(engine->run(request, nullptr, true, tree).is(bk2::error::FailedTo));
        EXPECT_FALSE(pane.messenger.take().empty());
        EXPECT_TRUE(tree.is_null());
    }
    EXPECT_TRUE(engine->run({root, count, {}}, nullptr, true, tree).is_success());
}

TEST_F(SqliteEngine, ReferencesOfAnotherDocumentAreRefused) {
    Pane other(path);
    other.query("Count", "flows", "COUNT(*)");
    const auto engine =
        basekit2::object_registry_t::process().query<slicekit_1_0::ITableTreeEngine>(pane.inputData());
    const auto root = qlib_1::IVectorQuery::create({pane.library()->getQuery("RootGrouping")});
    const auto foreign = qlib_1::IVectorQuery::create({other.library()->getQuery("Count")});
    sptr_t<qlib_1::ITableTree> tree;
    EXPECT_TRUE(engine->run({root, foreign, {}}, nullptr, true, tree).is(bk2::error::FailedTo));
    EXPECT_EQ(pane.messenger.take(), "the query \"Count\" is not one of this document");
}

TEST_F(SqliteEngine, TheEngineOutlivesTheInputData) {
    pane.query("Count", "flows", "COUNT(*)");
    auto input = basekit2::make_counted<InputData>(std::make_shared<SnapshotSource>(pane.sharedResult()),
                                                   Declarations::read({}), Filters(), nullptr);
    const auto engine = basekit2::object_registry_t::process().query<slicekit_1_0::ITableTreeEngine>(input);
    input = nullptr;
    const auto root = qlib_1::IVectorQuery::create({pane.library()->getQuery("RootGrouping")});
    sptr_t<qlib_1::ITableTree> tree;
    EXPECT_TRUE(engine->run({root, qlib_1::IVectorQuery::create({}), {}}, nullptr, true, tree).is_success());
}

TEST_F(SqliteEngine, RequestsMayComeFromDifferentThreadsInTurn) {
    pane.query("Count", "flows", "COUNT(*)", {{"key", "src"}});
    EXPECT_EQ(pane.value("/Count/web"), "3");
    std::thread([&] { EXPECT_EQ(pane.value("/Count/db"), "1"); }).join();
}

TEST_F(SqliteEngine, MoreQueriesThanStatementsAreKept) {
    for (int i = 0; i < 2500; ++i)
        pane.query("Q" + std::to_string(i), "flows", "COUNT(*) + " + std::to_string(i));
    const SnapshotUse snapshot(pane.source(), {});
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < 2500; i += 1)
            ASSERT_EQ(pane.value("/Q" + std::to_string(i)), std::to_string(4 + i));
}

}  // namespace
}  // namespace tessera_host::sqlite_test
