#include "host/engine/sqlite/sql_guard.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_host {
namespace {

std::string reasonOf(std::string_view sql) {
    const auto fragment = scanSql(sql);
    return fragment ? "" : fragment.error().text;
}

std::size_t offsetOf(std::string_view sql) {
    const auto fragment = scanSql(sql);
    EXPECT_FALSE(fragment) << sql;
    return fragment ? std::string_view::npos : fragment.error().position.column - 1;
}

bool hasWith(std::string_view sql) {
    const auto fragment = scanSql(sql);
    EXPECT_TRUE(fragment) << sql;
    return fragment && fragment->hasWith;
}

TEST(SqlGuard, LetsSelfContainedFragmentsPass) {
    for (const char* sql : {"COUNT(*)", "SUM(a) / (1.0 * COUNT(b))", "name = 'it''s ; fine )'",
                            "\"odd ; ) name\" > 0", "`a)` + [b);]", "a -- comment ) ; '", "a /* ) ; ' */ + 1",
                            "a -- '\n + b", "x IN (SELECT y FROM z)", "a ->> '$.b'", "price$1 > 2", "x'00ff'",
                            "/* * / */ 1", "1 - -1", "\xC3\xA9t\xC3\xA9 > 1", "/**/ 1"})
        EXPECT_EQ(reasonOf(sql), "") << sql;
}

TEST(SqlGuard, FindsWhatIsNotClosed) {
    EXPECT_EQ(reasonOf("a = 'b"), "has a ' that is never closed");
    EXPECT_EQ(offsetOf("a = 'b"), 4u);
    EXPECT_EQ(reasonOf("a = 'b''"), "has a ' that is never closed");
    EXPECT_EQ(reasonOf("\"a"), "has a \" that is never closed");
    EXPECT_EQ(reasonOf("a + `b"), "has a ` that is never closed");
    EXPECT_EQ(reasonOf("[a"), "has a [ that is never closed");
    EXPECT_EQ(reasonOf("1 /* x"), "has a comment that is never closed");
    EXPECT_EQ(offsetOf("1 /*/"), 2u);  // the star does not serve twice
    EXPECT_EQ(reasonOf("SUM((a)"), "has a parenthesis that is never closed");
    EXPECT_EQ(offsetOf("SUM((a)"), 3u);
    EXPECT_EQ(offsetOf("(a) + (b"), 6u);
}

TEST(SqlGuard, FindsWhatClosesTooMuch) {
    EXPECT_EQ(reasonOf("1) FROM t; DROP TABLE t --"), "closes a parenthesis that it did not open");
    EXPECT_EQ(offsetOf("1) FROM t; DROP TABLE t --"), 1u);
    EXPECT_EQ(offsetOf("1) OR (1"), 1u);
    EXPECT_EQ(offsetOf("COUNT(*)) FROM t /*"), 8u);
    EXPECT_EQ(offsetOf("a -- (\n)"), 7u);  // a parenthesis in a comment opens nothing
    EXPECT_EQ(offsetOf("'(' )"), 4u);
}

TEST(SqlGuard, FindsStatementsAndParameters) {
    EXPECT_EQ(reasonOf("1; DELETE FROM t"), "has a \";\"");
    EXPECT_EQ(reasonOf("?1"), "has a parameter (\"?\")");
    EXPECT_EQ(reasonOf("a = :b"), "has a parameter (\":\")");
    EXPECT_EQ(reasonOf("@a"), "has a parameter (\"@\")");
    EXPECT_EQ(reasonOf("$a(')"), "has a parameter (\"$\")");  // such a name may hold a quote that is none
    EXPECT_EQ(reasonOf("#1"), "has a parameter (\"#\")");
    EXPECT_EQ(reasonOf(std::string_view("1\0) --", 7)), "has a NUL character");
}

TEST(SqlGuard, FindsEmptyFragments) {
    for (const char* sql : {"", "  \t\r\n", "-- only a comment", "/* x */ -- y\n "})
        EXPECT_EQ(reasonOf(sql), "is empty");
}

TEST(SqlGuard, NoticesTheWordWith) {
    EXPECT_TRUE(hasWith("(WITH c AS (SELECT 1) SELECT * FROM c)"));
    EXPECT_TRUE(hasWith("1+with"));
    EXPECT_TRUE(hasWith("wItH"));
    for (const char* sql :
         {"'with'", "\"with\"", "width", "with1", "a_with", "1 -- with", "/* with */ 1", "wit"})
        EXPECT_FALSE(hasWith(sql)) << sql;
}

TEST(SqlGuard, TakesLinearTime) {
    const std::string deep(1'000'000, '(');
    EXPECT_EQ(offsetOf(deep), deep.size() - 1);
    std::string closed = deep + "1" + std::string(deep.size(), ')');
    EXPECT_EQ(reasonOf(closed), "");
    EXPECT_EQ(offsetOf(std::string(1'000'001, '\'')), 1'000'000u);
}

}  // namespace
}  // namespace tessera_host
