// All that a database has to say against a document, in one run.
#include <gtest/gtest.h>

#include "host/engine/declaration_check.h"
#include "tests/unit/host_engine_sqlite_fixture.h"

namespace tessera_host::sqlite_test {
namespace {

using Texts = std::vector<std::string>;

class SqliteDeclarationCheck : public testing::Test {
  protected:
    SqliteDeclarationCheck() {
        makeDatabase(path,
                     "CREATE TABLE t(a, b); CREATE TABLE u(c); CREATE VIEW broken AS SELECT missing FROM t;" +
                         numbersTable("n", 5000));
    }

    // "LINE: TEXT" of every problem.
    Texts problems(const Filters& filters = {}) {
        Texts texts;
        for (const Problem& problem : checkAgainstResult(pane.result(), pane.declarations(), filters))
            texts.push_back(std::to_string(problem.position.line) + ": " + problem.text);
        return texts;
    }

    TempFolder folder;
    const std::string path = folder.file("a.db");
    Pane pane{path};
};

TEST_F(SqliteDeclarationCheck, SoundDeclarationsHaveNoProblem) {
    pane.query("A", "t", "COUNT(*)", {{"key", "a b"}, {"where", "a > 1 -- few"}})
        .query("B", "n", "SUM(x) / MAX(1, COUNT(i))");
    EXPECT_EQ(problems({{"selection", {"rowid > 0", {}}}}), Texts());
}

TEST_F(SqliteDeclarationCheck, EveryPartOfEveryQueryIsLookedAt) {
    pane.query("Many", "t", "SUM(x)", {{"key", "a z"}, {"where", "y = 1"}})
        .query("Fine", "t", "SUM(a)")
        .query("Table", "nowhere", "SUM(x)", {{"key", "z"}})
        .query("Row", "t", "a")
        .query("Fragments", "t", "COUNT(*", {{"where", "a = 'b"}, {"key", "q"}})
        .query("View", "broken", "COUNT(*)")
        .query("Refused", "t", "COUNT(load_extension('x'))")
        .query("Tableless", "", "");
    EXPECT_EQ(
        problems(),
        (Texts{
            "1: query \"Many\": key \"z\": no such column: z",
            "1: query \"Many\": the condition (\"where\"): no such column: y",
            "1: query \"Many\": no such column: x", "3: query \"Table\": no such table: nowhere",
            ("4: query \"Row\": the expression is not an aggregate expression: it has a value for every row, "
             "not one for all"),
            "5: query \"Fragments\": the expression has a parenthesis that is never closed (at character 6)",
            "5: query \"Fragments\": the condition (\"where\") has a ' that is never closed (at character 5)",
            "5: query \"Fragments\": key \"q\": no such column: q",
            "6: query \"View\": no such column: missing",
            "7: query \"Refused\": the function \"load_extension\" is not allowed",
            "8: query \"Tableless\": it names no table (\"from\")",
            "8: query \"Tableless\": the expression is empty"}));
}

TEST_F(SqliteDeclarationCheck, FiltersAreCheckedWithEveryTable) {
    pane.query("T", "t", "COUNT(*)").query("U", "u", "COUNT(*)");
    EXPECT_EQ(problems({{"global", {"a = 1", {}}}, {"selection", {"c = 1", {}}}}),
              (Texts{"1: query \"T\": filter \"selection\": no such column: c",
                     "2: query \"U\": filter \"global\": no such column: a"}));
}

TEST_F(SqliteDeclarationCheck, AFilterThatIsWrongEverywhereIsReportedOnce) {
    pane.query("T", "t", "COUNT(*)").query("U", "u", "COUNT(*)");
    EXPECT_EQ(problems({{"selection", {"a = (1", {77, 3}}}}),
              (Texts{"77: filter \"selection\" has a parenthesis that is never closed (at character 5)"}));
}

TEST_F(SqliteDeclarationCheck, NothingIsRun) {
    pane.query("Long", "n", "SUM((SELECT COUNT(*) FROM n a, n b, n c, n d))");
    EXPECT_EQ(problems(), Texts());  // it would take days
}

TEST_F(SqliteDeclarationCheck, PartsThatAreTooMuchTogetherAreFound) {
    const std::string comment = "/*" + std::string(60'000, 'x') + "*/";
    pane.query("Half", "t", comment + "COUNT(*)")
        .query("Long", "t", comment + "COUNT(*)", {{"where", "a" + comment}});
    EXPECT_EQ(problems(), (Texts{"2: query \"Long\": it is too long"}));
    EXPECT_EQ(pane.failure("/Long"), "query \"Long\": it is too long");
}

TEST_F(SqliteDeclarationCheck, ExpressionsThatAreTooDeepAreFound) {
    std::string sum = "COUNT(*)";
    for (int i = 0; i < 2000; ++i)
        sum += " + 1";
    pane.query("Deep", "t", sum);
    EXPECT_EQ(problems(), (Texts{"1: query \"Deep\": Expression tree is too large (maximum depth 1000)"}));
}

TEST_F(SqliteDeclarationCheck, ALostDatabaseIsOneProblem) {
    pane.query("T", "t", "COUNT(*)");
    (void)pane.result();
    std::filesystem::remove(path);
    EXPECT_EQ(problems(), (Texts{"0: \"" + path + "\": there is no such file"}));
}

}  // namespace
}  // namespace tessera_host::sqlite_test
