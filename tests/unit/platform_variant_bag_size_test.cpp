// Property bags with many values, many children, many levels and many readers.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/basekit2/variant_bag.h"
#include "tests/support/bag_reading.h"

namespace tessera_test {
namespace {

using basekit2::variant_bag_t;
using basekit2::variant_t;

// `count` values k0, k1, ... whose texts are their numbers.
void putNumbered(variant_bag_t& bag, int count) {
    for (int i = 0; i < count; ++i)
        bag.put("k" + std::to_string(i), std::to_string(i));
}

void expectNumbered(const variant_bag_t& bag, int count) {
    ASSERT_EQ(bag.value_count(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(textOf(bag, "k" + std::to_string(i)), std::to_string(i));
    EXPECT_EQ(bag.get("k" + std::to_string(count)), nullptr);
    EXPECT_EQ(bag.get("k"), nullptr);
}

TEST(VariantBagSize, ManyValuesAreFoundByName) {
    for (const int count : {15, 16, 17, 18, 1000}) {
        variant_bag_t bag;
        putNumbered(bag, count);
        expectNumbered(bag, count);
        bag.put("k0", "other");
        bag.put("k" + std::to_string(count - 1), "last");
        EXPECT_EQ(bag.value_count(), static_cast<std::size_t>(count));
        EXPECT_EQ(textOf(bag, "k0"), "other");
        EXPECT_EQ(textOf(bag, "k" + std::to_string(count - 1)), "last");
        EXPECT_EQ(valueNames(bag).front(), "k0");
    }
}

TEST(VariantBagSize, ManyValuesAreFoundAfterCopyMoveAndAssignment) {
    variant_bag_t bag;
    putNumbered(bag, 40);
    const variant_bag_t copy(bag);
    expectNumbered(copy, 40);
    variant_bag_t moved(std::move(bag));
    expectNumbered(moved, 40);
    variant_bag_t target;
    putNumbered(target, 20);
    target = moved;
    expectNumbered(target, 40);
    variant_bag_t few;
    putNumbered(few, 3);
    target = std::move(few);
    expectNumbered(target, 3);
    putNumbered(target, 30);
    expectNumbered(target, 30);
    target = std::move(moved);
    expectNumbered(target, 40);
}

TEST(VariantBagSize, ManyValuesOfAChildAreFoundAfterItsTreeMovedAndAfterAssignment) {
    variant_bag_t tree;
    variant_bag_t& child = tree.add_variant_bag("c");
    putNumbered(child, 40);
    variant_bag_t moved(std::move(tree));
    expectNumbered(*moved.get_variant_bag("c"), 40);
    variant_bag_t few;
    putNumbered(few, 3);
    child = few;
    expectNumbered(*moved.get_variant_bag("c"), 3);
    putNumbered(child, 25);
    expectNumbered(*moved.get_variant_bag("c"), 25);
    child = variant_bag_t();
    EXPECT_TRUE(child.is_empty());
    EXPECT_EQ(child.get("k1"), nullptr);
}

TEST(VariantBagSize, AMillionValuesInOneBagAreFoundInConstantTime) {
    constexpr int count = 1'000'000;
    variant_bag_t bag;
    putNumbered(bag, count);
    expectNumbered(bag, count);  // a search through the list would take hours
}

TEST(VariantBagSize, AMillionElementsAreBuiltCopiedComparedAndWalked) {
    constexpr int count = 1'000'000;
    variant_bag_t bag;
    for (int i = 0; i < count; ++i) {
        variant_bag_t& child = bag.add_variant_bag("node");
        child.put("id", std::to_string(i));
        child.put("level", variant_t(i));
    }
    const variant_bag_t copy(bag);
    EXPECT_EQ(copy, bag);
    int i = 0;
    for (auto it = copy.begin(); !it.at_end(); it.next(), ++i)
        ASSERT_EQ(it.get_value().get("level")->get<std::int64_t>(), i);
    EXPECT_EQ(i, count);
}

TEST(VariantBagSize, AHundredThousandLevelsAreBuiltCopiedComparedAndDestroyed) {
    constexpr int depth = 100'000;
    auto tree = std::make_unique<variant_bag_t>();
    variant_bag_t* innermost = tree.get();
    for (int i = 0; i < depth; ++i)
        innermost = &innermost->add_variant_bag("n");
    const variant_bag_t copy(*tree);
    EXPECT_EQ(copy, *tree);
    innermost->put("v", "1");
    EXPECT_FALSE(copy == *tree);
    variant_bag_t other;
    other.add_variant_bag("place") = *tree;
    EXPECT_EQ(*other.get_variant_bag("place"), *tree);
    tree.reset();
    int levels = 0;
    for (const variant_bag_t* bag = &copy; (bag = bag->get_variant_bag("n")) != nullptr;)
        ++levels;
    EXPECT_EQ(levels, depth);
}

TEST(VariantBagSize, SeveralThreadsMayReadOneTree) {
    variant_bag_t tree;
    putNumbered(tree, 100);
    putNumbered(tree.add_variant_bag("c"), 100);
    std::vector<int> found(8);
    {
        std::vector<std::jthread> threads;
        for (int& mine : found)
            threads.emplace_back([&tree, &mine] {
                const variant_bag_t copy(tree);
                for (int i = 0; i < 100; ++i)
                    if (textOf(*tree.get_variant_bag("c"), "k" + std::to_string(i)) == std::to_string(i))
                        ++mine;
                if (copy == tree) ++mine;
            });
    }
    EXPECT_EQ(found, std::vector<int>(8, 101));
}

}  // namespace
}  // namespace tessera_test
