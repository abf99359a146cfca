// Labels that go back to the node whose end they describe.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;
using tessera_1::view_model::Node;

struct LabelLocations : testing::Test, Diagram {
    NodePtr dummy(const std::string& id, const NodePtr& group = nullptr) { return node(id, group, "dummy"); }
    void run() {
        EXPECT_TRUE(graph.adjustLabelLocations().is_success());
        EXPECT_EQ(log.reports(), Names{});
    }
    void expectFailure(const std::string& condition) {
        EXPECT_TRUE(graph.adjustLabelLocations().is_false());
        EXPECT_EQ(log.reports(), (Names{"ERROR check " + condition}));
    }

    LogCapture log;
    NodePtr a = node("a"), b = node("b");
};

TEST_F(LabelLocations, FromLabelNextToItsNodeStays) {
    chain({a, label("l", "from"), dummy("d"), b});
    const Names before = links();
    run();
    EXPECT_EQ(links(), before);
}

TEST_F(LabelLocations, ToLabelBeforeItsNodeStays) {
    chain({a, dummy("d"), label("l", "to"), b});
    const Names before = links();
    run();
    EXPECT_EQ(links(), before);
}

TEST_F(LabelLocations, FromLabelIsExchangedWithTheDummyBeforeIt) {
    chain({a, dummy("d"), label("l", "from"), b});
    run();
    // The link to d goes to l. That from d to l keeps its start: it becomes one from d to d.
    EXPECT_EQ(links(), (Names{"a>l", "d>d", "d>b"}));
}

TEST_F(LabelLocations, FromLabelAfterARunOfDummiesIsExchangedWithTheFirst) {
    chain({a, dummy("1"), dummy("2"), dummy("3"), label("l", "from"), b});
    run();
    EXPECT_EQ(links(), (Names{"a>l", "1>2", "2>3", "3>1", "1>b"}));
}

TEST_F(LabelLocations, ToLabelIsExchangedWithTheDummyAfterIt) {
    chain({a, label("l", "to"), dummy("d"), b});
    run();
    // Of a link to d both ends are exchanged, of every other only the label: l has a link to itself left.
    EXPECT_EQ(links(), (Names{"a>d", "l>l", "d>b"}));
}

TEST_F(LabelLocations, ToLabelBeforeARunOfDummiesIsExchangedWithTheLast) {
    chain({a, label("l", "to"), dummy("1"), dummy("2"), dummy("3"), b});
    run();
    EXPECT_EQ(links(), (Names{"a>3", "3>1", "1>2", "2>l", "3>b"}));
}

TEST_F(LabelLocations, CentreLabelIsNeverMoved) {
    chain({a, dummy("d"), label("l", "center"), dummy("e"), b});
    const Names before = links();
    run();
    EXPECT_EQ(links(), before);
}

TEST_F(LabelLocations, GroupBesideALabelIsNotItsNodeUnlessItsTypeSaysSo) {
    const NodePtr before = node("x", nullptr, "group");
    chain({a, before, label("l", "from"), b});
    run();
    EXPECT_EQ(links(), (Names{"a>l", "x>x", "x>b"})) << "only the type node ends the way";
    Diagram other;
    const NodePtr g = other.node("g"), end = other.node("e");
    other.node("member", g);
    other.chain({g, other.label("l", "from"), end});
    EXPECT_TRUE(other.graph.adjustLabelLocations().is_success());
    EXPECT_EQ(other.links(), (Names{"g>l", "l>e"})) << "a group from a document has that type";
}

TEST_F(LabelLocations, FromLabelWithTwoParentsFails) {
    const NodePtr l = label("l", "from");
    link(a, l);
    link(b, l);
    expectFailure("node->getParents().size() == 1");
}

TEST_F(LabelLocations, FromLabelWithoutParentFails) {
    link(label("l", "from"), b);
    expectFailure("node->getParents().size() == 1");
}

TEST_F(LabelLocations, ToLabelWithTwoChildrenFails) {
    const NodePtr l = label("l", "to");
    link(l, a);
    link(l, b);
    expectFailure("node->getChildren().size() == 1");
}

TEST_F(LabelLocations, DummyInBetweenWithTwoParentsFails) {
    const NodePtr d = dummy("d"), e = dummy("e");
    chain({a, e, d, label("l", "from")});
    link(b, e);
    expectFailure("parent->getParents().size() == 1");
}

TEST_F(LabelLocations, DummyInBetweenWithTwoChildrenFails) {
    const NodePtr d = dummy("d");
    chain({label("l", "to"), d, a});
    link(d, b);
    expectFailure("child->getChildren().size() == 1");
}

TEST_F(LabelLocations, DummiesInARingFailAsWell) {
    const NodePtr d = dummy("d"), e = dummy("e");
    chain({d, e, d});
    chain({label("l", "to"), d});
    expectFailure("child->getChildren().size() == 1");
    Diagram other;
    const NodePtr f = other.node("f", nullptr, "dummy");
    other.chain({f, f, other.label("l", "from")});
    EXPECT_TRUE(other.graph.adjustLabelLocations().is_false());
    EXPECT_EQ(log.reports().back(), "ERROR check parent->getParents().size() == 1");
}

TEST_F(LabelLocations, LabelsBeforeTheOneThatFailsStayExchangedAndLaterOnesAreLeft) {
    chain({a, dummy("d"), label("first", "from"), b});
    label("second", "from");
    chain({a, dummy("e"), label("third", "from"), b});
    expectFailure("node->getParents().size() == 1");
    EXPECT_EQ(links(), (Names{"a>first", "d>d", "d>b", "a>e", "e>third", "third>b"}));
}

TEST_F(LabelLocations, ExchangedNodesOfDifferentGroupsAreInEachOthersGroupAndKeepTheirLayers) {
    const NodePtr g = node("g"), h = node("h"), x = node("x", g), y = node("y", h);
    node("other", g);
    node("other", h);
    x->m_hierarchicalLevel = 3;
    graph.swapNodes(x, y);
    EXPECT_EQ(x->m_group, h);
    EXPECT_EQ(y->m_group, g);
    EXPECT_EQ(idsOf(g->m_groupChildren), (Names{"other", "y"}));
    EXPECT_EQ(idsOf(h->m_groupChildren), (Names{"other", "x"}));
    EXPECT_EQ(x->getHierarchicalLevel(), 3);
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(LabelLocations, ExchangedNodesOfOneGroupStayWhereTheyAreInIt) {
    const NodePtr g = node("g"), x = node("x", g), y = node("y", g);
    graph.swapNodes(x, y);
    EXPECT_EQ(idsOf(g->m_groupChildren), (Names{"x", "y"}));
    EXPECT_EQ(y->m_group, g);
}

TEST_F(LabelLocations, NodeThatReplacesTheOnlyMemberOfAGroupIsNotListedInIt) {
    const NodePtr g = node("g"), only = node("only", g);
    graph.swapNodes(only, a);
    EXPECT_EQ(only->m_group, nullptr);
    EXPECT_EQ(a->m_group, g);
    EXPECT_FALSE(g->isGroup());
    EXPECT_EQ(log.reports(), (Names{"ERROR check group->isGroup()"}));
}

TEST_F(LabelLocations, LinksWithAMissingEndAreNotTouched) {
    link(nullptr, a);
    link(b, nullptr);
    graph.swapNodes(a, b);
    EXPECT_EQ(links(), (Names{">a", "b>"}));
}

TEST_F(LabelLocations, LinkEndsAreExchangedByTheToNodeAlone) {
    const NodePtr c = node("c");
    link(c, a);  // to a: to b
    link(a, a);  // both ends
    link(b, a);  // to a, from b: the start stays
    link(c, b);  // to b: to a
    link(b, c);  // from b: from a
    link(a, c);  // from a: stays
    link(a, b);  // from a to a
    graph.swapNodes(a, b);
    EXPECT_EQ(links(), (Names{"c>b", "b>b", "b>b", "c>a", "a>c", "a>c", "a>a"}));
}

// What an exchange never changes: how many nodes each group has, all levels, all layers.
struct Picture {
    explicit Picture(Graph& graph) {
        for (const NodePtr& node : graph.m_nodeList) {
            ++members[node->m_group.get()];
            levels.push_back(node->m_hierarchicalLevel);
        }
        for (const auto& [group, manager] : graph.m_levelManagers)
            for (const auto& layer : manager.m_levels)
                layers.push_back(*layer);
        links = graph.m_linkList;
        nodes = graph.m_nodeList;
    }
    bool operator==(const Picture&) const = default;

    std::map<const Node*, int> members;
    std::vector<int> levels;
    std::vector<std::vector<NodePtr>> layers;
    std::vector<LinkPtr> links;
    std::vector<NodePtr> nodes;
};

TEST(LabelLocationsContract, ExchangesLeaveTheSizesOfGroupsAndAllLayers) {
    int exchanged = 0;
    for (std::uint64_t seed = 0; seed < 600; ++seed) {
        const LogCapture log;
        Graph graph;
        fillRandomDiagram(graph, seed);
        (void)graph.setLinkInfoAsNodes();
        (void)graph.calculateHierarchicalLevels();
        (void)graph.addDummyNodesForLabels();
        std::vector<std::pair<NodePtr, NodePtr>> ends;
        for (const LinkPtr& link : graph.m_linkList)
            ends.emplace_back(link->m_from, link->m_to);
        const Picture before(graph);
        (void)graph.adjustLabelLocations();
        ASSERT_TRUE(Picture(graph) == before) << "seed " << seed;
        for (std::size_t i = 0; i < ends.size(); ++i) {
            if (graph.m_linkList[i]->m_to == ends[i].second) continue;
            ++exchanged;
            break;
        }
    }
    EXPECT_GT(exchanged, 20);
}

// One label at a time: after the pass a "from" label follows the node at which the run of dummies began.
TEST(LabelLocationsContract, FromLabelStandsBehindTheNodeItDescribes) {
    for (int dummies = 0; dummies < 6; ++dummies) {
        Diagram diagram;
        std::vector<NodePtr> all{diagram.node("a")};
        for (int i = 0; i < dummies; ++i)
            all.push_back(diagram.node(std::to_string(i), nullptr, "dummy"));
        const NodePtr label = diagram.label("l", "from");
        all.push_back(label);
        all.push_back(diagram.node("b"));
        diagram.chain(all);
        EXPECT_TRUE(diagram.graph.adjustLabelLocations().is_success());
        diagram.graph.setChildrenAndParents();
        EXPECT_EQ(idsOf(label->getParents()), Names{"a"}) << dummies;
    }
}

}  // namespace
}  // namespace tessera_test
