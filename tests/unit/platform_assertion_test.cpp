// The host runtime's assertion.
#include <gtest/gtest.h>

#include "platform/RTBASE_2_18/assertion.h"
#include "tests/support/assertion_capture.h"

namespace tessera_test {
namespace {

void ignore(const char*, const char*, const char*, int) {}

TEST(HostAssertion, HandlerOfTheHostsOwnGetsMessageAndPlaceAndMayReturn) {
    const AssertionCapture assertions;
    RTBASE_2_18::assertion_failed("message", "function", "file", 12);
    const std::vector<Assertion> raised = assertions.all();
    ASSERT_EQ(raised.size(), 1U);
    EXPECT_EQ(raised[0].message, "message");
    EXPECT_EQ(raised[0].function, "function");
    EXPECT_EQ(raised[0].file, "file");
    EXPECT_EQ(raised[0].line, 12);
}

TEST(HostAssertion, InstallingReturnsTheHandlerInForce) {
    const auto first = RTBASE_2_18::set_assertion_handler(ignore);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(RTBASE_2_18::set_assertion_handler(nullptr), &ignore);
    EXPECT_EQ(RTBASE_2_18::set_assertion_handler(first), first) << "null must bring the default back";
}

struct HostAssertionDeathTest : testing::Test {
    HostAssertionDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(HostAssertionDeathTest, DefaultPrintsMessageAndPlaceAndAborts) {
    EXPECT_EXIT(RTBASE_2_18::assertion_failed("a < b", "int f()", "core/unit", 12),
                testing::KilledBySignal(SIGABRT), "core/unit:12: int f\\(\\): assertion failed: a < b");
}

TEST_F(HostAssertionDeathTest, NullBringsTheDefaultBack) {
    EXPECT_EXIT(
        {
            RTBASE_2_18::set_assertion_handler(ignore);
            RTBASE_2_18::set_assertion_handler(nullptr);
            RTBASE_2_18::assertion_failed("again", "f", "file", 1);
        },
        testing::KilledBySignal(SIGABRT), "assertion failed: again");
}

}  // namespace
}  // namespace tessera_test
