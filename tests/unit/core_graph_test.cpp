// The graph: filing, children and parents, groups, display infos, and its end.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/view_model/graph.h"
#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;
using tessera_1::view_model::Link;
using tessera_1::view_model::Node;

TEST(GraphModel, NodesAreListedInOrderOfAdditionAndMappedInOrderOfTheirBytes) {
    Graph graph;
    for (const char* id : {"b", "a", "\xC3\xA4", "B", "", "aa"})
        graph.addNode(makeNode(id));
    EXPECT_EQ(idsOf(graph.m_nodeList), (Names{"b", "a", "\xC3\xA4", "B", "", "aa"}));
    Names mapped;
    for (const auto& [id, node] : graph.m_nodes) {
        mapped.emplace_back(id);
        EXPECT_EQ(node->m_id, id);
    }
    EXPECT_EQ(mapped, (Names{"", "B", "a", "aa", "b", "\xC3\xA4"}));
}

TEST(GraphModel, LaterNodeOfAnIdTakesTheMapAndBothStayListed) {
    Graph graph;
    const auto first = makeNode("x"), second = makeNode("x");
    graph.addNode(first);
    graph.addNode(makeNode("y"));
    graph.addNode(second);
    EXPECT_EQ(graph.m_nodes.size(), 2U);
    EXPECT_EQ(graph.findNode("x"), second);
    EXPECT_EQ(graph.m_nodeList.front(), first);
    EXPECT_EQ(graph.m_nodeList.back(), second);
}

TEST(GraphModel, LaterNodeOfTheLargestIdTakesTheMapAsWell) {
    Graph graph;
    graph.addNode(makeNode("x"));
    const auto second = makeNode("x");
    graph.addNode(second);
    EXPECT_EQ(graph.findNode("x"), second);
    EXPECT_EQ(graph.m_nodeList.size(), 2U);
}

TEST(GraphModel, LinksAreFiledLikeNodesAndTheirEndsAreNotLookedAt) {
    Graph graph;
    const auto first = makeLink(nullptr, nullptr, "l"),
               second = makeLink(makeNode("not in the graph"), nullptr, "l");
    graph.addLink(first);
    graph.addLink(second);
    graph.addLink(makeLink(nullptr, nullptr, "k"));
    EXPECT_EQ(graph.m_links.size(), 2U);
    EXPECT_EQ((*graph.m_links.begin()).first, "k");
    EXPECT_EQ(graph.findLink("l"), second);
    EXPECT_EQ(graph.m_linkList.size(), 3U);
    EXPECT_EQ(graph.m_linkList[0], first);
    EXPECT_TRUE(graph.m_nodes.empty());
}

TEST(GraphModel, ObjectsAreFoundUnderTheirIds) {
    Graph graph;
    const auto first = makeNode("x"), second = makeNode("x"), other = makeNode("");
    for (const auto& node : {first, other})
        graph.addNode(node);
    EXPECT_EQ(graph.findNode("x"), first);
    graph.addNode(second);
    EXPECT_EQ(graph.findNode("x"), second);
    EXPECT_EQ(graph.findNode(""), other);
    EXPECT_EQ(graph.findNode("X"), nullptr);
    const auto link = makeLink(first, second, "l");
    graph.addLink(link);
    EXPECT_EQ(graph.findLink("l"), link);
    EXPECT_EQ(graph.findLink("x"), nullptr);
}

TEST(GraphModel, EntriesAreInOrderHoweverTheyCameAndWheneverOneLooks) {
    Graph graph;
    std::map<std::string, std::shared_ptr<Node>> expected;
    std::mt19937 random(7);
    for (int i = 0; i < 3'000; ++i) {
        const auto node = makeNode(std::to_string(random() % 1'500));
        graph.addNode(node);
        expected[node->m_id] = node;
        if (i % 700 != 0) continue;
        ASSERT_EQ(graph.m_nodes.size(), expected.size());
        auto it = expected.begin();
        for (const auto& [id, found] : graph.m_nodes) {
            ASSERT_EQ(id, it->first);
            ASSERT_EQ(found, (it++)->second);
        }
    }
    for (const auto& [id, node] : expected)
        ASSERT_EQ(graph.findNode(id), node);
    EXPECT_EQ(graph.findNode("1500"), nullptr);
}

TEST(GraphModel, EntryOfNoObjectStandsAtItsIdUntilThereIsOne) {
    Graph graph;
    graph.addNode(makeNode("a"));
    graph.addNode(makeNode("c"));
    (void)graph.m_nodes["b"];
    (void)graph.m_nodes["a"];
    Names ids;
    for (const auto& [id, node] : graph.m_nodes)
        ids.push_back(id + (node ? "" : ", null"));
    EXPECT_EQ(ids, (Names{"a", "b, null", "c"}));
    EXPECT_EQ(graph.findNode("b"), nullptr);
    const auto later = makeNode("b");
    graph.addNode(later);
    EXPECT_EQ(graph.findNode("b"), later);
    EXPECT_EQ(graph.m_nodes.size(), 3U);
}

TEST(GraphModel, AnIdThatChangesLaterLeavesTheNodeUnderTheOldOne) {
    Graph graph;
    const auto node = makeNode("a");
    graph.addNode(node);
    graph.addNode(makeNode("b"));
    node->m_id = "c";
    EXPECT_EQ(graph.findNode("a"), node);
    EXPECT_EQ(graph.findNode("c"), nullptr);
    EXPECT_EQ(graph.m_nodes.begin()->first, "a");
    graph.addNode(makeNode("d"));
    Names ids;
    for (const auto& [id, each] : graph.m_nodes)
        ids.push_back(id + " " + each->m_id);
    EXPECT_EQ(ids, (Names{"a c", "b b", "d d"}));
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(node->m_hierarchicalLevel, 0) << "it still is a member of the top level";
}

struct ThreeNodes : testing::Test {
    ThreeNodes() {
        for (const auto& node : {a, b, c})
            graph.addNode(node);
    }
    NodePtr a = makeNode("a"), b = makeNode("b"), c = makeNode("c");
    Graph graph;
};

TEST_F(ThreeNodes, ChildrenAndParentsComeFromTheLinksInListOrder) {
    graph.addLink(makeLink(a, c, "z"));
    graph.addLink(makeLink(a, b, "y"));
    graph.addLink(makeLink(b, c, "x"));
    graph.setChildrenAndParents();
    EXPECT_EQ(idsOf(a->getChildren()), (Names{"c", "b"}));
    EXPECT_EQ(idsOf(b->getChildren()), (Names{"c"}));
    EXPECT_EQ(idsOf(c->getParents()), (Names{"a", "b"}));
    EXPECT_EQ(idsOf(b->getParents()), (Names{"a"}));
    EXPECT_TRUE(a->getParents().empty());
}

TEST_F(ThreeNodes, FormerChildrenAndParentsAreForgotten) {
    Node::addChildParent(a, b);
    graph.addLink(makeLink(a, c));
    graph.setChildrenAndParents();
    graph.setChildrenAndParents();
    EXPECT_TRUE(b->getChildren().empty());
    EXPECT_TRUE(a->getParents().empty());
    EXPECT_EQ(idsOf(a->getChildren()), (Names{"c"}));
    EXPECT_EQ(idsOf(c->getParents()), (Names{"a"}));
}

TEST_F(ThreeNodes, ParallelLinksAndDummyLinksCountOnceEach) {
    graph.addLink(makeLink(a, b, "1"));
    graph.addLink(makeLink(a, b, "2"));
    const auto dummy = std::make_shared<Link>("d", "dummy");
    dummy->m_from = b;
    dummy->m_to = c;
    graph.addLink(dummy);
    graph.setChildrenAndParents();
    EXPECT_EQ(idsOf(a->getChildren()), (Names{"b"}));
    EXPECT_EQ(idsOf(b->getParents()), (Names{"a"}));
    EXPECT_EQ(idsOf(b->getChildren()), (Names{"c"}));
}

TEST_F(ThreeNodes, LinkWithAMissingEndMakesNoChildrenAndParents) {
    graph.addLink(makeLink(a, nullptr, "1"));
    graph.addLink(makeLink(nullptr, b, "2"));
    graph.setChildrenAndParents();
    for (const auto& node : {a, b, c})
        EXPECT_TRUE(node->getChildren().empty() && node->getParents().empty());
}

TEST_F(ThreeNodes, NodePushedOutOfTheMapKeepsItsChildrenAndParents) {
    Node::addChildParent(a, c);  // a is a child of c
    Node::addChildParent(b, a);  // and b one of a
    graph.addNode(makeNode("a"));
    graph.addLink(makeLink(b, a, "1"));
    graph.setChildrenAndParents();
    EXPECT_EQ(idsOf(a->getParents()), (Names{"c", "b"}));
    EXPECT_EQ(idsOf(a->getChildren()), (Names{"b"}));
    EXPECT_TRUE(c->getChildren().empty());
    EXPECT_TRUE(b->getParents().empty());
    EXPECT_EQ(idsOf(b->getChildren()), (Names{"a"}));
}

TEST_F(ThreeNodes, WhatANodePushedOutOfTheMapKeepsIsNotAddedAgain) {
    Node::addChildParent(a, c);
    Node::addChildParent(b, a);
    graph.addNode(makeNode("a"));
    graph.addLink(makeLink(c, a, "1"));
    graph.addLink(makeLink(a, b, "2"));
    graph.setChildrenAndParents();
    EXPECT_EQ(idsOf(a->getParents()), (Names{"c"}));
    EXPECT_EQ(idsOf(a->getChildren()), (Names{"b"}));
    EXPECT_EQ(idsOf(c->getChildren()), (Names{"a"}));
    EXPECT_EQ(idsOf(b->getParents()), (Names{"a"}));
}

TEST(CollectGroups, AreTheDistinctGroupsInOrderOfTheirFirstNodeWithNullForTheTopLevel) {
    Graph graph;
    const auto g = makeNode("g"), h = makeNode("h");
    for (const auto& node :
         {makeMember("1", h), makeNode("2"), makeMember("3", g), makeMember("4", h), makeNode("5"), g, h})
        graph.addNode(node);
    graph.collectGroups();
    EXPECT_EQ(idsOf(graph.m_groups), (Names{"h", "(null)", "g"}));
    graph.collectGroups();
    EXPECT_EQ(graph.m_groups.size(), 3U) << "what was collected before is cleared";
}

TEST(CollectGroups, WithoutATopLevelNodeThereIsNoNullEntry) {
    const auto outside = makeNode("g");
    Graph graph;
    graph.addNode(makeMember("a", outside));
    graph.addNode(makeMember("b", outside));
    graph.collectGroups();
    EXPECT_EQ(idsOf(graph.m_groups), (Names{"g"}));
    outside->m_groupChildren.clear();
}

TEST(CollectGroups, OfAnEmptyGraphAreNone) {
    Graph graph;
    graph.collectGroups();
    EXPECT_TRUE(graph.m_groups.empty());
}

TEST(GraphDisplayInfos, AreThoseOfTheNodesThenThoseOfTheLinksWithoutEmptyOnes) {
    Graph graph;
    const auto z = makeNode("z"), y = makeNode("y"), a = makeNode("a");
    z->m_info = makeInfo("z");
    a->m_info = makeInfo("a");
    a->m_dataTransfers["size"] = makeInfo("not collected");
    for (const auto& node : {z, y, a})
        graph.addNode(node);
    const auto second = makeLink(z, a, "2"), first = makeLink(z, a, "1");
    second->m_displayInfo.m_totalInfo["size"] = makeInfo("total of 2");
    second->m_displayInfo.m_fromInfo["size"] = makeInfo("from of 2");
    second->m_displayInfo.m_toInfo["size"] = nullptr;
    first->m_displayInfo.m_toInfo["size"] = makeInfo("to of 1");
    graph.addLink(second);
    graph.addLink(first);
    std::vector<InfoPtr> out{makeInfo("there before")};
    graph.getDisplayInfos(out);
    EXPECT_EQ(namesOf(out), (Names{"z", "a", "from of 2", "total of 2", "to of 1"}));
}

TEST(GraphDisplayInfos, IncludeThoseOfBothNodesOfOneId) {
    Graph graph;
    for (const char* name : {"first", "second"}) {
        const auto node = makeNode("x");
        node->m_info = makeInfo(name);
        graph.addNode(node);
    }
    std::vector<InfoPtr> out;
    graph.getDisplayInfos(out);
    EXPECT_EQ(namesOf(out), (Names{"first", "second"}));
}

TEST(GraphEnd, ReleasesNodesAndLinksInSpiteOfTheirCycles) {
    auto graph = std::make_unique<Graph>();
    auto group = makeNode("g"), a = makeMember("a", group);
    graph->addNode(a);
    graph->addNode(makeNode("a"));
    graph->addNode(group);
    auto real = makeLink(a, group, "real"), dummy = makeLink(group, a, "dummy");
    real->m_dummyLink = dummy;
    dummy->m_realLink = real;
    graph->addLink(real);
    graph->addLink(dummy);
    graph->addLink(makeLink(a, a, "real"));
    graph->setChildrenAndParents();
    graph->collectGroups();
    std::vector<std::weak_ptr<Node>> nodes(graph->m_nodeList.begin(), graph->m_nodeList.end());
    std::vector<std::weak_ptr<Link>> links(graph->m_linkList.begin(), graph->m_linkList.end());
    a = group = nullptr;
    real = dummy = nullptr;
    graph = nullptr;
    for (const auto& node : nodes)
        EXPECT_TRUE(node.expired());
    for (const auto& link : links)
        EXPECT_TRUE(link.expired());
}

TEST(GraphEnd, ReleasesAHundredThousandLevelsAndAsLongAChainOfLinksWhateverTheOrderOfTheIds) {
    constexpr int depth = 100'000;
    for (const bool innermostFirst : {false, true}) {
        const auto idOf = [&](int level) {
            return std::to_string(depth + (innermostFirst ? depth - level : level));
        };
        auto graph = std::make_unique<Graph>();
        NodePtr group = makeNode(idOf(0)), previous = group;
        graph->addNode(group);
        for (int level = 1; level < depth; ++level) {
            group = makeMember(idOf(level), group);
            graph->addNode(group);
            graph->addLink(makeLink(previous, group, idOf(level)));
            previous = group;
        }
        graph->setChildrenAndParents();
        const std::weak_ptr<Node> innermost = group, outermost = graph->m_nodeList.front();
        group = previous = nullptr;
        graph = nullptr;
        EXPECT_TRUE(innermost.expired() && outermost.expired());
    }
}

}  // namespace
}  // namespace tessera_test
