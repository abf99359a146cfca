// Reading the environment.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/basekit2/environ.h"

namespace tessera_test {
namespace {

constexpr const char* name = "tessera_test_VARIABLE";

TEST(Environ, UnsetVariableReadsAsNoText) {
    unsetenv(name);
    EXPECT_EQ(basekit2::get_environ_value(name), "");
}

TEST(Environ, ValueIsReadAsItIsNow) {
    setenv(name, "first", 1);
    EXPECT_EQ(basekit2::get_environ_value(name), "first");
    setenv(name, "", 1);
    EXPECT_EQ(basekit2::get_environ_value(name), "");
    unsetenv(name);
}

}  // namespace
}  // namespace tessera_test
