// Shapes that a slow walk or a deep call would not finish. There is no clock here: a pass that
// takes quadratic time or more runs into the test's time limit.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"

namespace tessera_test {
namespace {

struct LargeLayouts : testing::Test, Diagram {
    // Runs all passes; returns whether none of them failed.
    bool layOut() {
        bool succeeds = graph.setLinkInfoAsNodes().is_success();
        succeeds = graph.setGroupInfoAsNodes().is_success() && succeeds;
        graph.createDummyLinksForGroups();
        succeeds = graph.calculateHierarchicalLevels().is_success() && succeeds;
        succeeds = graph.addDummyNodesForLabels().is_success() && succeeds;
        succeeds = graph.addDummyNodesForInterfaces().is_success() && succeeds;
        succeeds = graph.adjustLabelLocations().is_success() && succeeds;
        graph.setNodeAlignings();
        return graph.setGroupLevels().is_success() && succeeds;
    }
    int depthOf(const NodePtr& which) const {
        return *graph.m_groupLevelManager.m_groupLevels.find(which->m_id);
    }
    // Nodes with numbers as ids, from 0 on.
    std::vector<NodePtr> makeMany(int count, const NodePtr& group = nullptr) {
        std::vector<NodePtr> out;
        for (int i = 0; i < count; ++i)
            out.push_back(node((group ? group->m_id + " " : "") + std::to_string(i), group));
        return out;
    }
    void giveLabels(const LinkPtr& which) {
        which->m_displayInfo.m_fromInfo["bandwidth"] = makeValue("1");
        which->m_displayInfo.m_totalInfo["bandwidth"] = makeValue("2");
        which->m_displayInfo.m_toInfo["bandwidth"] = makeValue("3");
    }

    LogCapture log;
};

TEST_F(LargeLayouts, FiveThousandLevelsOfNestingWithLinksBetweenDeepNodes) {
    constexpr int depth = 5'000;
    std::vector<NodePtr> left{node("l0")}, right{node("r0")};
    for (int i = 1; i < depth; ++i) {
        left.push_back(node("l" + std::to_string(i), left.back()));
        right.push_back(node("r" + std::to_string(i), right.back()));
    }
    for (int i = 0; i < 500; ++i)
        link(left[left.size() - 1 - static_cast<std::size_t>(i)], right[right.size() - 1]);
    for (int i = 0; i < 500; ++i)
        link(left[static_cast<std::size_t>(i)], left.back());  // from a group to what is deep in it
    (void)layOut();
    EXPECT_EQ(depthOf(left.back()), depth - 1);
    EXPECT_EQ(endsOf(*graph.m_linkList[0]->m_dummyLink), "l0>r0");
}

TEST_F(LargeLayouts, OneGroupOfFiftyThousandMembers) {
    const NodePtr g = node("g");
    const auto members = makeMany(50'000, g);
    for (std::size_t i = 0; i < members.size(); i += 2)
        link(members[i], members[i + 1]);
    EXPECT_TRUE(layOut());
    EXPECT_EQ(graph.m_levelManagers[g].m_levels[0]->size(), 25'000U);
    EXPECT_EQ(graph.m_levelManagers[g].m_levels[1]->size(), 25'000U);
    EXPECT_EQ(depthOf(members.back()), 1);
}

TEST_F(LargeLayouts, TenThousandGroupsOfOneMember) {
    NodePtr last;
    for (int i = 0; i < 10'000; ++i) {
        const NodePtr g = node("g" + std::to_string(i)), member = node("m" + std::to_string(i), g);
        if (last) link(last, member);
        last = i % 100 == 99 ? nullptr : member;  // chains of a hundred
    }
    EXPECT_TRUE(layOut());
    EXPECT_EQ(graph.m_levelManagers[nullptr].m_levels.size(), 100U);
    EXPECT_EQ(found("m9999")->m_hierarchicalLevel, 0);
    EXPECT_EQ(found("g9999")->m_hierarchicalLevel, 99);
}

TEST_F(LargeLayouts, HubWithFiftyThousandLinks) {
    const auto others = makeMany(50'000);
    const NodePtr hub = node("hub");
    for (std::size_t i = 0; i < others.size(); ++i) {
        if (i % 2 == 0)
            link(hub, others[i]);
        else
            link(others[i], hub);
    }
    EXPECT_TRUE(layOut());
    EXPECT_EQ(hub->m_hierarchicalLevel, 1);
    EXPECT_EQ(hub->getChildren().size(), 25'000U);
    EXPECT_EQ(graph.m_levelManagers[nullptr].m_levels[2]->size(), 25'000U);
}

TEST_F(LargeLayouts, TenThousandParallelLinksBetweenTwoNodes) {
    const NodePtr a = node("a"), b = node("b");
    for (int i = 0; i < 10'000; ++i)
        link(a, b);
    EXPECT_TRUE(layOut());
    EXPECT_EQ(idsOf(a->getChildren()), Names{"b"});
    EXPECT_EQ(b->m_hierarchicalLevel, 1);
}

TEST_F(LargeLayouts, TenThousandParallelLinksWithDummiesAndLabels) {
    const NodePtr a = node("a"), b = node("b"), c = node("c"), d = node("d");
    chain({a, b, c, d});
    for (int i = 0; i < 10'000; ++i)
        giveLabels(link(a, d));
    (void)layOut();
    // Labels of one id push each other out of the map. Those of the last link put d into layer 4, after
    // three labels; all others are in no layer, so that from each of them to d there are four dummies, of the
    // same four ids. One more is between c and d.
    EXPECT_EQ(graph.m_linkList.size(), 3U + 40'000U + 9'999U * 4 + 1);
    EXPECT_EQ(graph.m_nodes.size(), 4U + 3U + 4U + 1U);
}

TEST_F(LargeLayouts, TenThousandParallelLinksAcrossGroups) {
    const NodePtr g = node("g"), h = node("h"), a = node("a", g), b = node("b", h);
    for (int i = 0; i < 10'000; ++i)
        link(a, b);
    EXPECT_TRUE(layOut());
    EXPECT_EQ(graph.m_linkList.size(), 20'000U);
    EXPECT_NE(graph.findLink("g_h_dummy9999"), nullptr);
    EXPECT_EQ(h->m_hierarchicalLevel, 1);
}

TEST_F(LargeLayouts, ChainOfTwentyThousandNodes) {
    const auto all = makeMany(20'000);
    chain(all);
    EXPECT_TRUE(layOut());
    EXPECT_EQ(all.back()->m_hierarchicalLevel, 19'999);
}

TEST_F(LargeLayouts, RingOfTwoThousandNodesWithARootAmongThreeThousandNodes) {
    const auto all = makeMany(3'000);
    for (std::size_t i = 0; i < 2'000; ++i)
        link(all[i], all[(i + 1) % 2'000]);
    link(all[2'999], all[0]);
    EXPECT_FALSE(layOut());
    EXPECT_EQ(log.reports().at(0), "ERROR check nextLevel <= m_nodes.size()");
    // Node 0 is in layer 1 first; when layer 3000 is reached it holds node 999, which stays the deepest.
    EXPECT_EQ(all[999]->m_hierarchicalLevel, 3'000);
    EXPECT_EQ(all[0]->m_hierarchicalLevel, 2'001);
    EXPECT_EQ(all[1'000]->m_hierarchicalLevel, 1'001);
}

}  // namespace
}  // namespace tessera_test
