// How deep nodes are nested.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;
using tessera_1::view_model::GroupLevelManager;
using Levels = std::map<std::string, int>;

struct GroupLevels : testing::Test, Diagram {
    Levels levels() {
        EXPECT_TRUE(graph.setGroupLevels().is_success());
        const auto& all = graph.m_groupLevelManager.m_groupLevels;
        Levels levels;
        for (std::size_t i = 0; i < all.size(); ++i)
            levels.emplace(all.entry(i).first, all.entry(i).second);
        EXPECT_EQ(levels.size(), all.size());
        return levels;
    }
};

TEST_F(GroupLevels, WithoutGroupsEveryNodeIsAtLevelZero) {
    node("a");
    node("b");
    EXPECT_EQ(levels(), (Levels{{"a", 0}, {"b", 0}}));
}

TEST_F(GroupLevels, MembersAreOneDeeperThanTheirGroup) {
    const NodePtr g = node("G"), a = node("A", g), h = node("H", g), b = node("B", h), outside = node("O");
    EXPECT_EQ(levels(), (Levels{{"G", 0}, {"A", 1}, {"H", 1}, {"B", 2}, {"O", 0}}));
    EXPECT_EQ(b->m_groupLevel, 0) << "the nodes get them when the diagram is written";
}

TEST_F(GroupLevels, MembersAfterADeepGroupAreAtTheirOwnLevel) {
    const NodePtr g = node("G"), h = node("H", g), i = node("I", h), x = node("x", i);
    node("y", h);
    node("z", g);
    EXPECT_EQ(levels(), (Levels{{"G", 0}, {"H", 1}, {"I", 2}, {"x", 3}, {"y", 2}, {"z", 1}}));
}

TEST_F(GroupLevels, SecondRunGivesTheSameAndForgetsWhatWasThere) {
    const NodePtr g = node("G"), a = node("A", g);
    const Levels first = levels();
    graph.m_groupLevelManager.setGroupLevel("gone", 7);
    graph.m_groupLevelManager.setGroupLevel("A", 7);
    EXPECT_EQ(levels(), first);
}

TEST_F(GroupLevels, GroupWithoutMembersIsSkipped) {
    const NodePtr g = node("G");
    const NodePtr a = node("A");
    a->m_group = g;  // which does not list it
    EXPECT_EQ(levels(), (Levels{{"G", 0}, {"A", 0}}));
}

TEST_F(GroupLevels, NodeThatTwoGroupsListHasTheLevelWrittenLast) {
    const NodePtr g = node("G"), h = node("H", g), shallow = node("Z"), a = node("A", h);
    shallow->m_groupChildren.push_back(a);
    EXPECT_EQ(levels().at("A"), 1) << "Z comes after G";
}

TEST_F(GroupLevels, NodesOfOneIdShareALevel) {
    const NodePtr g = node("G"), first = node("x", g), second = node("x");
    EXPECT_EQ(levels(), (Levels{{"G", 0}, {"x", 1}}));
}

TEST_F(GroupLevels, GroupThatTheManagerDoesNotKnowCountsAsTopLevel) {
    const NodePtr g = node("G"), a = node("A", g);
    GroupLevelManager manager;
    EXPECT_TRUE(g->setGroupChildLevelGroup(manager).is_success());
    EXPECT_EQ(manager.m_groupLevels.size(), 1U);
    EXPECT_EQ(*manager.m_groupLevels.find("A"), 1);
}

TEST_F(GroupLevels, GroupPassesOnTheLevelThatTheManagerHasForIt) {
    const NodePtr g = node("G"), h = node("H", g), a = node("A", h);
    GroupLevelManager manager;
    manager.setGroupLevel("G", 4);
    EXPECT_TRUE(g->setGroupChildLevelGroup(manager).is_success());
    EXPECT_EQ(*manager.m_groupLevels.find("H"), 5);
    EXPECT_EQ(*manager.m_groupLevels.find("A"), 6);
}

TEST(GroupLevelsContract, EveryNodeThatItsGroupsListIsAsDeepAsItHasGroups) {
    int deepest = 0;
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        const LogCapture log;
        Graph graph;
        fillRandomDiagram(graph, seed);
        (void)graph.setLinkInfoAsNodes();
        (void)graph.setGroupInfoAsNodes();
        ASSERT_TRUE(graph.setGroupLevels().is_success());
        const auto& levels = graph.m_groupLevelManager.m_groupLevels;
        ASSERT_EQ(levels.size(), graph.m_nodes.size()) << "seed " << seed;
        if (graph.m_nodes.size() < graph.m_nodeList.size()) continue;  // nodes of one id share a level
        for (const NodePtr& node : graph.m_nodeList) {
            int depth = 0;
            bool isListed = true;
            for (NodePtr inner = node; inner->m_group; inner = inner->m_group, ++depth) {
                const auto& members = inner->m_group->m_groupChildren;
                if (std::find(members.begin(), members.end(), inner) == members.end()) isListed = false;
            }
            if (!isListed) continue;
            ASSERT_EQ(*levels.find(node->m_id), depth) << "seed " << seed;
            deepest = std::max(deepest, depth);
        }
    }
    EXPECT_GT(deepest, 3) << "all of them are too flat to tell anything";
}

}  // namespace
}  // namespace tessera_test
