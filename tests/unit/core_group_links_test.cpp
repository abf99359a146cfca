// The dummy links that represent links between groups.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/layout_building.h"
#include "tests/support/literal_layout.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;
using tessera_1::view_model::Link;

struct GroupLinks : testing::Test, Diagram {
    NodePtr g = node("G"), x = node("X", g), a = node("A");
};

TEST_F(GroupLinks, LinkOutOfAGroupGetsADummyInTheCommonGroup) {
    const LinkPtr real = link(x, a);
    graph.createDummyLinksForGroups();
    ASSERT_EQ(links(), (Names{"X>A", "G>A"}));
    const LinkPtr dummy = graph.m_linkList[1];
    EXPECT_EQ(dummy->m_id, "G_A_dummy");
    EXPECT_EQ(dummy->m_type, "dummy");
    EXPECT_EQ(dummy->m_realLink, real);
    EXPECT_EQ(real->m_dummyLink, dummy);
    EXPECT_EQ(dummy->m_dummyLink, nullptr);
    EXPECT_EQ(real->m_realLink, nullptr);
    EXPECT_EQ(graph.findLink("G_A_dummy"), dummy);
    EXPECT_EQ(nodes(), (Names{"G", "X", "A"})) << "no node is made";
}

TEST_F(GroupLinks, IdThatIsTakenGetsANumber) {
    for (const char* taken : {"G_A_dummy", "G_A_dummy2"})
        graph.addLink(makeLink(a, a, taken));
    for (int i = 0; i < 3; ++i)
        link(x, a);
    graph.createDummyLinksForGroups();
    Names ids;
    for (const LinkPtr& each : graph.m_linkList)
        if (each->m_type == "dummy") ids.push_back(each->m_id);
    EXPECT_EQ(ids, (Names{"G_A_dummy1", "G_A_dummy3", "G_A_dummy4"}));
}

TEST_F(GroupLinks, TwoPairsWhoseIdsJoinToTheSameCountTogether) {
    const NodePtr first = node("P_Q"), second = node("R"), third = node("P"), fourth = node("Q_R");
    const NodePtr inFirst = node("in first", first), inThird = node("in third", third);
    link(inFirst, second);
    link(inThird, fourth);
    graph.createDummyLinksForGroups();
    EXPECT_EQ(graph.m_linkList[2]->m_id, "P_Q_R_dummy");
    EXPECT_EQ(graph.m_linkList[3]->m_id, "P_Q_R_dummy1");
}

TEST_F(GroupLinks, LinkWithinAGroupGetsNone) {
    link(x, node("Y", g));
    link(a, g);
    link(a, a);
    graph.createDummyLinksForGroups();
    EXPECT_EQ(graph.m_linkList.size(), 3U);
}

TEST_F(GroupLinks, LinkFromAGroupToItsOwnMemberGetsOneFromTheGroupToItself) {
    link(g, x);
    graph.createDummyLinksForGroups();
    EXPECT_EQ(links(), (Names{"G>X", "G>G"}));
}

TEST_F(GroupLinks, DeepEndsAreRepresentedInTheInnermostGroupOfBoth) {
    const NodePtr inner = node("H", g), deep = node("Y", inner), other = node("I", g), z = node("Z", other);
    link(deep, z);
    graph.createDummyLinksForGroups();
    EXPECT_EQ(links(), (Names{"Y>Z", "H>I"}));
}

TEST_F(GroupLinks, LinkWithAMissingEndGetsNone) {
    link(x, nullptr);
    link(nullptr, x);
    graph.createDummyLinksForGroups();
    EXPECT_EQ(graph.m_linkList.size(), 2U);
}

TEST(GroupLinksContract, EveryLinkBetweenGroupsHasOneDummyAfterAllOtherLinks) {
    std::size_t between = 0;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        Graph graph;
        fillRandomDiagram(graph, seed);
        const auto before = graph.m_linkList;
        graph.createDummyLinksForGroups();
        std::size_t next = before.size();
        for (const LinkPtr& link : before) {
            const bool crosses = literal::isWhole(*link) && link->m_from->m_group != link->m_to->m_group;
            ASSERT_EQ(link->m_dummyLink != nullptr, crosses) << "seed " << seed;
            if (!crosses) continue;
            ++between;
            ASSERT_LT(next, graph.m_linkList.size()) << "seed " << seed;
            const LinkPtr dummy = graph.m_linkList[next++];
            ASSERT_EQ(link->m_dummyLink, dummy) << "seed " << seed;
            ASSERT_EQ(dummy->m_realLink, link) << "seed " << seed;
            ASSERT_EQ(dummy->m_from->m_group, dummy->m_to->m_group) << "seed " << seed;
        }
        ASSERT_EQ(next, graph.m_linkList.size()) << "seed " << seed;
    }
    EXPECT_GT(between, 500U);
}

}  // namespace
}  // namespace tessera_test
