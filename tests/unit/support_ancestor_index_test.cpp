#include "support/ancestor_index.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

namespace tessera_support {
namespace {

using Index = std::uint32_t;

// The same functions, implemented by walking up step by step.
struct PlainTree {
    std::vector<Index> parent{0};

    Index depthOf(Index node) const {
        Index depth = 0;
        for (; node != 0; node = parent[node])
            ++depth;
        return depth;
    }
    std::vector<Index> ancestorsOf(Index node) const {  // from the root to the node
        std::vector<Index> all{node};
        for (; node != 0; node = parent[node])
            all.insert(all.begin(), parent[node]);
        return all;
    }
    Index common(Index a, Index b) const {
        const auto ofA = ancestorsOf(a);
        const auto ofB = ancestorsOf(b);
        std::size_t i = 0;
        while (i + 1 < ofA.size() && i + 1 < ofB.size() && ofA[i + 1] == ofB[i + 1])
            ++i;
        return ofA[i];
    }
};

TEST(AncestorIndex, TheRootIsItsOwnParent) {
    const AncestorIndex<Index> tree;
    EXPECT_EQ(tree.size(), 1U);
    EXPECT_EQ(tree.parent(0), 0U);
    EXPECT_EQ(tree.depth(0), 0U);
    EXPECT_EQ(tree.lowestCommonAncestor(0, 0), 0U);
}

TEST(AncestorIndex, FindsWhatStepsFindInRandomTrees) {
    std::mt19937 random(7);
    for (const Index reach : {1U, 2U, 5U, 1000U}) {  // of a chain, and of bushier trees
        AncestorIndex<Index> tree;
        PlainTree plain;
        for (Index i = 1; i < 200; ++i) {
            const Index parent = i - 1 - static_cast<Index>(random() % std::min(i, reach));
            plain.parent.push_back(parent);
            ASSERT_EQ(tree.append(parent), i);
        }
        for (int i = 0; i < 2000; ++i) {
            const auto a = static_cast<Index>(random() % 200);
            const auto b = static_cast<Index>(random() % 200);
            const Index common = plain.common(a, b);
            ASSERT_EQ(tree.depth(a), plain.depthOf(a));
            ASSERT_EQ(tree.lowestCommonAncestor(a, b), common);
            for (Index depth = 0; depth <= tree.depth(a); ++depth)
                ASSERT_EQ(tree.ancestorAtDepth(a, depth), plain.ancestorsOf(a)[depth]);
            if (common == a || common == b) continue;
            const auto [liftedA, liftedB] = tree.liftedToCommonGroup(a, b);
            ASSERT_EQ(tree.parent(liftedA), common);
            ASSERT_EQ(tree.parent(liftedB), common);
            ASSERT_EQ(plain.common(liftedA, a), liftedA);
            ASSERT_EQ(plain.common(liftedB, b), liftedB);
        }
    }
}

TEST(AncestorIndex, ANodeAndItsDescendantAreLiftedToTheNode) {
    AncestorIndex<Index> tree;
    const Index outer = tree.append(0);
    const Index inner = tree.append(tree.append(outer));
    EXPECT_EQ(tree.liftedToCommonGroup(outer, inner), std::pair(outer, outer));
    EXPECT_EQ(tree.liftedToCommonGroup(inner, outer), std::pair(outer, outer));
    EXPECT_EQ(tree.liftedToCommonGroup(inner, inner), std::pair(inner, inner));
}

TEST(AncestorIndex, NumbersNeedNotFollowTheNesting) {
    AncestorIndex<Index> tree(5, 4);
    tree.setParent(2, 4);
    tree.setParent(0, 2);
    tree.setParent(1, 2);
    tree.setParent(3, 1);
    EXPECT_EQ(tree.lowestCommonAncestor(0, 3), 2U);
    EXPECT_EQ(tree.lowestCommonAncestor(3, 4), 4U);
    EXPECT_EQ(tree.liftedToCommonGroup(0, 3), std::pair(Index{0}, Index{1}));
}

TEST(AncestorIndex, AChainOfAMillionIsQuick) {
    constexpr Index count = 1'000'000;
    AncestorIndex<Index> tree;
    for (Index i = 0; i < count; ++i)
        tree.append(i);
    std::mt19937 random(11);
    for (int i = 0; i < 100'000; ++i) {
        const auto depth = static_cast<Index>(random() % count);
        ASSERT_EQ(tree.ancestorAtDepth(count, depth), depth);
        ASSERT_EQ(tree.lowestCommonAncestor(count, depth), depth);
    }
}

}  // namespace
}  // namespace tessera_support
