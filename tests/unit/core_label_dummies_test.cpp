// Links that skip layers are split into chains.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/layout_building.h"
#include "tests/support/literal_layout.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;

struct LabelDummies : testing::Test, Diagram {
    void layer() {
        graph.createDummyLinksForGroups();
        ASSERT_TRUE(graph.calculateHierarchicalLevels().is_success());
    }
    void run() {
        layer();
        EXPECT_TRUE(graph.addDummyNodesForLabels().is_success());
    }
    int levelOf(const std::string& id) const { return found(id)->getHierarchicalLevel(); }

    LogCapture log;
};

TEST_F(LabelDummies, LinkToTheNextLayerGetsNone) {
    chain({node("a"), node("b")});
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b"}));
}

TEST_F(LabelDummies, LinkOverThreeLayersGetsTwoFromItsToEndUp) {
    const NodePtr a = node("a"), b = node("b"), c = node("c"), d = node("d");
    chain({a, b, c, d});
    const LinkPtr l = link(a, d, "forward");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b", "c", "d", "d_a_dummy", "d_a_dummy_a_dummy"}));
    EXPECT_EQ(layers(), (Layers{{"a"}, {"b", "d_a_dummy_a_dummy"}, {"c", "d_a_dummy"}, {"d"}}));
    EXPECT_EQ(links(), (Names{"a>b", "b>c", "c>d", "a>d_a_dummy_a_dummy", "d_a_dummy>d",
                              "d_a_dummy_a_dummy>d_a_dummy"}));
    EXPECT_EQ(l->m_direction, "none");
    EXPECT_EQ(graph.m_linkList[4]->m_direction, "forward") << "the arrow head stays at d";
    EXPECT_EQ(found("d_a_dummy")->m_group, nullptr) << "at top level, as the link";
}

// The dummy link puts two dummies on its real link, which so becomes a link at top level before it is
// visited.
TEST_F(LabelDummies, RealLinkAfterItsDummyLinkIsSeenAsItIsThen) {
    const NodePtr a = node("a"), p = node("p"), q = node("q"), g = node("G"), x = node("x", g);
    chain({a, p, q, g});
    const LinkPtr real = makeLink(a, x, "real");
    graph.createDummyLink(a, g, real);
    graph.addLink(real);
    ASSERT_TRUE(graph.calculateHierarchicalLevels().is_success());
    ASSERT_EQ(levelOf("G"), 3);
    EXPECT_TRUE(graph.addDummyNodesForLabels().is_success());
    EXPECT_EQ(graph.m_nodeList.size(), 5U + 3U);
    EXPECT_EQ(
        layers(),
        (Layers{{"a"}, {"p", "x_a_dummy_a_dummy_a_dummy"}, {"q", "x_a_dummy", "x_a_dummy_a_dummy"}, {"G"}}));
}

TEST_F(LabelDummies, DummiesOfALinkInAGroupJoinThatGroup) {
    const NodePtr g = node("g"), a = node("a", g), b = node("b", g), c = node("c", g);
    chain({a, b, c});
    link(a, c);
    run();
    EXPECT_EQ(idsOf(g->m_groupChildren), (Names{"a", "b", "c", "c_a_dummy"}));
    EXPECT_EQ(found("c_a_dummy")->m_group, g);
    EXPECT_EQ(layers(g), (Layers{{"a"}, {"b", "c_a_dummy"}, {"c"}}));
    EXPECT_EQ(layers(), (Layers{{"g"}}));
}

TEST_F(LabelDummies, LinkUpwardsOrWithinALayerGetsNone) {
    const NodePtr a = node("a"), b = node("b"), c = node("c");
    graph.collectGroups();
    place(a, 0);
    place(b, 3);
    place(c, 3);
    link(b, a);
    link(b, c);
    EXPECT_TRUE(graph.addDummyNodesForLabels().is_success());
    EXPECT_EQ(nodes(), (Names{"a", "b", "c"}));
}

TEST_F(LabelDummies, LinkFromANodeWithoutLayerStartsAtTheFirst) {
    const NodePtr a = node("a"), b = node("b");
    graph.collectGroups();
    place(b, 2);
    link(a, b);
    EXPECT_TRUE(graph.addDummyNodesForLabels().is_success());
    EXPECT_EQ(layers(), (Layers{{"b_a_dummy_a_dummy"}, {"b_a_dummy"}, {"b"}}));
}

TEST_F(LabelDummies, LinkOutOfAGroupGoesDownToTheGroupsLastLayer) {
    const NodePtr g = node("g"), x = node("x", g), y = node("y", g), z = node("z", g), a = node("a");
    chain({x, y, z});
    link(x, a);
    run();
    // The to node is at top level already, where the dummy link's to node is.
    EXPECT_EQ(nodes(), (Names{"g", "x", "y", "z", "a", "a_x_dummy", "a_a_x_dummy_dummy"}));
    EXPECT_EQ(layers(g), (Layers{{"x"}, {"y", "a_x_dummy"}, {"z", "a_a_x_dummy_dummy"}}));
    EXPECT_EQ(idsOf(g->m_groupChildren), (Names{"x", "y", "z", "a_x_dummy", "a_a_x_dummy_dummy"}));
    EXPECT_EQ(layers(), (Layers{{"g"}, {"a"}}));
    EXPECT_EQ(links(), (Names{"x>y", "y>z", "x>a_x_dummy", "g>a", "a_x_dummy>a_a_x_dummy_dummy",
                              "a_a_x_dummy_dummy>a"}));
}

TEST_F(LabelDummies, LinkFromTheLastLayerOfAGroupGetsNoneThere) {
    const NodePtr g = node("g"), x = node("x", g), y = node("y", g), a = node("a");
    chain({x, y, a});
    run();
    EXPECT_EQ(nodes(), (Names{"g", "x", "y", "a"}));
}

TEST_F(LabelDummies, LinkIntoAGroupGoesUpToItsFirstLayerAndEachTimeTheNewHalfIsSplit) {
    const NodePtr g = node("g"), x = node("x", g), y = node("y", g), z = node("z", g), a = node("a");
    chain({x, y, z});
    link(a, z);
    run();
    EXPECT_EQ(layers(g), (Layers{{"x", "z_z_a_dummy_dummy"}, {"y", "z_a_dummy"}, {"z"}}));
    EXPECT_EQ(links(), (Names{"x>y", "y>z", "a>z_a_dummy", "a>g", "z_a_dummy>z_z_a_dummy_dummy",
                              "z_z_a_dummy_dummy>z"}));
}

TEST_F(LabelDummies, EachGroupThatALinkLeavesIsClimbed) {
    const NodePtr outer = node("o"), inner = node("i", outer), x = node("x", inner), y = node("y", inner);
    const NodePtr beside = node("b", outer), a = node("a");
    chain({x, y});
    link(inner, beside);
    link(x, a);
    run();
    // Down to y's layer in i, then from i's layer 0 to b's layer 1 in o, counted on from the dummy's layer.
    EXPECT_EQ(found("a_x_dummy")->m_group, inner);
    EXPECT_EQ(levelOf("a_x_dummy"), 1);
    const NodePtr second = found("a_a_x_dummy_dummy");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->m_group, outer);
    EXPECT_EQ(second->getHierarchicalLevel(), 2) << "one more than the dummy before it";
    EXPECT_EQ(graph.m_levelManagers[outer].m_levels.size(), 3U);
}

TEST_F(LabelDummies, LevelThatWouldBeBelowZeroIsReportedAndTheDummyStaysWithoutLayer) {
    const NodePtr outer = node("o"), first = node("f", outer), inner = node("i", outer), m = node("m", inner);
    const NodePtr a = node("a");
    link(first, inner);
    link(a, m);
    run();
    // m is in layer 0 of i, but i itself is in layer 1 of o: the dummy would come into layer -1 of o.
    const NodePtr dummy = found("m_a_dummy");
    ASSERT_NE(dummy, nullptr);
    EXPECT_EQ(dummy->m_group, outer);
    EXPECT_EQ(dummy->getHierarchicalLevel(), -1);
    EXPECT_EQ(layers(outer), (Layers{{"f"}, {"i"}}));
    EXPECT_EQ(log.reports(), (Names{"ERROR check level >= 0"}));
}

TEST_F(LabelDummies, DummyLinkOverSeveralLayersSplitsItsRealLinkIntoOneLayer) {
    const NodePtr g = node("g"), x = node("x", g), a = node("a"), b = node("b"), c = node("c");
    chain({g, a, b, c});
    const LinkPtr real = link(x, c);
    run();
    EXPECT_EQ(layers(), (Layers{{"g"}, {"a"}, {"b", "c_x_dummy", "c_x_dummy_x_dummy"}, {"c"}}));
    EXPECT_EQ(real->m_dummyLink->m_to, c) << "the dummy link itself is left whole";
    EXPECT_EQ(endsOf(*real), "x>c_x_dummy_x_dummy");
}

TEST_F(LabelDummies, LinkBetweenGroupsWithoutADummyLinkIsLeftAlone) {
    const NodePtr g = node("g"), x = node("x", g), y = node("y", g), a = node("a");
    chain({x, y});
    link(x, a);
    ASSERT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForLabels().is_success());
    EXPECT_EQ(nodes(), (Names{"g", "x", "y", "a"}));
}

TEST_F(LabelDummies, LinkWithAMissingEndIsLeftAlone) {
    const NodePtr a = node("a"), b = node("b");
    chain({a, b});
    link(a, nullptr);
    link(nullptr, b);
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b"}));
}

// The nodes that a link went to before the pass are reached by way of dummies, one a layer, in its group.
void expectSteps(const Graph& graph, const LinkPtr& link, const NodePtr& end, std::uint64_t seed) {
    LinkPtr piece = link;
    while (true) {
        ASSERT_EQ(piece->m_to->m_hierarchicalLevel, piece->m_from->m_hierarchicalLevel + 1)
            << "seed " << seed;
        if (piece->m_to == end) return;
        const NodePtr dummy = piece->m_to;
        ASSERT_EQ(dummy->m_type, "dummy") << "seed " << seed;
        ASSERT_EQ(dummy->m_group, end->m_group) << "seed " << seed;
        piece = nullptr;
        for (const LinkPtr& each : graph.m_linkList)
            if (each->m_from == dummy) piece = each;
        ASSERT_NE(piece, nullptr) << "seed " << seed;
    }
}

TEST(LabelDummiesContract, LinksInsideAGroupThatGoDownJoinNeighbouringLayers) {
    int broken = 0;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        const LogCapture log;
        Graph graph;
        fillRandomDiagram(graph, seed);
        graph.createDummyLinksForGroups();
        (void)graph.calculateHierarchicalLevels();
        std::vector<std::pair<LinkPtr, NodePtr>> inside;
        for (const LinkPtr& link : graph.m_linkList) {
            if (!literal::isWhole(*link) || link->m_type == "dummy") continue;
            if (link->m_from->m_group != link->m_to->m_group) continue;
            if (link->m_from->m_hierarchicalLevel < link->m_to->m_hierarchicalLevel)
                inside.emplace_back(link, link->m_to);
        }
        ASSERT_TRUE(graph.addDummyNodesForLabels().is_success()) << "seed " << seed;
        for (const auto& [link, end] : inside) {
            expectSteps(graph, link, end, seed);
            if (link->m_to != end) ++broken;
        }
    }
    EXPECT_GT(broken, 100);
}

}  // namespace
}  // namespace tessera_test
