// Values of links and groups as nodes.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/support/layout_building.h"
#include "tests/support/literal_layout.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::Graph;
using tessera_1::view_model::LinkDisplayInfo;

struct InfoNodes : testing::Test, Diagram {
    static DataTransferTable shows(const std::string& value) { return {{"bandwidth", makeValue(value)}}; }
    void run() { EXPECT_TRUE(graph.setLinkInfoAsNodes().is_success()); }
    std::string locationOf(const std::string& id) const { return found(id)->m_location; }

    NodePtr a = node("a"), b = node("b");
};

TEST_F(InfoNodes, LinkWithoutValuesIsLeftAlone) {
    link(a, b, "forward");
    const LinkPtr empty = link(a, b, "forward");
    empty->m_displayInfo.m_toInfo = shows("");
    empty->m_displayInfo.m_fromInfo["bandwidth"] = nullptr;
    empty->m_displayInfo.m_totalInfo["bandwidth"] = makeInfo("without rows");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b"}));
    EXPECT_EQ(links(), (Names{"a>b", "a>b"}));
    EXPECT_EQ(empty->m_direction, "forward");
    EXPECT_EQ(empty->m_displayInfo.m_toInfo.size(), 1U) << "what shows nothing stays with the link";
}

TEST_F(InfoNodes, TotalAloneBecomesOneLabelInTheCentre) {
    const LinkPtr l = link(a, b);
    l->m_displayInfo.m_totalInfo = shows("7");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b", "b_a_label"}));
    EXPECT_EQ(links(), (Names{"a>b_a_label", "b_a_label>b"}));
    const NodePtr label = found("b_a_label");
    EXPECT_EQ(label->m_type, "label");
    EXPECT_EQ(label->m_location, "center");
    EXPECT_EQ(label->m_aligning, "none");
    EXPECT_EQ(label->m_dataTransfers.at("bandwidth")->m_rowSet.rows[0].m_value, "7");
    EXPECT_TRUE(l->m_displayInfo.m_totalInfo.empty());
}

TEST_F(InfoNodes, FromLabelAloneIsKeptFromTheToNodeByADummy) {
    link(a, b)->m_displayInfo.m_fromInfo = shows("1");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b", "b_a_dummy", "b_a_dummy_a_label"}));
    EXPECT_EQ(links(), (Names{"a>b_a_dummy_a_label", "b_a_dummy>b", "b_a_dummy_a_label>b_a_dummy"}));
    EXPECT_EQ(locationOf("b_a_dummy_a_label"), "from");
    EXPECT_EQ(found("b_a_dummy")->m_type, "dummy");
    EXPECT_EQ(locationOf("b_a_dummy"), "");
}

TEST_F(InfoNodes, ToLabelAloneIsKeptFromTheFromNodeByADummy) {
    link(a, b)->m_displayInfo.m_toInfo = shows("1");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b", "b_a_label", "b_a_label_a_dummy"}));
    EXPECT_EQ(links(), (Names{"a>b_a_label_a_dummy", "b_a_label>b", "b_a_label_a_dummy>b_a_label"}));
    EXPECT_EQ(graph.m_linkList[1]->m_id, "b_a_label_a");
    EXPECT_EQ(graph.m_linkList[2]->m_id, "b_a_label_a_dummy_a");
    EXPECT_EQ(locationOf("b_a_label"), "to");
    EXPECT_EQ(found("b_a_label")->m_aligning, "to");
}

TEST_F(InfoNodes, AllThreeLabelsStandInTheOrderOfTheirPlaces) {
    const LinkPtr l = link(a, b);
    l->m_displayInfo.m_fromInfo = shows("1");
    l->m_displayInfo.m_totalInfo = shows("2");
    l->m_displayInfo.m_toInfo = shows("3");
    run();
    ASSERT_EQ(graph.m_nodeList.size(), 5U) << "three labels and no dummy";
    graph.setChildrenAndParents();
    Names locations;
    for (NodePtr next = a->getChildren().at(0); next != b; next = next->getChildren().at(0))
        locations.push_back(next->m_location);
    EXPECT_EQ(locations, (Names{"from", "center", "to"}));
}

TEST_F(InfoNodes, TotalBesideAnEndLabelDoesNotReplaceTheDummy) {
    const LinkPtr l = link(a, b);
    l->m_displayInfo.m_totalInfo = shows("2");
    l->m_displayInfo.m_toInfo = shows("3");
    run();
    graph.setChildrenAndParents();
    Names types;
    for (NodePtr next = a->getChildren().at(0); next != b; next = next->getChildren().at(0))
        types.push_back(next->m_type + " " + next->m_location);
    EXPECT_EQ(types, (Names{"dummy ", "label center", "label to"}));
}

TEST_F(InfoNodes, ArrowHeadsStayAtTheirEnds) {
    const std::map<std::string, std::pair<std::string, std::string>> halves{{"forward", {"none", "forward"}},
                                                                            {"both", {"back", "forward"}},
                                                                            {"back", {"back", "none"}},
                                                                            {"none", {"none", "none"}}};
    for (const auto& [direction, expected] : halves) {
        const LinkPtr l = link(a, b, direction);
        l->m_displayInfo.m_totalInfo = shows("1");
        run();
        const LinkPtr half = graph.m_linkList.back();
        EXPECT_EQ(half->m_to, b);
        EXPECT_EQ(l->m_direction, expected.first) << direction;
        EXPECT_EQ(half->m_direction, expected.second) << direction;
    }
}

TEST_F(InfoNodes, OtherDisplayModeShowsNothingNowButGoesAlongWithTheLabel) {
    const LinkPtr l = link(a, b);
    l->m_displayInfo.m_fromInfo["size"] = makeValue("of another mode");
    l->m_displayInfo.m_totalInfo = shows("1");
    l->m_displayInfo.m_totalInfo["size"] = makeValue("3 kB");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b", "b_a_label"}));
    EXPECT_EQ(found("b_a_label")->m_dataTransfers.size(), 2U);
    EXPECT_EQ(l->m_displayInfo.m_fromInfo.size(), 1U);
}

TEST_F(InfoNodes, LabelsJoinTheGroupThatBothEndsShare) {
    const NodePtr outer = node("O"), inner = node("I", outer), c = node("c", inner), d = node("d", outer);
    link(c, d)->m_displayInfo.m_toInfo = shows("1");
    run();
    EXPECT_EQ(idsOf(outer->m_groupChildren), (Names{"I", "d", "d_c_label", "d_c_label_c_dummy"}));
    EXPECT_EQ(found("d_c_label")->m_group, outer);
    EXPECT_EQ(idsOf(inner->m_groupChildren), Names{"c"});
}

TEST_F(InfoNodes, LinkWithAMissingEndKeepsItsValues) {
    const LinkPtr l = link(a, nullptr);
    l->m_displayInfo.m_totalInfo = shows("1");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b"}));
    EXPECT_FALSE(l->m_displayInfo.m_totalInfo.empty());
}

TEST_F(InfoNodes, LaterLabelOfAnIdPushesTheEarlierOutOfTheMap) {
    link(a, b)->m_displayInfo.m_totalInfo = shows("1");
    link(a, b)->m_displayInfo.m_totalInfo = shows("2");
    run();
    EXPECT_EQ(nodes(), (Names{"a", "b", "b_a_label", "b_a_label"}));
    EXPECT_EQ(found("b_a_label"), graph.m_nodeList[3]);
}

TEST_F(InfoNodes, SplitHalvesShareTheDummyLink) {
    const LinkPtr l = link(a, b), dummy = link(a, b);
    l->m_dummyLink = dummy;
    const auto [made, half] = graph.insertDummyNode(l);
    ASSERT_TRUE(made && half);
    EXPECT_EQ(half->m_dummyLink, dummy);
    EXPECT_EQ(l->m_dummyLink, dummy);
    EXPECT_TRUE(made->m_dataTransfers.empty());
    EXPECT_EQ(half->m_type, "link");
}

TEST_F(InfoNodes, NothingIsInsertedForALabelThatShowsNothing) {
    const LinkPtr l = link(a, b);
    const auto made = graph.insertNode(l, {}, "label");
    EXPECT_TRUE(!made.first && !made.second);
    EXPECT_EQ(links(), Names{"a>b"});
}

TEST_F(InfoNodes, GroupWithValuesGetsAMemberThatHoldsThem) {
    const NodePtr g = node("g"), m = node("m", g);
    const InfoPtr info = makeValue("5");
    g->m_info = info;
    EXPECT_TRUE(graph.setGroupInfoAsNodes().is_success());
    EXPECT_EQ(nodes(), (Names{"a", "b", "g", "m", "g_info"}));
    const NodePtr made = found("g_info");
    EXPECT_EQ(made->m_type, "groupInfo");
    EXPECT_EQ(made->m_info, info);
    EXPECT_EQ(made->m_group, g);
    EXPECT_EQ(g->m_info, nullptr);
    EXPECT_EQ(idsOf(g->m_groupChildren), (Names{"m", "g_info"}));
}

TEST_F(InfoNodes, GroupWhoseRowsAreEmptyKeepsItsDisplayInfo) {
    const NodePtr g = node("g"), m = node("m", g);
    g->m_info = makeValue("");
    EXPECT_TRUE(graph.setGroupInfoAsNodes().is_success());
    EXPECT_EQ(found("g_info"), nullptr);
    EXPECT_NE(g->m_info, nullptr);
}

TEST_F(InfoNodes, NodeWithoutMembersKeepsItsValues) {
    a->m_info = makeValue("5");
    EXPECT_TRUE(graph.setGroupInfoAsNodes().is_success());
    EXPECT_EQ(nodes(), (Names{"a", "b"}));
    EXPECT_NE(a->m_info, nullptr);
}

// How many labels the tables of a graph's links need, by location.
std::map<std::string, int> labelsAskedFor(const Graph& graph) {
    std::map<std::string, int> out;
    for (const LinkPtr& link : graph.m_linkList) {
        if (!literal::isWhole(*link)) continue;
        const LinkDisplayInfo& info = link->m_displayInfo;
        for (const auto& [location, table] :
             {std::pair{"from", &info.m_fromInfo}, {"to", &info.m_toInfo}, {"center", &info.m_totalInfo}})
            if (!LinkDisplayInfo::emptyDataTransfer(*table, graph.m_displayMode)) ++out[location];
    }
    return out;
}

TEST(InfoNodesContract, EveryValueOfALinkIsALabelAndEveryGroupsValuesAreItsMember) {
    int labels = 0;
    int infos = 0;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        const LogCapture log;
        Graph graph;
        fillRandomDiagram(graph, seed);
        const auto askedFor = labelsAskedFor(graph);
        ASSERT_TRUE(graph.setLinkInfoAsNodes().is_success());
        ASSERT_TRUE(graph.setGroupInfoAsNodes().is_success());
        ASSERT_EQ(labelsAskedFor(graph), (std::map<std::string, int>())) << "seed " << seed;
        std::map<std::string, int> made;
        for (const NodePtr& node : graph.m_nodeList) {
            if (node->m_type == "label") ++made[node->m_location];
            if (node->m_type == "groupInfo") {
                ++infos;
                ASSERT_EQ(node->m_group->m_info, nullptr) << "seed " << seed;
            }
            if (node->isGroup() && node->m_info) {
                ASSERT_TRUE(node->m_info->m_rowSet.empty()) << "seed " << seed;
            }
        }
        ASSERT_EQ(made, askedFor) << "seed " << seed;
        for (const auto& [location, count] : made)
            labels += count;
    }
    EXPECT_GT(labels, 500);
    EXPECT_GT(infos, 100);
}

}  // namespace
}  // namespace tessera_test
