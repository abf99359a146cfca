// The layers of a group and the table of nesting depths.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/view_model/hierarchical_level_manager.h"
#include "tests/support/log_capture.h"
#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::GroupLevelManager;
using tessera_1::view_model::HierarchicalLevelManager;

struct LevelManagers : testing::Test {
    std::vector<Names> layers() const {
        std::vector<Names> out;
        for (const auto& layer : manager.m_levels)
            out.push_back(idsOf(*layer));
        return out;
    }
    bool put(const NodePtr& node, int level, bool keepPlaceholder = false) {
        return manager.setLevel(node, level, keepPlaceholder).is_success();
    }
    using Layers = std::vector<Names>;

    LogCapture log;
    HierarchicalLevelManager manager;
    NodePtr a = makeNode("a"), b = makeNode("b"), c = makeNode("c");
};

TEST_F(LevelManagers, LevelThreeOfANewNodeMakesTheLayersAboveIt) {
    EXPECT_TRUE(put(a, 3));
    EXPECT_EQ(layers(), (Layers{{}, {}, {}, {"a"}}));
    EXPECT_EQ(a->getHierarchicalLevel(), 3);
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(LevelManagers, AddedLevelsAreEmptyAndNotTheSame) {
    manager.addLevel();
    manager.addLevel();
    ASSERT_EQ(layers(), (Layers{{}, {}}));
    EXPECT_NE(manager.m_levels[0], manager.m_levels[1]);
}

TEST_F(LevelManagers, NodesOfALayerStandInTheOrderOfTheirArrival) {
    EXPECT_TRUE(put(c, 1) && put(a, 1) && put(b, 1));
    EXPECT_EQ(layers(), (Layers{{}, {"c", "a", "b"}}));
}

TEST_F(LevelManagers, NodeThatMovesOnLeavesAPlaceholderWhenRequested) {
    EXPECT_TRUE(put(a, 1) && put(b, 1) && put(c, 1));
    EXPECT_TRUE(put(b, 2, true));
    EXPECT_EQ(layers(), (Layers{{}, {"a", "(null)", "c"}, {"b"}}));
    EXPECT_EQ(b->getHierarchicalLevel(), 2);
}

TEST_F(LevelManagers, NodeThatMovesOnLeavesAShorterLayerOtherwise) {
    EXPECT_TRUE(put(a, 1) && put(b, 1) && put(c, 1));
    EXPECT_TRUE(put(b, 2, false));
    EXPECT_EQ(layers(), (Layers{{}, {"a", "c"}, {"b"}}));
    // c is recorded in another layer than the one it is in.
    EXPECT_TRUE(put(c, 2, true));
    EXPECT_EQ(layers(), (Layers{{}, {"a", "(null)"}, {"b", "c"}}));
}

TEST_F(LevelManagers, FirstEntryOfANodeMovesAlsoInALayerEditedByHand) {
    EXPECT_TRUE(put(a, 1) && put(b, 1) && put(c, 1));
    manager.m_levels[1]->insert(manager.m_levels[1]->begin(), b);
    EXPECT_TRUE(put(b, 2, true));
    EXPECT_EQ(layers(), (Layers{{}, {"(null)", "a", "b", "c"}, {"b"}}));
    manager.m_levels[1]->front() = c;
    EXPECT_TRUE(put(c, 2, false));
    EXPECT_EQ(layers(), (Layers{{}, {"a", "b", "c"}, {"b", "c"}}));
}

TEST_F(LevelManagers, NodeThatMovesOnComesAfterThoseThatAreThere) {
    EXPECT_TRUE(put(a, 0) && put(b, 2) && put(a, 2));
    EXPECT_EQ(layers(), (Layers{{}, {}, {"b", "a"}}));
}

TEST_F(LevelManagers, LevelThatIsNotDeeperIsARangeErrorAndNothingMoves) {
    EXPECT_TRUE(put(a, 2));
    EXPECT_TRUE(manager.setLevel(a, 1, false).is(bk2::error::IsNot.Valid.Range));
    EXPECT_EQ(layers(), (Layers{{}, {}, {"a"}}));
    EXPECT_EQ(a->getHierarchicalLevel(), 2);
    EXPECT_EQ(log.reports(), (Names{"ERROR check level > oldLevel"}));
}

TEST_F(LevelManagers, NegativeLevelIsARangeErrorAndNothingMoves) {
    for (const int level : {-1, -2}) {
        EXPECT_TRUE(manager.setLevel(a, level, true).is(bk2::error::IsNot.Valid.Range)) << level;
        EXPECT_EQ(a->getHierarchicalLevel(), -1);
    }
    EXPECT_EQ(layers(), Layers{});
    EXPECT_EQ(log.reports(), (Names{"ERROR check level >= 0", "ERROR check level >= 0"}));
}

TEST_F(LevelManagers, LevelThatTheNodeHasSucceedsAndDoesNotDoubleIt) {
    EXPECT_TRUE(put(a, 2));
    EXPECT_TRUE(put(a, 2, true));
    EXPECT_EQ(layers(), (Layers{{}, {}, {"a"}}));
}

TEST_F(LevelManagers, LevelThatTheNodeHasIsNotLookedForInTheLayers) {
    a->m_hierarchicalLevel = 5;
    EXPECT_TRUE(put(a, 5));
    EXPECT_EQ(layers(), Layers{});
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(LevelManagers, NodeThatIsNotInTheLayerOfItsLevelIsTheFalseCodeAndStays) {
    EXPECT_TRUE(put(b, 1));
    a->m_hierarchicalLevel = 1;
    EXPECT_TRUE(manager.setLevel(a, 2, true).is_false());
    EXPECT_EQ(layers(), (Layers{{}, {"b"}}));
    EXPECT_EQ(a->getHierarchicalLevel(), 1);
    EXPECT_EQ(log.reports(), (Names{"ERROR check oldLevel == -1"}));
}

TEST_F(LevelManagers, NodeWhoseLevelHasNoLayerIsARangeError) {
    EXPECT_TRUE(put(b, 0));
    a->m_hierarchicalLevel = 1;
    EXPECT_TRUE(manager.setLevel(a, 2, false).is(bk2::error::IsNot.Valid.Range));
    EXPECT_EQ(layers(), (Layers{{"b"}}));
    EXPECT_EQ(a->getHierarchicalLevel(), 1);
    EXPECT_EQ(log.reports(), (Names{"ERROR check m_levels.size() > oldLevel"}));
}

TEST_F(LevelManagers, OnlyTheFirstEntryOfANodeThatIsThereTwiceMoves) {
    EXPECT_TRUE(put(a, 0));
    a->m_hierarchicalLevel = -1;  // as for a second layering on top of the first
    EXPECT_TRUE(put(a, 0));
    EXPECT_EQ(layers(), (Layers{{"a", "a"}}));
    EXPECT_TRUE(put(a, 1, true));
    EXPECT_EQ(layers().back(), Names{"a"});
    EXPECT_EQ(layers().front(), (Names{"(null)", "a"}));
}

TEST_F(LevelManagers, LevelBelowMinusOneIsReportedAndStoredOnANode) {
    a->setHierarchicalLevel(-1);
    EXPECT_EQ(log.reports(), Names{});
    a->setHierarchicalLevel(-2);
    EXPECT_EQ(a->getHierarchicalLevel(), -2);
    EXPECT_EQ(log.reports(), (Names{"ERROR check level >= -1"}));
}

TEST(GroupLevelTable, UnknownIdIsTheFalseCodeAndTheLevelIsLeftAlone) {
    const GroupLevelManager manager;
    std::int32_t level = 7;
    EXPECT_TRUE(manager.getGroupLevel("x", level).is_false());
    EXPECT_EQ(level, 7);
}

TEST(GroupLevelTable, LaterLevelOfAnIdReplacesTheEarlierOne) {
    GroupLevelManager manager;
    manager.setGroupLevel("x", 1);
    manager.setGroupLevel("x", 4);
    std::int32_t level = 0;
    EXPECT_TRUE(manager.getGroupLevel("x", level).is_success());
    EXPECT_EQ(level, 4);
    EXPECT_EQ(manager.m_groupLevels.size(), 1U);
}

}  // namespace
}  // namespace tessera_test
