// Copying, moving, assigning and comparing property bags, within one tree and between trees.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/basekit2/variant_bag.h"
#include "tests/support/bag_reading.h"

namespace tessera_test {
namespace {

using basekit2::source_position_t;
using basekit2::variant_bag_t;
using basekit2::variant_t;

TEST(VariantBagCopy, CopyIsATreeOfItsOwn) {
    auto original = std::make_unique<variant_bag_t>(smallTree());
    variant_bag_t copy(*original);
    EXPECT_EQ(copy, *original);
    original->add_variant_bag("later");
    EXPECT_EQ(childNames(copy), (Names{"x", "y"}));
    copy.put("a", "changed");
    copy.add_variant_bag("mine");
    EXPECT_EQ(textOf(*original, "a"), "1");
    EXPECT_EQ(childNames(*original), (Names{"x", "y", "later"}));
    original.reset();
    EXPECT_EQ(textOf(*copy.get_variant_bag("x"), "v"), "2");
}

TEST(VariantBagCopy, CopyOfAChildIsARoot) {
    auto tree = std::make_unique<variant_bag_t>(smallTree());
    variant_bag_t copy(*tree->get_variant_bag("x"));
    tree.reset();
    EXPECT_EQ(textOf(copy, "v"), "2");
    copy.add_variant_bag("grows");
    EXPECT_EQ(childNames(copy), (Names{"grows"}));
}

TEST(VariantBagCopy, MoveOfARootTakesItsContent) {
    variant_bag_t source = smallTree();
    const variant_bag_t* child = source.get_variant_bag("x");
    variant_bag_t target(std::move(source));
    EXPECT_EQ(target, smallTree());
    EXPECT_EQ(target.get_variant_bag("x"), child) << "the content was copied";
    target.add_variant_bag("z");
    EXPECT_EQ(childNames(target), (Names{"x", "y", "z"}));
}

TEST(VariantBagCopy, MovedFromRootCanBeUsedAgain) {
    variant_bag_t source = smallTree();
    const variant_bag_t target(std::move(source));
    source = variant_bag_t();  // NOLINT(bugprone-use-after-move): this is the rule under test
    source.put("again", "1");
    EXPECT_EQ(valueNames(source), (Names{"again"}));
    EXPECT_EQ(target, smallTree());
}

TEST(VariantBagCopy, MoveOfAChildLeavesItInItsTree) {
    variant_bag_t tree;
    variant_bag_t& child = tree.add_variant_bag("x");
    child.put("v", "2");
    const variant_bag_t taken(std::move(child));
    EXPECT_EQ(textOf(taken, "v"), "2");
    EXPECT_EQ(textOf(*tree.get_variant_bag("x"), "v"), "2");
}

TEST(VariantBagCopy, AssignmentReplacesTheContent) {
    variant_bag_t target;
    target.put("old", "1");
    target.add_variant_bag("old");
    target = std::as_const(target);
    EXPECT_EQ(valueNames(target), (Names{"old"}));
    const variant_bag_t source = smallTree();
    target = source;
    EXPECT_EQ(target, smallTree());
    target = variant_bag_t();
    EXPECT_TRUE(target.is_empty());
}

TEST(VariantBagCopy, MoveAssignmentOfARootTakesItsContent) {
    variant_bag_t source = smallTree();
    variant_bag_t target;
    target.put("old", "1");
    target = std::move(source);
    EXPECT_EQ(target, smallTree());
}

TEST(VariantBagCopy, AssignmentToAChildReplacesItWithinItsTree) {
    variant_bag_t tree;
    variant_bag_t& child = tree.add_variant_bag("c");
    child.put("old", "1");
    tree.add_variant_bag("sibling").put("v", "stays");
    child = smallTree();
    EXPECT_EQ(*tree.get_variant_bag("c"), smallTree());
    EXPECT_EQ(childNames(tree), (Names{"c", "sibling"}));
    EXPECT_EQ(textOf(*tree.get_variant_bag("sibling"), "v"), "stays");
}

TEST(VariantBagCopy, ChildCanBeAssignedFromItsAncestor) {
    variant_bag_t tree = smallTree();
    variant_bag_t& inner = tree.add_variant_bag("outer").add_variant_bag("inner");
    inner.put("old", "1");
    const variant_bag_t before(tree);
    inner = std::as_const(tree);
    EXPECT_EQ(inner, before) << "the child must become what the whole tree was";
    EXPECT_EQ(childNames(tree), (Names{"x", "y", "outer"}));
    EXPECT_EQ(inner.get_variant_bag("outer")->get_variant_bag("inner")->get("old")->get<std::string_view>(),
              "1");
    EXPECT_EQ(inner.get("old"), nullptr);
}

TEST(VariantBagCopy, AncestorCanBeAssignedFromItsChild) {
    variant_bag_t tree = smallTree();
    tree.add_variant_bag("outer").add_variant_bag("inner") = smallTree();
    const variant_bag_t& inner = *tree.get_variant_bag("outer")->get_variant_bag("inner");
    tree = inner;
    EXPECT_EQ(tree, smallTree());
}

TEST(VariantBagCopy, AncestorCanBeMoveAssignedFromItsChild) {
    variant_bag_t tree;
    variant_bag_t& inner = tree.add_variant_bag("outer").add_variant_bag("inner");
    inner = smallTree();
    tree = std::move(inner);
    EXPECT_EQ(tree, smallTree());
}

TEST(VariantBagCopy, ChildCanBeAssignedFromItsParentChild) {
    variant_bag_t tree;
    variant_bag_t& parent = tree.add_variant_bag("parent");
    parent.put("p", "1");
    variant_bag_t& child = parent.add_variant_bag("child");
    const variant_bag_t before(parent);
    child = parent;
    EXPECT_EQ(child, before);
    EXPECT_EQ(childNames(*child.get_variant_bag("child")), Names{});
}

TEST(VariantBagCopy, SiblingsCanBeAssigned) {
    variant_bag_t tree;
    variant_bag_t& a = tree.add_variant_bag("a");
    variant_bag_t& b = tree.add_variant_bag("b");
    a.put("v", "1");
    b = a;
    b.put("w", "2");
    EXPECT_EQ(valueNames(a), (Names{"v"}));
    EXPECT_EQ(valueNames(b), (Names{"v", "w"}));
}

TEST(VariantBagCopy, SelfAssignmentChangesNothing) {
    variant_bag_t tree = smallTree();
    variant_bag_t& child = tree.add_variant_bag("c");
    child.put("v", "1");
    child = std::as_const(child);
    tree = std::as_const(tree);
    EXPECT_EQ(textOf(*tree.get_variant_bag("c"), "v"), "1");
    EXPECT_EQ(childNames(tree), (Names{"x", "y", "c"}));
}

TEST(VariantBagCopy, PositionsAreCopiedAtEveryDepth) {
    variant_bag_t tree;
    tree.set_position({1, 2});
    variant_bag_t& child = tree.add_variant_bag("c");
    child.set_position({3, 4});
    child.add_variant_bag("d").set_position({5, 6});
    const auto expectPositions = [](const variant_bag_t& bag) {
        EXPECT_EQ(bag.position(), (source_position_t{1, 2}));
        EXPECT_EQ(bag.get_variant_bag("c")->position(), (source_position_t{3, 4}));
        EXPECT_EQ(bag.get_variant_bag("c")->get_variant_bag("d")->position(), (source_position_t{5, 6}));
    };
    variant_bag_t copy(tree);
    expectPositions(copy);
    variant_bag_t assigned;
    assigned.add_variant_bag("place") = tree;
    expectPositions(*assigned.get_variant_bag("place"));
    const variant_bag_t moved(std::move(copy));
    expectPositions(moved);
    const variant_bag_t ofChild(*tree.get_variant_bag("c"));
    EXPECT_EQ(ofChild.position(), (source_position_t{3, 4}));
}

TEST(VariantBagCopy, PositionsDoNotCountInComparison) {
    variant_bag_t a = smallTree(), b = smallTree();
    a.set_position({1, 1});
    EXPECT_EQ(a, b);
}

TEST(VariantBagCopy, ComparisonSeesEveryDifference) {
    const variant_bag_t tree = smallTree();
    std::vector<variant_bag_t> others(8);
    for (std::size_t i = 1; i < others.size(); ++i)
        others[i] = tree;
    others[1].put("a", "2");           // another value
    others[2].put("b", "1");           // one value more
    others[3].add_variant_bag("y");    // one child more
    others[4].put("a", variant_t(1));  // another type
    others[5] = variant_bag_t();       // other order of children
    others[5].put("a", "1");
    others[5].add_variant_bag("y");
    others[5].add_variant_bag("x").put("v", "2");
    others[6] = variant_bag_t();  // a difference further down
    others[6].put("a", "1");
    others[6].add_variant_bag("x").put("v", "3");
    others[6].add_variant_bag("y");
    others[7] = variant_bag_t();  // another name of a child
    others[7].put("a", "1");
    others[7].add_variant_bag("x").put("v", "2");
    others[7].add_variant_bag("Y");
    for (std::size_t i = 0; i < others.size(); ++i) {
        EXPECT_FALSE(others[i] == tree) << i;
        EXPECT_FALSE(tree == others[i]) << i;
    }
}

TEST(VariantBagCopy, ComparisonSeesTheOrderOfValues) {
    variant_bag_t a, b;
    a.put("p", "1");
    a.put("q", "2");
    b.put("q", "2");
    b.put("p", "1");
    EXPECT_FALSE(a == b);
}

}  // namespace
}  // namespace tessera_test
