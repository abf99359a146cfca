// Towards which end labels are drawn.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/graph_difference.h"
#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;

struct NodeAlignings : testing::Test, Diagram {
    // a, so many dummies, a centre label, so many dummies, b.
    NodePtr centreLabel(int before, int after, const std::string& id = "l") {
        std::vector<NodePtr> all{a};
        for (int i = 0; i < before; ++i)
            all.push_back(node(id + " before " + std::to_string(i), nullptr, "dummy"));
        all.push_back(label(id, "center"));
        const NodePtr made = all.back();
        for (int i = 0; i < after; ++i)
            all.push_back(node(id + " after " + std::to_string(i), nullptr, "dummy"));
        all.push_back(b);
        chain(all);
        return made;
    }
    void expectFailure(const std::string& condition) {
        graph.setNodeAlignings();
        EXPECT_EQ(log.reports(), (Names{"ERROR check " + condition}));
    }

    LogCapture log;
    NodePtr a = node("a"), b = node("b");
};

TEST_F(NodeAlignings, EndLabelsAreAlignedToTheirEndsWhateverTheirNeighbours) {
    const NodePtr from = label("from", "from"), to = label("to", "to");
    for (const NodePtr& each : {from, to})
        for (const NodePtr& end : {a, b})
            link(each, end);
    graph.setNodeAlignings();
    EXPECT_EQ(from->m_aligning, "from");
    EXPECT_EQ(to->m_aligning, "to");
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(NodeAlignings, CentreLabelBetweenTwoNodesKeepsItsAligning) {
    const NodePtr l = centreLabel(0, 0);
    graph.setNodeAlignings();
    EXPECT_EQ(l->m_aligning, "none");
    l->m_aligning = "from";
    graph.setNodeAlignings();
    EXPECT_EQ(l->m_aligning, "from");
}

TEST_F(NodeAlignings, CentreLabelInTheMiddleOfItsDummiesKeepsItsAligning) {
    const NodePtr l = centreLabel(2, 2);
    graph.setNodeAlignings();
    EXPECT_EQ(l->m_aligning, "none");
}

TEST_F(NodeAlignings, CentreLabelIsAlignedTowardsTheFartherEnd) {
    const NodePtr after = centreLabel(0, 1, "1"), before = centreLabel(1, 0, "2");
    const NodePtr moreBehind = centreLabel(2, 3, "3"), moreBefore = centreLabel(4, 1, "4");
    graph.setNodeAlignings();
    EXPECT_EQ(after->m_aligning, "to");
    EXPECT_EQ(before->m_aligning, "from");
    EXPECT_EQ(moreBehind->m_aligning, "to");
    EXPECT_EQ(moreBefore->m_aligning, "from");
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(NodeAlignings, OtherLabelsInBetweenCountAsDummiesDo) {
    const NodePtr l = label("l", "center");
    chain({a, label("f", "from"), l, label("t", "to"), node("d", nullptr, "dummy"), b});
    graph.setNodeAlignings();
    EXPECT_EQ(l->m_aligning, "to");
}

TEST_F(NodeAlignings, LabelsOfOtherPlacesAndOtherNodesAreNotTouched) {
    const NodePtr elsewhere = label("l", "elsewhere"), dummy = node("d", nullptr, "dummy");
    dummy->m_location = "to";
    graph.setNodeAlignings();
    EXPECT_EQ(elsewhere->m_aligning, "none");
    EXPECT_EQ(dummy->m_aligning, "none");
}

TEST_F(NodeAlignings, CentreLabelWithTwoChildrenStopsThePass) {
    const NodePtr l = centreLabel(0, 1);
    link(l, a);
    const NodePtr before = label("k", "to"), after = label("m", "to");
    expectFailure("node.second->getChildren().size() == 1");
    EXPECT_EQ(before->m_aligning, "to");
    EXPECT_EQ(after->m_aligning, "none") << "its id comes after that of the label";
    EXPECT_EQ(l->m_aligning, "none");
}

TEST_F(NodeAlignings, CentreLabelWithTwoParentsStopsThePass) {
    const NodePtr l = centreLabel(0, 1);
    link(b, l);
    expectFailure("node.second->getParents().size() == 1");
}

TEST_F(NodeAlignings, DummyInBetweenWithTwoChildrenStopsThePass) {
    centreLabel(0, 2);
    link(found("l after 0"), a);  // its first child, another dummy, makes the walk continue
    expectFailure("n->getChildren().size() == 1");
}

TEST_F(NodeAlignings, DummyInBetweenWithTwoParentsStopsThePass) {
    centreLabel(2, 0);
    link(b, found("l before 1"));
    expectFailure("n->getParents().size() == 1");
}

TEST_F(NodeAlignings, DummyWhoseFirstChildIsTheEndMayHaveMore) {
    const NodePtr l = centreLabel(0, 1);
    link(found("l after 0"), node("c"));
    graph.setNodeAlignings();
    EXPECT_EQ(l->m_aligning, "to");
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(NodeAlignings, DummyWithoutChildStopsThePass) {
    chain({a, label("l", "center"), node("d", nullptr, "dummy")});
    expectFailure("n->getChildren().size() == 1");
}

TEST_F(NodeAlignings, RingOfDummiesStopsThePass) {
    const NodePtr d = node("d", nullptr, "dummy"), e = node("e", nullptr, "dummy");
    chain({a, label("l", "center"), d, e, d});
    expectFailure("n->getChildren().size() == 1");
}

TEST(NodeAligningsContract, NothingButTheAligningsOfLabelsChanges) {
    int aligned = 0;
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        const LogCapture log;
        Graph graph;
        Graph before;
        for (Graph* each : {&graph, &before}) {
            fillRandomDiagram(*each, seed);
            (void)each->setLinkInfoAsNodes();
            (void)each->calculateHierarchicalLevels();
            (void)each->addDummyNodesForLabels();
            each->setChildrenAndParents();
        }
        graph.setNodeAlignings();
        for (std::size_t i = 0; i < graph.m_nodeList.size(); ++i) {
            auto& node = *graph.m_nodeList[i];
            auto& was = *before.m_nodeList[i];
            if (node.m_type != "label") continue;
            if (node.m_aligning != was.m_aligning) ++aligned;
            if (node.m_location != "center") {
                ASSERT_EQ(node.m_aligning, node.m_location) << "seed " << seed;
            }
            was.m_aligning = node.m_aligning;
        }
        ASSERT_EQ(firstDifference(graph, before, true), "") << "seed " << seed;
    }
    EXPECT_GT(aligned, 10);
}

}  // namespace
}  // namespace tessera_test
