// Links: the pair of nodes that represents both ends in one group, and what a link shows.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "core/view_model/graph.h"
#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::Link;

struct LinkModel : testing::Test, LooseNodes {};

Names pairOf(const NodePtr& from, const NodePtr& to) {
    const auto [f, t] = makeLink(from, to)->getFromToBelongToTheSameGroup();
    return idsOf({f, t});
}

TEST_F(LinkModel, EndsOfOneGroupAreThemselvesThePair) {
    const auto g = node("G");
    const auto a = member("A", g), b = member("B", g);
    EXPECT_EQ(pairOf(a, b), (Names{"A", "B"}));
    EXPECT_EQ(makeLink(a, b)->getGroup(), g);
    const auto x = node("X"), y = node("Y");
    EXPECT_EQ(pairOf(x, y), (Names{"X", "Y"}));
    EXPECT_EQ(makeLink(x, y)->getGroup(), nullptr);
    EXPECT_EQ(pairOf(x, x), (Names{"X", "X"}));
}

TEST_F(LinkModel, TopLevelSourceMeetsTheOutermostGroupOfADeepTarget) {
    const auto a = node("A"), g1 = node("G1"), g2 = member("G2", g1), b = member("B", g2);
    EXPECT_EQ(pairOf(a, b), (Names{"A", "G1"}));
    EXPECT_EQ(makeLink(a, b)->getGroup(), nullptr);
}

TEST_F(LinkModel, DeepSourceMeetsATargetInTheOuterGroup) {
    const auto g1 = node("G1"), g2 = member("G2", g1), a = member("A", g2), b = member("B", g1);
    EXPECT_EQ(pairOf(a, b), (Names{"G2", "B"}));
    EXPECT_EQ(makeLink(a, b)->getGroup(), g1);
}

TEST_F(LinkModel, SourceInTheOuterGroupMeetsTheInnerGroupOfItsTarget) {
    const auto g1 = node("G1"), g2 = member("G2", g1), a = member("A", g1), b = member("B", g2);
    EXPECT_EQ(pairOf(a, b), (Names{"A", "G2"}));
    EXPECT_EQ(makeLink(a, b)->getGroup(), g1);
}

TEST_F(LinkModel, GroupsWithinOneGroupMeet) {
    const auto g1 = node("G1"), g2 = member("G2", g1), g3 = member("G3", g1), a = member("A", g2),
               b = member("B", g3);
    EXPECT_EQ(pairOf(a, b), (Names{"G2", "G3"}));
    EXPECT_EQ(makeLink(a, b)->getGroup(), g1);
}

TEST_F(LinkModel, TwoTopLevelGroupsMeetAtTheTop) {
    const auto g1 = node("G1"), h1 = node("H1"), a = member("A", g1), b = member("B", h1);
    EXPECT_EQ(pairOf(a, b), (Names{"G1", "H1"}));
    EXPECT_EQ(makeLink(a, b)->getGroup(), nullptr);
}

TEST_F(LinkModel, MemberAndItsOwnGroupMeetAsTheGroupTwice) {
    const auto g = node("G"), a = member("A", g);
    EXPECT_EQ(pairOf(a, g), (Names{"G", "G"}));
    EXPECT_EQ(pairOf(g, a), (Names{"G", "G"}));
}

// The procedure as it is stated, step by step.
std::pair<NodePtr, NodePtr> statedPair(const Link& link) {
    NodePtr f = link.m_from, t = link.m_to;
    if (t->m_group == f->m_group) return {f, t};
    while (true) {
        f = link.m_from;
        while (f->m_group) {
            if (t->m_group == f->m_group) return {f, t};
            f = f->m_group;
        }
        if (t->m_group) t = t->m_group;
        if (!t->m_group) return {f, t};
    }
}

TEST_F(LinkModel, PairIsTheStatedOneForAllEndsOfRandomForests) {
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        std::vector<NodePtr> forest;
        for (std::size_t i = 0; i < 14; ++i) {
            // Without a group, or in one of those made before.
            const std::size_t group = std::uniform_int_distribution<std::size_t>(0, i)(random);
            const std::string id = std::to_string(i);
            forest.push_back(group == i ? node(id) : member(id, forest[group]));
        }
        for (const NodePtr& from : forest)
            for (const NodePtr& to : forest) {
                const auto link = makeLink(from, to);
                const auto expected = statedPair(*link);
                ASSERT_EQ(link->getFromToBelongToTheSameGroup(), expected)
                    << from->m_id << " to " << to->m_id;
                ASSERT_EQ(link->getGroup(),
                          from->m_group == to->m_group ? from->m_group : expected.first->m_group);
            }
    }
}

TEST_F(LinkModel, LinkWithAMissingEndHasNoGroup) {
    const auto g = node("G"), a = member("A", g);
    for (const auto& link : {makeLink(a, nullptr), makeLink(nullptr, a), makeLink(nullptr, nullptr)}) {
        EXPECT_EQ(link->getGroup(), nullptr);
        const auto [f, t] = link->getFromToBelongToTheSameGroup();
        EXPECT_EQ(f, link->m_from);
        EXPECT_EQ(t, link->m_to);
    }
}

TEST_F(LinkModel, PairOfEndsAHundredThousandLevelsDeepIsFound) {
    const auto top = [this](const std::string& id) {
        NodePtr inner = node(id);
        for (int i = 0; i < 100'000; ++i)
            inner = member("", inner);
        return inner;
    };
    const auto from = top("F"), to = top("T");
    EXPECT_EQ(pairOf(from, to), (Names{"F", "T"}));
}

TEST_F(LinkModel, DisplayInfosOfATableAreAppendedWithItsEmptyEntries) {
    const DataTransferTable table{{"size", makeInfo("s")}, {"ratio", nullptr}};
    std::vector<InfoPtr> out{makeInfo("there")}, expected = out;
    for (const auto& [mode, info] : table)
        expected.push_back(info);
    Link().getDataTransferDisplayInfos(table, out);
    EXPECT_EQ(out, expected);
}

TEST_F(LinkModel, DisplayInfosOfALinkAreThoseOfFromThenToThenTotal) {
    Link link("l");
    link.m_displayInfo.m_totalInfo["size"] = makeInfo("total");
    link.m_displayInfo.m_toInfo["size"] = makeInfo("to");
    link.m_displayInfo.m_fromInfo["size"] = makeInfo("from");
    std::vector<InfoPtr> out{makeInfo("there")};
    link.getDisplayInfos(out);
    EXPECT_EQ(namesOf(out), (Names{"there", "from", "to", "total"}));
}

}  // namespace
}  // namespace tessera_test
