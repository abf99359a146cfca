// The property bag: values and children, their names and their order.
#include <gtest/gtest.h>

#include <string>

#include "platform/basekit2/variant_bag.h"
#include "tests/support/bag_reading.h"

namespace tessera_test {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;
using basekit2::variant_t;

TEST(VariantBag, NewBagIsEmpty) {
    const variant_bag_t bag;
    EXPECT_TRUE(bag.is_empty());
    EXPECT_EQ(bag.value_count(), 0U);
    EXPECT_TRUE(bag.begin().at_end());
    EXPECT_TRUE(bag.begin_values().at_end());
    EXPECT_EQ(bag.position(), (source_position_t{0, 0}));
}

TEST(VariantBag, BagWithOneValueIsNotEmpty) {
    variant_bag_t bag;
    bag.put("", "");
    EXPECT_FALSE(bag.is_empty());
}

TEST(VariantBag, BagWithOneEmptyChildIsNotEmpty) {
    variant_bag_t bag;
    bag.add_variant_bag("");
    EXPECT_FALSE(bag.is_empty());
}

TEST(VariantBag, AbsentNamesGiveNone) {
    const variant_bag_t bag = smallTree();
    EXPECT_EQ(bag.get("x"), nullptr);
    EXPECT_EQ(bag.get(""), nullptr);
    EXPECT_EQ(bag.get_variant_bag("a"), nullptr);
    EXPECT_EQ(bag.get_variant_bag("X"), nullptr);
}

TEST(VariantBag, TextOfAValueIsItsStringOrNothing) {
    variant_bag_t bag;
    bag.put("text", std::string("a\0b", 3));
    bag.put("number", 7);
    bag.put("flag", true);
    bag.put("", "own");
    bag.add_variant_bag("child").put("", "inside");
    EXPECT_EQ(bag.get_text("text"), std::string_view("a\0b", 3));
    EXPECT_EQ(bag.get_text(""), "own");
    EXPECT_EQ(bag.get_text("number"), "");
    EXPECT_EQ(bag.get_text("flag"), "");
    EXPECT_EQ(bag.get_text("child"), "");
    EXPECT_EQ(bag.get_text("absent"), "");
}

TEST(VariantBag, ValuesKeepTheOrderInWhichTheyWerePut) {
    variant_bag_t bag;
    for (const char* name : {"z", "a", "", "m"})
        bag.put(name, "");
    EXPECT_EQ(valueNames(bag), (Names{"z", "a", "", "m"}));
}

TEST(VariantBag, PutOfAPresentNameOverwritesInPlace) {
    variant_bag_t bag;
    bag.put("first", "1");
    bag.put("second", "2");
    bag.put("first", "a longer text than before");
    EXPECT_EQ(valueNames(bag), (Names{"first", "second"}));
    EXPECT_EQ(textOf(bag, "first"), "a longer text than before");
    EXPECT_EQ(bag.value_count(), 2U);
}

TEST(VariantBag, AppendedValuesAreThoseOfPut) {
    variant_bag_t put, appended;
    for (int i = 0; i < 40; ++i) {  // more than a bag holds without an index
        const std::string name = "name " + std::to_string(i);
        if (i % 2 == 0) {
            put.put(name, "text " + name);
            appended.append_text(name, "text " + name);
        } else {
            put.put(name, i);
            appended.append(name, i);
        }
    }
    EXPECT_TRUE(appended == put);
    EXPECT_EQ(appended.value_count(), 40U);
    EXPECT_EQ(appended.get_text("name 38"), "text name 38");
    appended.append("last", variant_t("kept"));
    appended.put("name 0", "other");
    EXPECT_EQ(appended.get_text("last"), "kept");
    EXPECT_EQ(appended.get_text("name 0"), "other");
    EXPECT_EQ(appended.value_count(), 41U);
}

TEST(VariantBag, OverwritingMayChangeTheType) {
    variant_bag_t bag;
    bag.put("v", "text");
    bag.put("v", variant_t(7));
    EXPECT_EQ(bag.get("v")->get<std::int64_t>(), 7);
    bag.put("v", variant_t(true));
    EXPECT_TRUE(bag.get("v")->get<bool>());
    bag.put("v", "text again");
    EXPECT_EQ(textOf(bag, "v"), "text again");
    EXPECT_EQ(bag.value_count(), 1U);
}

TEST(VariantBag, ValueAndChildMayShareAName) {
    variant_bag_t bag;
    bag.put("n", "value");
    bag.add_variant_bag("n").put("inside", "child");
    EXPECT_EQ(textOf(bag, "n"), "value");
    EXPECT_EQ(textOf(*bag.get_variant_bag("n"), "inside"), "child");
}

TEST(VariantBag, ChildrenOfOneNameKeepTheirOrderAmongTheOthers) {
    variant_bag_t bag;
    bag.add_variant_bag("row").put("v", "1");
    bag.add_variant_bag("other").put("v", "2");
    bag.add_variant_bag("row").put("v", "3");
    std::string seen;
    for (auto it = bag.begin(); !it.at_end(); it.next())
        seen += std::string(it.get_name()) + textOf(it.get_value(), "v") + " ";
    EXPECT_EQ(seen, "row1 other2 row3 ");
}

TEST(VariantBag, LookupFindsTheFirstChildOfAName) {
    variant_bag_t bag;
    bag.add_variant_bag("row").put("v", "first");
    bag.add_variant_bag("row").put("v", "second");
    EXPECT_EQ(textOf(*bag.get_variant_bag("row"), "v"), "first");
}

TEST(VariantBag, AddReturnsTheChildItself) {
    variant_bag_t bag;
    variant_bag_t& child = bag.add_variant_bag("c");
    EXPECT_TRUE(child.is_empty());
    child.put("v", "1");
    EXPECT_EQ(bag.get_variant_bag("c"), &child);
    EXPECT_EQ(textOf(*bag.get_variant_bag("c"), "v"), "1");
}

TEST(VariantBag, ReferencesAndIteratorsStayValidWhileMoreIsAdded) {
    variant_bag_t bag;
    variant_bag_t& first = bag.add_variant_bag("first");
    first.put("v", "kept");
    const variant_t* value = first.get("v");
    auto children = bag.begin();
    for (int i = 0; i < 10'000; ++i)
        bag.add_variant_bag("more").put("v", std::string(50, 'x'));
    for (int i = 0; i < 1000; ++i)
        first.put("k" + std::to_string(i), "more");
    EXPECT_EQ(value->get<std::string_view>(), "kept");
    EXPECT_EQ(first.get("v"), value);
    EXPECT_EQ(&children.get_value(), &first);
    int count = 0;
    for (; !children.at_end(); children.next())
        ++count;
    EXPECT_EQ(count, 10'001);
}

TEST(VariantBag, NamesAndTextsOwnTheirBytes) {
    variant_bag_t bag;
    {
        std::string name = "name", text = "text", child = "child";
        bag.put(name, text);
        bag.add_variant_bag(child);
        name = text = child = "gone!";
    }
    EXPECT_EQ(valueNames(bag), (Names{"name"}));
    EXPECT_EQ(childNames(bag), (Names{"child"}));
    EXPECT_EQ(textOf(bag, "name"), "text");
}

TEST(VariantBag, ZeroBytesAreBytesLikeAnyOther) {
    using namespace std::string_literals;
    variant_bag_t bag;
    bag.put("a\0b"s, "x\0y"s);
    bag.add_variant_bag("c\0d"s);
    EXPECT_EQ(textOf(bag, "a\0b"s), "x\0y"s);
    EXPECT_EQ(bag.get("a"), nullptr);
    EXPECT_NE(bag.get_variant_bag("c\0d"s), nullptr);
}

TEST(VariantBag, TextLargerThanAnyBlockIsKept) {
    const std::string text(3'000'000, 'q');
    variant_bag_t bag;
    bag.put("before", "1");
    bag.put("large", text);
    bag.put("after", "2");
    EXPECT_EQ(textOf(bag, "large"), text);
    EXPECT_EQ(textOf(bag, "before") + textOf(bag, "after"), "12");
}

TEST(VariantBag, TextThatLiesInTheBagItselfCanBePut) {
    variant_bag_t bag;
    bag.put("a", "0123456789");
    bag.put("a", bag.get("a")->get<std::string_view>().substr(3));
    EXPECT_EQ(textOf(bag, "a"), "3456789");
    bag.put("b", *bag.get("a"));
    bag.put("a", *bag.get("a"));
    EXPECT_EQ(textOf(bag, "a") + textOf(bag, "b"), "34567893456789");
}

}  // namespace
}  // namespace tessera_test
