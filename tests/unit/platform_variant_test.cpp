// The tagged value.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "platform/basekit2/variant.h"
#include "platform/basekit2/variant_bag.h"
#include "tests/support/assertion_capture.h"

namespace tessera_test {
namespace {

using basekit2::variant_t;
using type_t = variant_t::type_t;

TEST(Variant, NewOneHoldsNothing) {
    const variant_t value{};
    EXPECT_EQ(value.type(), type_t::none);
    EXPECT_FALSE(value.can_get<const char*>());
    EXPECT_FALSE(value.can_get<std::int64_t>());
    EXPECT_FALSE(value.can_get<bool>());
}

TEST(Variant, EveryFormOfTextIsAString) {
    const std::string text = "text";
    for (const variant_t& value : {variant_t("text"), variant_t(text), variant_t(std::string_view(text))}) {
        EXPECT_EQ(value.type(), type_t::string);
        EXPECT_TRUE(value.can_get<const char*>());
        EXPECT_TRUE(value.can_get<std::string_view>());
        EXPECT_FALSE(value.can_get<bool>());
        EXPECT_STREQ(value.get<const char*>(), "text");
        EXPECT_EQ(value.get<std::string_view>(), "text");
    }
}

TEST(Variant, IntegersOfEveryWidthAreSignExtended) {
    EXPECT_EQ(variant_t(std::int32_t{-1}).get<std::int64_t>(), -1);
    EXPECT_EQ(variant_t(std::int8_t{-128}).get<std::int64_t>(), -128);
    EXPECT_EQ(variant_t(std::int16_t{-2}).get<std::int64_t>(), -2);
    EXPECT_EQ(variant_t(std::int64_t{INT64_MIN}).get<std::int64_t>(), INT64_MIN);
    EXPECT_EQ(variant_t(std::int64_t{INT64_MAX}).get<std::int64_t>(), INT64_MAX);
}

TEST(Variant, BooleanIsNotAnInteger) {
    const variant_t flag(true);
    EXPECT_EQ(flag.type(), type_t::boolean);
    EXPECT_TRUE(flag.get<bool>());
    EXPECT_FALSE(flag.can_get<std::int64_t>());
    EXPECT_FALSE(variant_t(1).can_get<bool>());
    EXPECT_FALSE(variant_t(false).get<bool>());
}

TEST(Variant, OtherTypesCannotBeStored) {
    static_assert(!std::is_constructible_v<variant_t, unsigned>);
    static_assert(!std::is_constructible_v<variant_t, double>);
    static_assert(!std::is_constructible_v<variant_t, const int*>);
    static_assert(std::is_constructible_v<variant_t, int>);
}

TEST(Variant, ReadingAnotherTypeRaisesTheAssertionNamedAfterTheTypeAndReturnsNothing) {
    const AssertionCapture assertions;
    EXPECT_STREQ(variant_t(5).get<const char*>(), "");
    EXPECT_EQ(variant_t(5).get<std::string_view>(), "");
    EXPECT_EQ(variant_t("5").get<std::int64_t>(), 0);
    EXPECT_FALSE(variant_t("true").get<bool>());
    EXPECT_STREQ(variant_t().get<const char*>(), "");
    EXPECT_EQ(
        assertions.messages(),
        (std::vector<std::string>{"can_get<const char*>()", "can_get<const char*>()",
                                  "can_get<std::int64_t>()", "can_get<bool>()", "can_get<const char*>()"}));
}

TEST(Variant, ReadingTheRightTypeRaisesNothing) {
    const AssertionCapture assertions;
    (void)variant_t("5").get<const char*>();
    (void)variant_t("").get<std::string_view>();
    (void)variant_t(0).get<std::int64_t>();
    (void)variant_t(false).get<bool>();
    EXPECT_TRUE(assertions.all().empty());
}

TEST(Variant, TextMayHoldZeroBytesAndEndsInOne) {
    using namespace std::string_literals;
    const variant_t value("a\0b"s);
    EXPECT_EQ(value.get<std::string_view>(), "a\0b"s);
    EXPECT_EQ(std::memcmp(value.get<const char*>(), "a\0b", 4), 0);
}

TEST(Variant, EmptyTextWithoutStorageIsAnEmptyString) {
    const variant_t value{std::string_view()};
    EXPECT_TRUE(value.can_get<const char*>());
    EXPECT_STREQ(value.get<const char*>(), "");
    const variant_t copy(
        value);  // NOLINT(performance-unnecessary-copy-initialization): the copy is under test
    EXPECT_EQ(copy, value);
}

TEST(Variant, CopyOwnsItsText) {
    auto original = std::make_unique<variant_t>("text");
    const variant_t copy(*original);
    EXPECT_NE(copy.get<const char*>(), original->get<const char*>());
    original.reset();
    EXPECT_EQ(copy.get<std::string_view>(), "text");
}

TEST(Variant, AssignmentReplacesTypeAndText) {
    variant_t value("text");
    value = variant_t(3);
    EXPECT_EQ(value.get<std::int64_t>(), 3);
    value = variant_t("a new text that is longer");
    value = std::as_const(value);
    EXPECT_EQ(value.get<std::string_view>(), "a new text that is longer");
}

TEST(Variant, MoveTakesTheTextAndLeavesAUsableValue) {
    variant_t source("text");
    const variant_t target(std::move(source));
    EXPECT_EQ(target.get<std::string_view>(), "text");
    source = variant_t("again");  // NOLINT(bugprone-use-after-move): this is the rule under test
    EXPECT_EQ(source.get<std::string_view>(), "again");
}

TEST(Variant, CopyOfAValueInABagOutlivesTheBag) {
    auto bag = std::make_unique<basekit2::variant_bag_t>();
    bag->put("v", "text");
    const variant_t copy(*bag->get("v"));
    bag.reset();
    EXPECT_EQ(copy.get<std::string_view>(), "text");
}

TEST(Variant, ValuesAreEqualWhenTypeAndContentAre) {
    using namespace std::string_literals;
    EXPECT_EQ(variant_t("a"), variant_t("a"));
    EXPECT_EQ(variant_t(1), variant_t(std::int64_t{1}));
    EXPECT_EQ(variant_t(), variant_t());
    EXPECT_EQ(variant_t(true), variant_t(true));
    EXPECT_FALSE(variant_t("a") == variant_t("b"));
    EXPECT_FALSE(variant_t("a") == variant_t("a\0"s));
    EXPECT_FALSE(variant_t("1") == variant_t(1));
    EXPECT_FALSE(variant_t(1) == variant_t(true));
    EXPECT_FALSE(variant_t(true) == variant_t(false));
    EXPECT_FALSE(variant_t("") == variant_t());
}

}  // namespace
}  // namespace tessera_test
