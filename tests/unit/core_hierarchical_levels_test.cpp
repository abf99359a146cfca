// The layers of groups.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/graph_difference.h"
#include "tests/support/layout_building.h"
#include "tests/support/literal_layout.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;

const Names cycleReports{"ERROR check nextLevel <= m_nodes.size()", "ERROR check err.succeeded()"};

struct HierarchicalLevels : testing::Test, Diagram {
    LogCapture log;
};

TEST_F(HierarchicalLevels, ChainGoesDownOneLayerALink) {
    chain({node("X"), node("Y"), node("Z")});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"X"}, {"Y"}, {"Z"}}));
    EXPECT_EQ(found("Z")->getHierarchicalLevel(), 2);
}

TEST_F(HierarchicalLevels, ShortcutPastAChainLeavesNoPlaceholder) {
    const NodePtr x = node("X"), y = node("Y"), z = node("Z");
    chain({x, y, z});
    link(x, z);
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"X"}, {"Y"}, {"Z"}}));
}

TEST_F(HierarchicalLevels, SecondPlaceholderOfALayerStays) {
    const NodePtr r = node("R"), a = node("A"), b = node("B"), c = node("C"), d = node("D");
    for (const NodePtr& child : {a, b, c, d})
        link(r, child);
    link(a, b);  // moves B out of layer 1
    link(c, d);  // and D
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"R"}, {"A", "C", "(null)"}, {"B", "D"}}));
}

TEST_F(HierarchicalLevels, RootsStandInTheOrderOfTheirIds) {
    node("b");
    node("a");
    node("B");
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"B", "a", "b"}}));
}

TEST_F(HierarchicalLevels, NodeStandsInALayerInTheOrderOfItsLastArrival) {
    const NodePtr r = node("R"), a = node("A"), b = node("B"), c = node("C"), d = node("D");
    // D comes to layer 1 first. Then B brings it to layer 2, after C, which A has brought there.
    link(r, d);
    link(r, a);
    link(r, b);
    link(a, c);
    link(b, d);
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"R"}, {"A", "B"}, {"C", "D"}}));
}

TEST_F(HierarchicalLevels, ParentsInOtherGroupsDoNotCount) {
    const NodePtr g = node("G"), m = node("M", g), n = node("N", g), outside = node("O");
    link(m, outside);
    link(outside, n);
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(g), (Layers{{"M", "N"}}));
    EXPECT_EQ(layers(), (Layers{{"G", "O"}})) << "without dummy links nothing says more";
}

TEST_F(HierarchicalLevels, DummyLinksOrderTheGroupsAndNodesOfTheCommonGroup) {
    const NodePtr g = node("G"), m = node("M", g), outside = node("O"), after = node("A");
    link(outside, m);
    link(m, after);
    graph.createDummyLinksForGroups();
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"O"}, {"G"}, {"A"}}));
    EXPECT_EQ(layers(g), (Layers{{"M"}}));
}

TEST_F(HierarchicalLevels, CycleUnderARootFailsItsGroupAndThoseAfterItAreNotLayered) {
    const NodePtr g = node("G"), before = node("before", g);
    const NodePtr r = node("R"), p = node("P"), q = node("Q"), h = node("H"), after = node("after", h);
    chain({r, p, q, p});
    // The top level is first in the order of nodes, G second, H third.
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_false());
    EXPECT_EQ(idsOf(graph.m_groups), (Names{"(null)", "G", "H"}));
    EXPECT_EQ(log.reports(), cycleReports);
    EXPECT_EQ(before->getHierarchicalLevel(), -1);
    EXPECT_EQ(after->getHierarchicalLevel(), -1);
    // Seven nodes: the walk stops at the eighth layer, and from the first on P and Q take turns.
    EXPECT_EQ(r->getHierarchicalLevel(), 0);
    EXPECT_EQ(p->getHierarchicalLevel(), 7);
    EXPECT_EQ(q->getHierarchicalLevel(), 6);
}

TEST_F(HierarchicalLevels, GroupsBeforeTheOneWithTheCycleAreLayered) {
    const NodePtr g = makeNode("G");
    const NodePtr first = node("first", g), second = node("second", g), r = node("R"), p = node("P");
    graph.addNode(g);
    link(first, second);
    chain({r, p, p});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_false());
    EXPECT_EQ(layers(g), (Layers{{"first"}, {"second"}}));
    EXPECT_EQ(p->getHierarchicalLevel(), 5);
}

TEST_F(HierarchicalLevels, CycleIsARangeErrorOfItsGroup) {
    const NodePtr r = node("R"), p = node("P"), q = node("Q");
    chain({r, p, q, p});
    graph.setChildrenAndParents();
    EXPECT_TRUE(graph.calculateHierarchicalLevelsForGroup(nullptr).is(bk2::error::IsNot.Valid.Range));
    EXPECT_EQ(log.reports(), (Names{cycleReports[0]}));
}

TEST_F(HierarchicalLevels, CycleWithoutRootHasNoLayerAndIsNotAFailure) {
    const NodePtr p = node("P"), q = node("Q");
    chain({p, q, p});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), Layers{});
    EXPECT_EQ(p->getHierarchicalLevel(), -1);
    EXPECT_EQ(q->getHierarchicalLevel(), -1);
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(HierarchicalLevels, CycleBesideARootKeepsMinusOneAndSoDoesWhatItLeadsTo) {
    const NodePtr r = node("R"), p = node("P"), q = node("Q"), after = node("after");
    chain({p, q, p});
    link(q, after);
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"R"}}));
    EXPECT_EQ(after->getHierarchicalLevel(), -1);
}

TEST_F(HierarchicalLevels, NodePushedOutByALaterOneOfItsIdIsInNoLayer) {
    const NodePtr first = node("x"), second = node("x"), parent = node("p");
    link(parent, first);
    link(parent, second);
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"p"}, {"x"}}));
    EXPECT_EQ(graph.m_levelManagers[nullptr].m_levels[1]->front(), second);
    EXPECT_EQ(first->getHierarchicalLevel(), -1);
}

TEST_F(HierarchicalLevels, ClearingEmptiesTheLayersOfAllGroups) {
    const NodePtr g = node("G"), m = node("M", g);
    chain({node("X"), node("Y")});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    graph.clearHierarchicalLevelManagers();
    EXPECT_EQ(layers(), Layers{});
    EXPECT_EQ(layers(g), Layers{});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(layers(), (Layers{{"G", "X"}, {"Y"}})) << "it can be layered again";
}

// Layer after layer, from the last id on, every node pushes those before it further down: the plain walk
// would look at each of them in every layer.
TEST_F(HierarchicalLevels, ManyWaysOfDifferentLengthsEndInTheSameLayersAsThePlainWalk) {
    Diagram other;
    for (Diagram* diagram : {static_cast<Diagram*>(this), &other}) {
        constexpr int size = 90;
        std::vector<NodePtr> all;
        for (int i = 0; i < size; ++i)
            all.push_back(diagram->node(std::to_string(100 + i)));
        for (std::size_t i = 0; i < all.size(); ++i)
            for (std::size_t j = all.size() - 1; j > i; --j)
                diagram->link(all[i], all[j]);
    }
    literal::Record record;
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(literal::calculateHierarchicalLevels(other.graph, record), literal::Code::success);
    EXPECT_EQ(firstDifference(graph, other.graph, false), "");
    EXPECT_EQ(graph.m_levelManagers[nullptr].m_levels.size(), 90U);
}

// Along a link inside a group the target is deeper, but for cycles; and levels and layers say the same.
void expectContract(Graph& graph, std::uint64_t seed, bool isAcyclic) {
    for (const LinkPtr& link : graph.m_linkList) {
        if (!literal::isWhole(*link) || link->m_from->m_group != link->m_to->m_group) continue;
        const bool areFiled = graph.findNode(link->m_from->m_id) == link->m_from &&
                              graph.findNode(link->m_to->m_id) == link->m_to;
        if (!isAcyclic || !areFiled) continue;
        ASSERT_LT(link->m_from->m_hierarchicalLevel, link->m_to->m_hierarchicalLevel) << "seed " << seed;
    }
    std::size_t placed = 0;
    for (const auto& [group, manager] : graph.m_levelManagers) {
        for (std::size_t level = 0; level < manager.m_levels.size(); ++level) {
            for (const NodePtr& node : *manager.m_levels[level]) {
                if (!node) continue;
                ++placed;
                ASSERT_EQ(node->m_hierarchicalLevel, static_cast<int>(level)) << "seed " << seed;
                ASSERT_EQ(node->m_group, group) << "seed " << seed;
            }
        }
    }
    std::size_t levelled = 0;
    for (const NodePtr& node : graph.m_nodeList)
        if (node->m_hierarchicalLevel >= 0) ++levelled;
    ASSERT_EQ(placed, levelled) << "seed " << seed;
    if (isAcyclic) {
        ASSERT_EQ(placed, graph.m_nodes.size()) << "seed " << seed;
    }
}

TEST(HierarchicalLevelsContract, TargetsAreDeeperAndEveryNodeThatARootLeadsToIsInOneLayer) {
    for (std::uint64_t seed = 0; seed < 600; ++seed) {
        const LogCapture log;
        Graph graph;
        fillRandomDiagram(graph, seed);
        graph.createDummyLinksForGroups();
        const bool isAcyclic = seed % 3 == 0;
        const auto code = graph.calculateHierarchicalLevels();
        if (isAcyclic) {
            ASSERT_TRUE(code.is_success()) << "seed " << seed;
            ASSERT_EQ(log.reports(), Names{});
        }
        expectContract(graph, seed, isAcyclic);
    }
}

}  // namespace
}  // namespace tessera_test
