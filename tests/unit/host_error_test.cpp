#include "host/error.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace tessera_host;

Expected<int> half(int number) {
    if (number % 2 != 0) return Error{ErrorKind::failed, std::to_string(number) + " is odd"};
    return number / 2;
}

Expected<void> requireEven(int number) {
    auto result = half(number);
    if (!result) return std::move(result).error();
    return {};
}

TEST(Expected, HoldsTheValueOfSuccess) {
    const auto result = half(8);
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 4);
}

TEST(Expected, HoldsTheErrorOfFailure) {
    const auto result = half(7);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), (Error{ErrorKind::failed, "7 is odd"}));
}

TEST(Expected, WithoutAValueIsSuccessOrAnError) {
    EXPECT_TRUE(requireEven(2));
    const auto result = requireEven(3);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().text, "3 is odd");
}

TEST(Expected, HoldsValuesThatCannotBeCopied) {
    Expected<std::unique_ptr<int>> result(std::make_unique<int>(5));
    ASSERT_TRUE(result);
    const std::unique_ptr<int> taken = *std::move(result);
    EXPECT_EQ(*taken, 5);
}

TEST(Expected, MayHoldAnErrorAsItsText) {
    const Expected<std::string> text(std::string("fine"));
    ASSERT_TRUE(text);
    EXPECT_EQ(text->size(), 4U);
}

TEST(Error, NamesThePlaceWhenItHasOne) {
    EXPECT_EQ(describe({ErrorKind::failed, "it is wrong", {3, 7}}, "a.xml"), "a.xml:3:7: it is wrong");
    EXPECT_EQ(describe({ErrorKind::cannotOpen, "there is no such file"}, "a.xml"),
              "a.xml: there is no such file");
}

TEST(Error, KnowsWhetherTheWorkWasCancelled) {
    EXPECT_TRUE(cancelledError().isCancelled());
    EXPECT_FALSE((Error{ErrorKind::failed, "cancelled"}).isCancelled());
}

}  // namespace
