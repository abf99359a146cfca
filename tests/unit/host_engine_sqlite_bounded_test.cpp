// Compares LIKE, GLOB, printf() and the JSON groups, which replace SQLite's own, with the originals.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "host/engine/sqlite/bounded_functions.h"
#include "tests/unit/host_engine_sqlite_functions_support.h"

// The statements are few and short, and easier to read like this.
// NOLINTBEGIN(performance-inefficient-string-concatenation)
namespace tessera_host {
namespace {

class SqliteBounded : public testing::Test {
  protected:
    SqliteBounded() { EXPECT_EQ(registerBoundedFunctions(bounded.get()), SQLITE_OK); }

    void expectSame(const std::string& sql, const std::vector<std::string>& texts = {}) const {
        std::string shown = sql;
        for (const std::string& text : texts)
            shown += " | " + text;
        ASSERT_EQ(bounded.rows(sql, texts), own.rows(sql, texts)) << shown;
    }

    template <std::size_t size>
    std::string randomText(const std::array<const char*, size>& pieces, int longest) {
        std::string text;
        for (int i = std::uniform_int_distribution(0, longest)(random); i > 0; --i)
            text += pieces[std::uniform_int_distribution<std::size_t>(0, size - 1)(random)];
        return text;
    }

    Memory own;
    Memory bounded;
    std::mt19937 random{20261122};  // NOLINT(cert-msc51-cpp): the same texts in every run
};

TEST_F(SqliteBounded, PatternsMatchTheSame) {
    constexpr std::array texts{"a", "b", "A", "Z",    "\xC3\xA4",    "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                               "-", "]", "%", "\x80", "\xED\xA0\x80"};
    constexpr std::array patterns{"a",
                                  "b",
                                  "A",
                                  "z",
                                  "%",
                                  "%",
                                  "_",
                                  "*",
                                  "?",
                                  "[a-c]",
                                  "[^a]",
                                  "[]a]",
                                  "[",
                                  "]",
                                  "^",
                                  "-",
                                  "[a-",
                                  "\xC3\xA4",
                                  "\xE2\x82\xAC",
                                  "\\",
                                  "\x80",
                                  "[\xC3\xA4-\xE2\x82\xAC]"};
    for (int i = 0; i < 5'000; ++i) {
        const std::string text = randomText(texts, 6);
        const std::string pattern = randomText(patterns, 5);
        expectSame("SELECT ?1 LIKE ?2", {text, pattern});
        expectSame("SELECT ?1 GLOB ?2", {text, pattern});
        expectSame("SELECT ?1 LIKE ?2 ESCAPE '\\'", {text, pattern});
        expectSame("SELECT ?1 LIKE ?2 ESCAPE '%'", {text, pattern});
        if (HasFatalFailure()) return;
    }
}

TEST_F(SqliteBounded, PatternsOfOtherValues) {
    for (const char* value : {"NULL", "12", "1.5", "x'61'", "'a'", "''", "'a' || char(0) || 'b'"})
        for (const char* pattern : {"NULL", "'1%'", "12", "x'61'", "'a'", "''", "'*'", "'%'"}) {
            expectSame(std::string("SELECT ") + value + " LIKE " + pattern);
            expectSame(std::string("SELECT ") + value + " GLOB " + pattern);
            for (const char* escape : {"NULL", "''", "'ab'", "'!'"})
                expectSame(std::string("SELECT ") + value + " LIKE " + pattern + " ESCAPE " + escape);
        }
    expectSame("SELECT 'a' LIKE ?1", {std::string(101, 'a')});
    expectSame("SELECT 'a' LIKE ?1", {std::string(100, '%')});
}

// Rows of one statement, where the pattern is kept from row to row, and where it changes.
TEST_F(SqliteBounded, PatternsInRows) {
    const std::string rows = "WITH t(a, p) AS (VALUES ('abc', 'a%'), ('xbc', 'x_c'), ('a', 'b')) ";
    expectSame(rows + "SELECT a LIKE 'a%' FROM t");
    expectSame(rows + "SELECT a LIKE p FROM t");
    expectSame(rows + "SELECT a FROM t WHERE a GLOB '*c' OR a LIKE p");
}

TEST_F(SqliteBounded, PrintfMakesTheSameTexts) {
    constexpr std::array pieces{
        "%d",      "%5d",          "%-5d|", "%05d",   "%+d",    "% d",          "%,d",     "%x",    "%#X",
        "%o",      "%u",           "%i",    "%lld",   "%ld",    "%r",           "%p",      "%f",    "%.3f",
        "%10.2f",  "%-10.1f|",     "%e",    "%.0E",   "%g",     "%#G",          "%!.17g",  "%+.1f", "%,.2f",
        "%012.3f", "%s",           "%10s",  "%-10s|", "%.2s",   "%!5.1s",       "%z",      "%q",    "%Q",
        "%w",      "%c",           "%5c",   "%-5c|",  "%.3c",   "%6.3c",        "%-6.3c|", "%%",    "%5%",
        "%n",      "%*d",          "%-*d|", "%.*f",   "%*.*f",  "%*c",          "%k",      "%T",    "%",
        "text",    "\xE2\x82\xAC", "%.0d",  "%.12d",  "%3.12d", "%2147483648d", "%l"};
    constexpr std::array arguments{"NULL",
                                   "0",
                                   "-1",
                                   "42",
                                   "7",
                                   "-3",
                                   "9223372036854775807",
                                   "1e300",
                                   "-2.5",
                                   "0.1",
                                   "1234567.891",
                                   "'text'",
                                   "'\xE2\x82\xAC"
                                   "uro'",
                                   "''",
                                   "'it''s \"x\"'",
                                   "x'414243'",
                                   "'12abc'"};
    for (int i = 0; i < 5'000; ++i) {
        std::string format;
        for (int n = std::uniform_int_distribution(1, 4)(random); n > 0; --n)
            format += pieces[std::uniform_int_distribution<std::size_t>(0, pieces.size() - 1)(random)];
        std::string sql = "SELECT printf(?1";
        for (int n = std::uniform_int_distribution(0, 5)(random); n > 0; --n)
            sql += std::string(", ") +
                   arguments[std::uniform_int_distribution<std::size_t>(0, arguments.size() - 1)(random)];
        // SQLite's own returns NULL where a text is too long.
        const std::string expected = own.rows(sql + ")", {format});
        const std::string actual = bounded.rows(sql + ")", {format});
        ASSERT_EQ(actual == "string or blob too big" ? "5:\n" : actual, expected) << format << " " << sql;
    }
    // Not among those above: with a large number, SQLite's own asks for memory once for each character.
    expectSame("SELECT printf('%.*c|%.*c|%*.*c|%-*.*c|', 3, 'x', -4, 'y', 9, 4, 'z', 9, 4, 'z')");
    expectSame("SELECT printf()");
    expectSame("SELECT format(NULL, 1)");
    expectSame("SELECT format('%s %s', 'a')");
    expectSame("SELECT printf('')");
}

// With SQLite's own, the first one takes many seconds.
TEST_F(SqliteBounded, PrintfEndsEarlyWhenATextIsTooLong) {
    EXPECT_EQ(bounded.rows("SELECT length(printf('%.*c', 2000000000, 'x'))"), "string or blob too big");
    EXPECT_EQ(bounded.rows("SELECT length(printf('%2000000000d', 1))"), "string or blob too big");
    EXPECT_EQ(bounded.rows("SELECT length(printf('%.*c', 499999, 'x'))"), "1:499999\n");
}

TEST_F(SqliteBounded, JsonGroupsAreTheSame) {
    const std::string rows =
        "WITH t(k, v) AS (VALUES (1, NULL), (1, 2), (2, -1.5), (2, 'a\"b\\c'), (3, char(1, 8, 9, 10, 11, 12, "
        "13, 31, 127)), "
        "(3, ''), (3, '\xE2\x82\xAC'), (4, 1e300), (NULL, '[1,2]')) ";
    for (const char* value : {"v", "json_array(v, k)", "json_quote(v)", "json('{\"a\":[1,{\"b\":\",]\"}]}')"})
        for (const std::string& call : {std::string("json_group_array(") + value + ")",
                                        std::string("json_group_object(ifnull(k, char(233)), ") + value + ")",
                                        std::string("json_group_object(ifnull(v, 0), ") + value + ")"}) {
            expectSame(rows + "SELECT " + call + " FROM t");
            expectSame(rows + "SELECT " + call + " FROM t WHERE 0");
            expectSame(rows + "SELECT " + call + " FROM t GROUP BY k");
            expectSame(rows + "SELECT json_array(" + call + ") FROM t");
            expectSame(rows + "SELECT " + call +
                       " OVER (ORDER BY rowid ROWS BETWEEN 1 PRECEDING AND 1 FOLLOWING) FROM (SELECT k, v, "
                       "row_number() OVER () AS rowid FROM t)");
            expectSame(rows + "SELECT " + call +
                       " OVER (ORDER BY k ROWS BETWEEN 3 PRECEDING AND 2 PRECEDING) FROM t");
            if (HasFatalFailure()) return;
        }
    expectSame("SELECT json_group_array(x'61')");
}

TEST_F(SqliteBounded, JsonGroupsEndWhenTheyAreTooLong) {
    const std::string rows =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) ";
    for (const char* call :
         {"json_group_array(hex(zeroblob(1000)))", "json_group_object(i, hex(zeroblob(1000)))"})
        EXPECT_EQ(bounded.rows(rows + "SELECT length(" + call + ") FROM n"), "string or blob too big");
    // What left a window does not count.
    EXPECT_EQ(
        bounded.rows(rows + "SELECT MAX(l) FROM (SELECT length(json_group_array(hex(zeroblob(1000))) OVER "
                            "(ORDER BY i ROWS 2 PRECEDING)) AS l FROM n)"),
        "1:6010\n");  // three texts of 2000 with quotes, two commas, two brackets
}

}  // namespace
}  // namespace tessera_host
// NOLINTEND(performance-inefficient-string-concatenation)
