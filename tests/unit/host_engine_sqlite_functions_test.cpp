// Compares the SQL functions that replace SQLite's own with the originals.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <random>
#include <string>
#include <vector>

#include "host/engine/sqlite/bounded_functions.h"
#include "tests/unit/host_engine_sqlite_functions_support.h"

// The statements are few and short, and easier to read like this.
// NOLINTBEGIN(performance-inefficient-string-concatenation)
namespace tessera_host {
namespace {

class SqliteFunctions : public testing::Test {
  protected:
    SqliteFunctions() { EXPECT_EQ(registerBoundedFunctions(bounded.get()), SQLITE_OK); }

    Memory own;
    Memory bounded;
};

TEST_F(SqliteFunctions, ReturnWhatSqlitesOwnReturn) {
    const std::vector<std::string> values{"NULL",
                                          "''",
                                          "'a'",
                                          "'b'",
                                          "'aab'",
                                          "'abaab'",
                                          "'a' || char(8364) || 'b'",
                                          "char(8364)",
                                          "char(233)",
                                          "char(8364, 233, 8364)",
                                          "x''",
                                          "x'61'",
                                          "x'006162'",
                                          "x'E282'",
                                          "x'AC61'",
                                          "0",
                                          "15",
                                          "-1.5",
                                          "1e300",
                                          "'  pad '",
                                          "' '",
                                          "'a' || char(0) || 'b'",
                                          "'A'",
                                          "'aaaaaaaaaaaaaaaaaaaab'",
                                          "char(128512) || 'x'"};
    for (const std::string& x : values)
        for (const std::string& y : values) {
            for (const char* name : {"instr", "trim", "ltrim", "rtrim"}) {
                const std::string call = std::string(name) + "(" + x + ", " + y + ")";
                ASSERT_EQ(bounded.value(call), own.value(call)) << call;
            }
            for (const std::string& z : values) {
                const std::string call = "replace(" + x + ", " + y + ", " + z + ")";
                ASSERT_EQ(bounded.value(call), own.value(call)) << call;
            }
        }
}

TEST_F(SqliteFunctions, ReturnTheSameForRandomTexts) {
    std::mt19937 random(3);
    const std::vector<std::string> pieces{"a", "b", "ab", "\u00E9", "\u20AC", "\U0001F600", " "};
    const auto text = [&] {
        std::string made = "'";
        for (auto count = random() % 8; count > 0; --count)
            made += pieces[random() % pieces.size()];
        return made + "'";
    };
    for (int i = 0; i < 5000; ++i)
        for (const char* name : {"instr", "trim", "ltrim", "rtrim", "replace"}) {
            std::string call = std::string(name) + "(" + text() + ", " + text();
            if (std::string_view(name) == "replace") call += ", " + text();
            call += ")";
            ASSERT_EQ(bounded.value(call), own.value(call)) << call;
        }
}

TEST_F(SqliteFunctions, RefuseWhatIsTooLarge) {
    for (const Memory* memory : {&own, &bounded}) {
        sqlite3_limit(memory->get(), SQLITE_LIMIT_LENGTH, 1000);
        EXPECT_EQ(memory->value("replace('aaaaaaaaaa', 'a', hex(zeroblob(100)))"), "string or blob too big");
        EXPECT_EQ(memory->value("length(replace('aaaa', 'a', hex(zeroblob(100))))"), "integer 800");
    }
}

}  // namespace
}  // namespace tessera_host
// NOLINTEND(performance-inefficient-string-concatenation)
