// The check of interface nodes.
#include <gtest/gtest.h>

#include "tests/support/graph_difference.h"
#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;

struct Interfaces : testing::Test, Diagram {
    NodePtr interfaceNode(const std::string& id, const NodePtr& group) {
        const NodePtr made = node(id, group);
        made->m_displayType = "interface";
        return made;
    }
    LogCapture log;
    NodePtr g = node("g");
};

TEST_F(Interfaces, InterfaceInTheLastLayerOfItsGroupIsRight) {
    chain({node("a", g), interfaceNode("i", g)});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForInterfaces().is_success());
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(Interfaces, InterfaceAboveTheLastLayerFailsTheCheck) {
    chain({interfaceNode("i", g), node("a", g)});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForInterfaces().is_false());
    EXPECT_EQ(log.reports(), (Names{"ERROR check node->getHierarchicalLevel() == maxLevel"}));
}

TEST_F(Interfaces, GroupWithoutLayersFailsTheCheck) {
    const NodePtr p = node("p", g), q = node("q", g);
    chain({p, q, p});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForInterfaces().is_false());
    EXPECT_EQ(log.reports(), (Names{"ERROR check maxLevel >= 0"}));
}

TEST_F(Interfaces, FirstFailureIsTheOnlyOne) {
    const NodePtr h = node("h");
    for (const NodePtr& group : {g, h})
        chain({interfaceNode("i of " + group->m_id, group), interfaceNode("j of " + group->m_id, group),
               node("a of " + group->m_id, group)});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForInterfaces().is_false());
    EXPECT_EQ(log.reports().size(), 1U);
}

TEST_F(Interfaces, TopLevelIsNotLookedAt) {
    const NodePtr i = node("i"), a = node("a");
    i->m_displayType = "interface";
    chain({i, a});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForInterfaces().is_success());
}

TEST_F(Interfaces, OtherDisplayTypesMayStandAnywhere) {
    const NodePtr a = node("a", g);
    a->m_displayType = "Interface";
    chain({a, node("b", g)});
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForInterfaces().is_success());
}

TEST(InterfacesContract, GraphStaysAsItWas) {
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        const LogCapture log;
        Graph graph;
        Graph unchecked;
        for (Graph* each : {&graph, &unchecked}) {
            fillRandomDiagram(*each, seed);
            (void)each->calculateHierarchicalLevels();
        }
        (void)graph.addDummyNodesForInterfaces();
        ASSERT_EQ(firstDifference(graph, unchecked, true), "") << "seed " << seed;
    }
}

}  // namespace
}  // namespace tessera_test
