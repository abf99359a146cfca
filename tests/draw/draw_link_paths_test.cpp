// LinkPaths by hand: diagrams as the layout leaves them, link by link.
#include "draw/read/link_paths.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace tessera_draw {
namespace {

class DrawLinkPaths : public testing::Test {
  protected:
    Index node(const std::string& id, std::string_view type = "node", std::int32_t level = 0,
               std::string_view location = "", Index group = nothing) {
        Node& node = m_diagram.nodes.emplace_back();
        node.id = keep(id);
        node.type = type;
        node.level = level;
        node.location = location;
        node.group = group;
        return static_cast<Index>(m_diagram.nodes.size() - 1);
    }
    void link(const std::string& id, Index from, Index to, std::string_view direction = "none") {
        Link& link = m_diagram.links.emplace_back();
        link.id = keep(id);
        link.from = from;
        link.to = to;
        link.direction = direction;
    }

    // "a label@1 b forward": from, stops with their layers, to, direction.
    [[nodiscard]] std::vector<std::string> linkPaths() const {
        const LinkPaths linkPaths = findLinkPaths(m_diagram);
        std::vector<std::string> all;
        for (const LinkPath& path : linkPaths.paths) {
            std::string text = idOf(path.from);
            for (std::uint32_t i = 0; i < path.stopCount; ++i) {
                const PathStop& stop = linkPaths.stops[path.firstStop + i];
                text += " " + idOf(stop.node) + "@" + std::to_string(stop.level);
                if (stop.group != nothing) text += "in" + idOf(stop.group);
            }
            all.push_back(text + " " + idOf(path.to) + " " + std::string(path.direction));
        }
        return all;
    }
    [[nodiscard]] std::size_t orphanCount() const { return findLinkPaths(m_diagram).orphanLabels.size(); }

    Diagram m_diagram;

  private:
    std::string_view keep(const std::string& text) { return m_texts.emplace_back(text); }
    [[nodiscard]] std::string idOf(Index index) const {
        return index == nothing ? "?" : std::string(m_diagram.nodes[index].id);
    }

    std::deque<std::string> m_texts;
};

using Texts = std::vector<std::string>;

TEST_F(DrawLinkPaths, LinksThatNothingWasPutOntoAreLinkPathsAsTheyStand) {
    const Index a = node("a");
    const Index b = node("b");
    link("1", a, b, "back");
    link("2", a, a, "forward");
    link("3", nothing, b, "both");
    link("4", a, nothing, "askew");
    EXPECT_EQ(linkPaths(), (Texts{"a b back", "a a forward", "? b both", "a ? askew"}));
}

TEST_F(DrawLinkPaths, LinksBetweenAGroupAndItsMembersAreKept) {
    const Index group = node("g", "group");
    m_diagram.nodes[group].isGroup = true;
    const Index member = node("m", "node", 0, "", group);
    link("in", group, member, "forward");
    link("out", member, group, "none");
    EXPECT_EQ(linkPaths(), (Texts{"g m forward", "m g none"}));
}

TEST_F(DrawLinkPaths, ALinkPathTellsTheLinkThatCarriesItsId) {
    const Index a = node("a");
    const Index b = node("b", "node", 2);
    link("plain", b, a);
    link("long", a, b);
    m_diagram.links[1].name = "Long";
    const Index d = node("b_a_dummy", "dummy", 1);
    m_diagram.links[1].to = d;
    link("b_a_dummy_a", d, b);
    const LinkPaths found = findLinkPaths(m_diagram);
    ASSERT_EQ(found.paths.size(), 2U);
    EXPECT_EQ(found.paths[1].id, "long");
    EXPECT_EQ(found.paths[1].name, "Long");
    EXPECT_EQ(found.paths[1].link, 1U);
}

// The splits go from the to end backwards: "to", "center", "from".
TEST_F(DrawLinkPaths, LabelsStandInTheOrderFromCenterTo) {
    for (const std::string direction : {"forward", "back", "both", "none"}) {
        m_diagram = {};
        const Index a = node("a", "node", 0);
        const Index b = node("b", "node", 4);
        const Index to = node("b_a_label", "label", 3, "to");
        const Index center = node("b_a_label_a_label", "label", 2, "center");
        const Index from = node("b_a_label_a_label_a_label", "label", 1, "from");
        const bool isForward = direction == "forward" || direction == "both";
        const bool isBack = direction == "back" || direction == "both";
        link("l", a, from, isBack ? "back" : "none");
        link("b_a_label_a", to, b, isForward ? "forward" : "none");
        link("b_a_label_a_label_a", center, to);
        link("b_a_label_a_label_a_label_a", from, center);
        EXPECT_EQ(linkPaths(),
                  Texts{"a b_a_label_a_label_a_label@1 b_a_label_a_label@2 b_a_label@3 b " + direction});
        EXPECT_EQ(orphanCount(), 0U);
    }
}

TEST_F(DrawLinkPaths, LongLinksGoThroughTheirDummies) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 3);
    const Index first = node("b_a_dummy", "dummy", 2);
    const Index second = node("b_a_dummy_a_dummy", "dummy", 1);
    link("l", a, second);
    link("b_a_dummy_a", first, b, "forward");
    link("b_a_dummy_a_dummy_a", second, first);
    EXPECT_EQ(linkPaths(), Texts{"a b_a_dummy_a_dummy@1 b_a_dummy@2 b forward"});
}

// A link with a "to" label: a, filler, label, two dummies, b. Label and last dummy are exchanged.
TEST_F(DrawLinkPaths, AToLabelTakesTheStopNextToItsNode) {
    const Index group = node("g", "group");
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 2, "", group);
    const Index label = node("b_a_label", "label", 2, "to", group);
    const Index filler = node("b_a_label_a_dummy", "dummy", 1);
    const Index last = node("b_b_a_label_dummy", "dummy", 4);
    const Index inner = node("b_b_a_label_dummy_b_a_label_dummy", "dummy", 3);
    link("l", a, filler);
    link("b_a_label_a", last, inner);
    link("b_a_label_a_dummy_a", filler, last);
    link("b_b_a_label_dummy_b_a_label", last, b, "forward");
    link("b_b_a_label_dummy_b_a_label_dummy_b_a_label", inner, label);
    EXPECT_EQ(linkPaths(), Texts{"a b_a_label_a_dummy@1 b_b_a_label_dummy@2 "
                                 "b_b_a_label_dummy_b_a_label_dummy@3 b_a_label@4ing b forward"});
}

// With one dummy the label links to itself.
TEST_F(DrawLinkPaths, AToLabelThatLinksToItselfIsPutBackIntoItsLinkPath) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 4);
    const Index label = node("b_a_label", "label", 2, "to");
    const Index filler = node("b_a_label_a_dummy", "dummy", 1);
    const Index dummy = node("b_b_a_label_dummy", "dummy", 3);
    link("l", a, filler, "back");
    link("b_a_label_a", label, label);
    link("b_a_label_a_dummy_a", filler, dummy);
    link("b_b_a_label_dummy_b_a_label", dummy, b);
    EXPECT_EQ(linkPaths(), Texts{"a b_a_label_a_dummy@1 b_b_a_label_dummy@2 b_a_label@3 b back"});
}

// Two dummies between a and the label: a, second, first, label, filler, b.
TEST_F(DrawLinkPaths, AFromLabelTakesTheStopNextToItsNode) {
    const Index group = node("g", "group");
    const Index a = node("a", "node", 0, "", group);
    const Index b = node("b", "node", 5);
    const Index filler = node("b_a_dummy", "dummy", 4);
    const Index label = node("b_a_dummy_a_label", "label", 3, "from", group);
    const Index first = node("b_a_dummy_a_label_a_dummy", "dummy", 2, "", group);
    const Index second = node("b_a_dummy_a_label_a_dummy_a_dummy", "dummy", 1);
    link("l", a, label, "back");
    link("b_a_dummy_a", filler, b);
    link("b_a_dummy_a_label_a", second, filler);
    link("b_a_dummy_a_label_a_dummy_a", first, second);
    link("b_a_dummy_a_label_a_dummy_a_dummy_a", second, first);
    EXPECT_EQ(linkPaths(), Texts{"a b_a_dummy_a_label@1ing b_a_dummy_a_label_a_dummy@2ing "
                                 "b_a_dummy_a_label_a_dummy_a_dummy@3 b_a_dummy@4 b back"});
}

// The dummy that was next to a links to itself; both ends of one link path are exchanged.
TEST_F(DrawLinkPaths, BothEndsOfALinkPathCanBeExchanged) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 6);
    const Index to = node("b_a_label", "label", 4, "to");
    const Index center = node("b_a_label_a_label", "label", 3, "center");
    const Index from = node("b_a_label_a_label_a_label", "label", 2, "from");
    const Index atFrom = node("b_a_label_a_label_a_label_a_dummy", "dummy", 1);
    const Index atTo = node("b_b_a_label_dummy", "dummy", 5);
    link("l", a, from);
    link("b_a_label_a", to, to);
    link("b_a_label_a_label_a", center, atTo);
    link("b_a_label_a_label_a_label_a", atFrom, center);
    link("b_a_label_a_label_a_label_a_dummy_a", atFrom, atFrom);
    link("b_b_a_label_dummy_b_a_label", atTo, b, "forward");
    EXPECT_EQ(linkPaths(), Texts{"a b_a_label_a_label_a_label@1 b_a_label_a_label_a_label_a_dummy@2 "
                                 "b_a_label_a_label@3 b_b_a_label_dummy@4 b_a_label@5 b forward"});
}

// A check failed before this label was visited.
TEST_F(DrawLinkPaths, ALabelThatWasNotExchangedKeepsItsStop) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 4);
    const Index label = node("b_a_label", "label", 2, "to");
    const Index filler = node("b_a_label_a_dummy", "dummy", 1);
    const Index dummy = node("b_b_a_label_dummy", "dummy", 3);
    link("l", a, filler);
    link("b_a_label_a", label, dummy);
    link("b_a_label_a_dummy_a", filler, label);
    link("b_b_a_label_dummy_b_a_label", dummy, b);
    EXPECT_EQ(linkPaths(), Texts{"a b_a_label_a_dummy@1 b_a_label@2 b_b_a_label_dummy@3 b none"});
}

// All nodes and links that are made for parallel links of one kind have the same ids; their order tells.
TEST_F(DrawLinkPaths, ParallelLinksHaveTheirOwnLabels) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 2);
    node("b_a_label", "label", 10, "center");
    node("b_a_label", "label", 11, "center");
    const Index last = node("b_a_label", "label", 12, "center");
    link("1", a, last);
    link("unlabelled", a, b);
    link("2", a, last, "back");
    link("3", a, last);
    link("b_a_label_a", last, b, "forward");
    link("b_a_label_a", last, b);
    link("b_a_label_a", last, b, "forward");
    EXPECT_EQ(linkPaths(), (Texts{"a b_a_label@10 b forward", "a b none", "a b_a_label@11 b back",
                                  "a b_a_label@12 b forward"}));
}

// A "center" label and a "to" label of parallel links have one id, too.
TEST_F(DrawLinkPaths, ParallelLinksOfDifferentKindsHaveTheirOwnLabels) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 3);
    const Index center = node("b_a_label", "label", 1, "center");
    const Index to = node("b_a_label", "label", 2, "to");
    const Index filler = node("b_a_label_a_dummy", "dummy", 1);
    const Index dummy = node("b_b_a_label_dummy", "dummy", 2);
    (void)center;
    link("1", a, to);
    link("2", a, filler);
    link("b_a_label_a", to, dummy);
    link("b_a_label_a", to, b, "forward");
    link("b_a_label_a_dummy_a", filler, to);
    link("b_b_a_label_dummy_b_a_label", dummy, b);
    EXPECT_EQ(linkPaths(), (Texts{"a b_a_label@1 b_b_a_label_dummy@2 b none",
                                  "a b_a_label_a_dummy@1 b_a_label@2 b forward"}));
}

// A document may call a node what the label of another link is called.
TEST_F(DrawLinkPaths, LinksEndInNodesOfTheDocument) {
    const Index a = node("a");
    const Index b = node("b", "node", 2);
    const Index namesake = node("b_a_label", "node", 7);
    const Index label = node("b_a_label", "label", 1, "center");
    link("labelled", a, label);
    link("plain", a, label, "forward");
    link("b_a_label_a", label, b, "forward");
    const LinkPaths found = findLinkPaths(m_diagram);
    ASSERT_EQ(found.paths.size(), 2U);
    EXPECT_EQ(found.paths[0].to, b);
    EXPECT_EQ(found.paths[0].stopCount, 1U);
    EXPECT_EQ(found.paths[1].to, namesake);
    EXPECT_EQ(found.paths[1].stopCount, 0U);
}

TEST_F(DrawLinkPaths, DummiesOfOneLayerAreKept) {
    const Index a = node("a", "node", 0);
    const Index b = node("b", "node", 3);
    const Index first = node("b_a_dummy", "dummy", 2);
    const Index second = node("b_a_dummy_a_dummy", "dummy", 2);
    link("l", a, second);
    link("b_a_dummy_a", first, b);
    link("b_a_dummy_a_dummy_a", second, first);
    EXPECT_EQ(linkPaths(), Texts{"a b_a_dummy_a_dummy@2 b_a_dummy@2 b none"});
}

TEST_F(DrawLinkPaths, LinksThatNoLibraryHasWrittenAreLinkPathsOfTheirOwn) {
    const Index a = node("a");
    const Index label = node("words", "label", 1, "center");
    node("lonely", "label", 1, "from");
    const Index dummy = node("d", "dummy");
    link("1", a, label, "forward");
    link("2", label, dummy, "both");
    link("3", dummy, dummy, "back");
    EXPECT_EQ(linkPaths(), (Texts{"a words forward", "words d both", "d d back"}));
    EXPECT_EQ(orphanCount(), 1U) << "no thread passes \"lonely\" or ends there";
}

// By their ids two links are halves, but the link that they were split from is absent.
TEST_F(DrawLinkPaths, HalvesWithoutTheirLinkAreLinkPathsOfTheirOwn) {
    const Index a = node("a");
    const Index b = node("b");
    const Index label = node("b_a_label", "label", 1, "center");
    const Index dummy = node("a_b_dummy", "dummy", 1);
    link("b_a_label_a", label, b, "forward");
    link("a_b_dummy_b", dummy, a);
    EXPECT_EQ(linkPaths(), (Texts{"b_a_label b forward", "a_b_dummy a none"}));
    EXPECT_EQ(orphanCount(), 0U);
}

// Ends that form a cycle, in a diagram whose ids look right.
TEST_F(DrawLinkPaths, ContradictionsEnd) {
    const Index a = node("b_a_dummy", "dummy");
    const Index b = node("b");
    const Index c = node("b_b_a_dummy_dummy", "dummy");
    node("b_b_b_a_dummy_dummy_dummy", "dummy");
    link("1", a, c);
    link("2", c, a);
    link("b_b_a_dummy_dummy_b_a_dummy", c, c);
    link("b_b_b_a_dummy_dummy_dummy_b_b_a_dummy_dummy", c, b);
    EXPECT_LE(findLinkPaths(m_diagram).stops.size(), 3U);
    EXPECT_GE(linkPaths().size(), 2U);
}

}  // namespace
}  // namespace tessera_draw
