// The diagram model: how nodes, links and graphs begin, and what a node can do.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "core/view_model/graph.h"
#include "tests/support/log_capture.h"
#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::Graph;
using tessera_1::view_model::Link;
using tessera_1::view_model::Node;

struct Model : testing::Test, LooseNodes {};

void expectNodeDefaults(const Node& node) {
    EXPECT_EQ(node.m_displayName, "");
    EXPECT_EQ(node.m_group, nullptr);
    EXPECT_EQ(node.m_hierarchicalLevel, -1);
    EXPECT_EQ(node.getHierarchicalLevel(), -1);
    EXPECT_EQ(node.m_groupLevel, 0);
    EXPECT_TRUE(node.m_groupChildren.empty());
    EXPECT_TRUE(node.getChildren().empty());
    EXPECT_TRUE(node.getParents().empty());
    EXPECT_FALSE(node.isGroup());
    EXPECT_EQ(node.m_location, "");
    EXPECT_EQ(node.m_aligning, "none");
    EXPECT_EQ(node.m_displayType, "none");
}

TEST_F(Model, NodeWithoutArgumentsHasTheTypeNodeAndNoId) {
    const Node made;
    EXPECT_EQ(made.m_type, "node");
    EXPECT_EQ(made.m_id, "");
    EXPECT_EQ(made.m_info, nullptr);
    EXPECT_TRUE(made.m_dataTransfers.empty());
    expectNodeDefaults(made);
}

TEST_F(Model, NodeOfOneStringHasThatTypeAndNoId) {
    const Node made("dummy");
    EXPECT_EQ(made.m_type, "dummy");
    EXPECT_EQ(made.m_id, "");
    expectNodeDefaults(made);
}

TEST_F(Model, NodeOfDataTransfersCopiesTheTable) {
    DataTransferTable table{{"size", makeInfo("s")}};
    const Node made("id", table, "label");
    EXPECT_EQ(made.m_id, "id");
    EXPECT_EQ(made.m_type, "label");
    EXPECT_EQ(made.m_info, nullptr);
    EXPECT_EQ(made.m_dataTransfers, table);
    table.clear();
    EXPECT_EQ(made.m_dataTransfers.size(), 1U);
    expectNodeDefaults(made);
}

TEST_F(Model, NodeOfADisplayInfoSharesIt) {
    const auto info = makeInfo("i");
    const Node made("id", info, "groupInfo");
    EXPECT_EQ(made.m_id, "id");
    EXPECT_EQ(made.m_type, "groupInfo");
    EXPECT_EQ(made.m_info, info);
    EXPECT_TRUE(made.m_dataTransfers.empty());
    expectNodeDefaults(made);
}

void expectLinkDefaults(const Link& link) {
    EXPECT_EQ(link.m_displayName, "");
    EXPECT_EQ(link.m_from, nullptr);
    EXPECT_EQ(link.m_to, nullptr);
    EXPECT_EQ(link.m_realLink, nullptr);
    EXPECT_EQ(link.m_dummyLink, nullptr);
    EXPECT_EQ(link.m_direction, "none");
    EXPECT_EQ(link.m_displayInfo.m_extraText, "");
    EXPECT_TRUE(link.m_displayInfo.m_fromInfo.empty());
    EXPECT_TRUE(link.m_displayInfo.m_toInfo.empty());
    EXPECT_TRUE(link.m_displayInfo.m_totalInfo.empty());
}

TEST_F(Model, LinksOneStringIsItsIdAndTheSecondItsType) {
    const Link none, one("id"), two("id", "dummy");
    EXPECT_EQ(none.m_id, "");
    EXPECT_EQ(none.m_type, "link");
    EXPECT_EQ(one.m_id, "id");
    EXPECT_EQ(one.m_type, "link");
    EXPECT_EQ(two.m_id, "id");
    EXPECT_EQ(two.m_type, "dummy");
    for (const Link* link : {&none, &one, &two})
        expectLinkDefaults(*link);
}

TEST_F(Model, NewGraphIsEmptyAndShowsBandwidth) {
    const Graph graph;
    EXPECT_EQ(graph.m_id, "");
    EXPECT_EQ(graph.m_name, "");
    EXPECT_EQ(graph.m_displayMode, "bandwidth");
    EXPECT_TRUE(graph.m_nodes.empty() && graph.m_links.empty());
    EXPECT_TRUE(graph.m_nodeList.empty() && graph.m_linkList.empty());
    EXPECT_TRUE(graph.m_groups.empty() && graph.m_levelManagers.empty());
}

TEST_F(Model, LocationToOrFromSetsTheAligningAsWell) {
    Node made;
    made.setLocation("to");
    EXPECT_EQ(made.m_location, "to");
    EXPECT_EQ(made.m_aligning, "to");
    made.setLocation("from");
    EXPECT_EQ(made.m_location, "from");
    EXPECT_EQ(made.m_aligning, "from");
}

TEST_F(Model, AnyOtherLocationLeavesTheAligning) {
    for (const char* location : {"top", "center", "To", ""}) {
        Node made;
        made.setLocation(location);
        EXPECT_EQ(made.m_location, location);
        EXPECT_EQ(made.m_aligning, "none");
    }
    Node aligned;
    aligned.setLocation("to");
    aligned.setLocation("center");
    EXPECT_EQ(aligned.m_location, "center");
    EXPECT_EQ(aligned.m_aligning, "to");
}

TEST_F(Model, ChildAndParentAreNotedOnceHoweverOftenTheyAreAdded) {
    const auto child = node("c"), parent = node("p");
    Node::addChildParent(child, parent);
    Node::addChildParent(child, parent);
    EXPECT_EQ(idsOf(parent->getChildren()), (Names{"c"}));
    EXPECT_EQ(idsOf(child->getParents()), (Names{"p"}));
    EXPECT_TRUE(child->getChildren().empty());
    EXPECT_TRUE(parent->getParents().empty());
}

TEST_F(Model, ChildrenAndParentsKeepTheOrderOfTheirFirstMention) {
    const auto p = node("p"), b = node("b"), a = node("a");
    for (const auto& child : {b, a, b})
        Node::addChildParent(child, p);
    EXPECT_EQ(idsOf(p->getChildren()), (Names{"b", "a"}));
    const auto q = node("q");
    for (const auto& parent : {q, p, q})
        Node::addChildParent(a, parent);
    EXPECT_EQ(idsOf(a->getParents()), (Names{"p", "q"}));
}

TEST_F(Model, PointersAndNotIdsDecideWhetherAChildIsThere) {
    const auto parent = node("p"), first = node("same"), second = node("same");
    Node::addChildParent(first, parent);
    Node::addChildParent(second, parent);
    EXPECT_EQ(idsOf(parent->getChildren()), (Names{"same", "same"}));
}

TEST_F(Model, NodeMayBeItsOwnChild) {
    const auto loop = node("x");
    Node::addChildParent(loop, loop);
    EXPECT_EQ(idsOf(loop->getChildren()), (Names{"x"}));
    EXPECT_EQ(idsOf(loop->getParents()), (Names{"x"}));
}

TEST_F(Model, NodeIsAGroupThroughItsMembersAlone) {
    const auto group = node("g");
    group->m_type = "group";
    EXPECT_FALSE(group->isGroup());
    const auto first = member("m", group);
    EXPECT_TRUE(group->isGroup());
    group->removeFromGroup(first);
    EXPECT_FALSE(group->isGroup());
}

TEST_F(Model, AddingToANodeWithoutMembersIsReportedAndTheFalseCode) {
    const LogCapture log;
    const auto group = node("g"), x = node("x");
    EXPECT_TRUE(x->addToGroup(group).is_false());
    EXPECT_EQ(x->m_group, nullptr);
    EXPECT_FALSE(group->isGroup());
    EXPECT_EQ(log.reports(), (Names{"ERROR check group->isGroup()"}));
}

TEST_F(Model, AddingToNoGroupIsASuccessThatChangesNothing) {
    const LogCapture log;
    const auto group = node("g");
    const auto x = member("x", group);
    EXPECT_TRUE(x->addToGroup(nullptr).is_success());
    EXPECT_EQ(x->m_group, group);
    EXPECT_EQ(idsOf(group->m_groupChildren), (Names{"x"}));
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(Model, AddingToAGroupAppendsTheNodeItself) {
    const auto group = node("g");
    member("first", group);
    const auto x = node("x");
    EXPECT_TRUE(x->addToGroup(group).is_success());
    EXPECT_EQ(idsOf(group->m_groupChildren), (Names{"first", "x"}));
    EXPECT_EQ(group->m_groupChildren[1], x);
    EXPECT_EQ(x->m_group, group);
}

TEST_F(Model, AddingTwiceListsTheMemberTwice) {
    const auto group = node("g");
    const auto x = member("x", group);
    EXPECT_TRUE(x->addToGroup(group).is_success());
    EXPECT_EQ(idsOf(group->m_groupChildren), (Names{"x", "x"}));
}

TEST_F(Model, FormerGroupKeepsListingANodeThatJoinsAnother) {
    const auto former = node("former"), next = node("next");
    const auto x = member("x", former);
    member("other", next);
    EXPECT_TRUE(x->addToGroup(next).is_success());
    EXPECT_EQ(idsOf(former->m_groupChildren), (Names{"x"}));
    EXPECT_EQ(x->m_group, next);
}

TEST_F(Model, NodeThatIsNotYetAGroupCannotBeJoinedByItself) {
    const LogCapture log;
    const auto x = node("x");
    EXPECT_TRUE(x->addToGroup(x).is_false());
}

TEST_F(Model, RemovingStrikesTheFirstEntryAndLeavesTheMemberAlone) {
    const auto group = node("g");
    const auto a = member("a", group), b = member("b", group);
    member("c", group);
    group->m_groupChildren.push_back(b);
    group->removeFromGroup(b);
    EXPECT_EQ(idsOf(group->m_groupChildren), (Names{"a", "c", "b"}));
    EXPECT_EQ(b->m_group, group);
    group->removeFromGroup(node("stranger"));
    group->removeFromGroup(nullptr);
    EXPECT_EQ(idsOf(group->m_groupChildren), (Names{"a", "c", "b"}));
}

}  // namespace
}  // namespace tessera_test
