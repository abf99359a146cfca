// The graph section of a document: nodes, groups, links.
#include <gtest/gtest.h>

#include "core/viewpointparser.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::DViewpointParser;
using tessera_1::view_model::Graph;
using Reports = std::vector<std::string>;

struct GraphSection : testing::Test {
    // Parses the content of a "diagram" element.
    Graph& parse(const std::string& content) {
        host = std::make_unique<MemoryHost>("<v><diagram>" + content + "</diagram></v>");
        parser.parseViewpoint(host->base->config, host->library, &host->messenger, host->inputData, graph);
        return *graph;
    }
    static Reports ids(const std::vector<std::shared_ptr<tessera_1::view_model::Node>>& nodes) {
        Reports out;
        for (const auto& node : nodes)
            out.push_back(node->m_id);
        return out;
    }

    LogCapture log;
    std::unique_ptr<MemoryHost> host;
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
};

TEST_F(GraphSection, OnlyLinksReportBothEndsUnknownAndAreAddedWithEmptyEnds) {
    const Graph& g = parse(R"(<graph id="g"><link id="l" from="a" to="b" direction="both"/></graph>)");
    ASSERT_EQ(g.m_linkList.size(), 1U);
    EXPECT_EQ(g.m_linkList[0]->m_from, nullptr);
    EXPECT_EQ(g.m_linkList[0]->m_to, nullptr);
    EXPECT_EQ(g.m_linkList[0]->m_direction, "both");
    EXPECT_EQ(g.findLink("l"), g.m_linkList[0]);
    EXPECT_EQ(log.reports(), (Reports{"ERROR alert Diagram: Unknown node id in link found <a>",
                                      "INFO Diagram: Unknown node id in link found <a>",
                                      "ERROR alert Diagram: Unknown node id in link found <b>",
                                      "INFO Diagram: Unknown node id in link found <b>"}));
}

TEST_F(GraphSection, LinkBeforeItsNodesReportsEachEndThatComesLater) {
    const Graph& g = parse(R"(<graph><node id="a"/><link id="l" from="a" to="b"/><node id="b"/></graph>)");
    EXPECT_EQ(g.m_linkList[0]->m_from, g.findNode("a"));
    EXPECT_EQ(g.m_linkList[0]->m_to, nullptr);
    EXPECT_EQ(log.reports(), (Reports{"ERROR alert Diagram: Unknown node id in link found <b>",
                                      "INFO Diagram: Unknown node id in link found <b>"}));
}

TEST_F(GraphSection, MissingEndAttributeIsTheUnknownIdOfNoText) {
    parse(R"(<graph><node id="a"/><link id="l" from="a"/></graph>)");
    EXPECT_EQ(log.reports(), (Reports{"ERROR alert Diagram: Unknown node id in link found <>",
                                      "INFO Diagram: Unknown node id in link found <>"}));
}

TEST_F(GraphSection, ThreeLevelsOfNestingAddTheInnermostFirst) {
    const Graph& g = parse(
        R"(<graph><node id="g1"><node id="x"/><node id="g2"><node id="y"/></node><node id="z"/></node></graph>)");
    EXPECT_EQ(ids(g.m_nodeList), (Reports{"x", "y", "g2", "z", "g1"}));
    EXPECT_EQ(ids(g.findNode("g1")->m_groupChildren), (Reports{"x", "g2", "z"}));
    EXPECT_EQ(ids(g.findNode("g2")->m_groupChildren), (Reports{"y"}));
    EXPECT_EQ(g.findNode("y")->m_group, g.findNode("g2"));
    EXPECT_EQ(g.findNode("g2")->m_group, g.findNode("g1"));
    EXPECT_EQ(g.findNode("g1")->m_group, nullptr);
}

TEST_F(GraphSection, LinkInsideANodeIsUnknownThere) {
    const Graph& g = parse(R"(<graph><node id="a"><link id="l"/><node id="b"/></node></graph>)");
    EXPECT_TRUE(g.m_linkList.empty());
    EXPECT_EQ(ids(g.m_nodeList), (Reports{"b", "a"}));
    // This text ends without a full stop.
    EXPECT_EQ(log.reports(),
              (Reports{"ERROR alert Unknown element <link> found under <node>. Expected <node>",
                       "INFO Unknown element <link> found under <node>. Expected <node>"}));
}

TEST_F(GraphSection, UnknownChildOfGraphIsSkipped) {
    const Graph& g = parse(R"(<graph><edge/><node id="a"/></graph>)");
    EXPECT_EQ(ids(g.m_nodeList), (Reports{"a"}));
    EXPECT_EQ(log.reports(),
              (Reports{"ERROR alert Unknown element <edge> found under <graph>. Expected <node>, <link>.",
                       "INFO Unknown element <edge> found under <graph>. Expected <node>, <link>."}));
}

TEST_F(GraphSection, MissingDirectionIsTheEmptyText) {
    EXPECT_EQ(
        parse(R"(<graph><node id="a"/><link id="l" from="a" to="a"/></graph>)").m_linkList[0]->m_direction,
        "");
}

TEST_F(GraphSection, TwoGraphElementsFillOneGraphAndTheLaterIdStays) {
    const Graph& g =
        parse(R"(<graph id="first"><node id="a"/></graph><graph id="second"><node id="b"/></graph>)");
    EXPECT_EQ(g.m_id, "second");
    EXPECT_EQ(ids(g.m_nodeList), (Reports{"a", "b"}));
}

TEST_F(GraphSection, NodeWithoutIdIsAddedUnderNoText) {
    EXPECT_EQ(parse("<graph><node/></graph>").m_nodes.contains(""), true);
}

TEST_F(GraphSection, HundredThousandLevelsOfNestingAreReadAndReleased) {
    constexpr int depth = 100'000;
    std::string xml = "<graph>";
    for (int i = 0; i < depth; ++i)
        xml += "<node id=\"n" + std::to_string(i) + "\">";
    for (int i = 0; i < depth; ++i)
        xml += "</node>";
    const Graph& g = parse(xml + "</graph>");
    ASSERT_EQ(g.m_nodeList.size(), static_cast<std::size_t>(depth));
    EXPECT_EQ(g.m_nodeList.front()->m_id, "n" + std::to_string(depth - 1));
    EXPECT_EQ(g.m_nodeList.back()->m_id, "n0");
    const std::weak_ptr<tessera_1::view_model::Node> innermost = g.m_nodeList.front();
    parser.m_targetGraph = nullptr;
    graph = nullptr;
    EXPECT_TRUE(innermost.expired());
}

}  // namespace
}  // namespace tessera_test
