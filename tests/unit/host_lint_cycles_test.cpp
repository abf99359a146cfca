// Which links form cycles, and the messages about them: one finder and one reporter for all callers.
#include <gtest/gtest.h>

#include "host/document/viewpoint.h"
#include "host/lint/cycles/cycle_finder.h"
#include "host/lint/cycles/cycle_report.h"
#include "host/lint/document_check.h"
#include "host/lint/reversal/acyclic_viewpoint.h"
#include "tests/support/memory_host.h"

namespace tessera_host {
namespace {

using relay2::severity_t;
using tessera_support::CancelSource;
using tessera_support::CancelToken;

Viewpoint::Pointer viewpointOf(const std::string& graph) {
    return *Viewpoint::fromBag(tessera_test::bagOf("<v><diagram><graph>" + graph + "</graph></diagram></v>"),
                               "x.xml", CancelToken());
}

std::string link(const std::string& id, const std::string& from, const std::string& to) {
    return "<link id='" + id + "' from='" + from + "' to='" + to + "'/>\n";
}

const std::string nodes =
    "<node id='a'/><node id='b'/><node id='G'><node id='c'/><node id='d'/></node><node id='e'/>\n";

TEST(CycleFinder, FindsComponentsOfGroupsAndLoops) {
    const auto viewpoint =
        viewpointOf(nodes + link("1", "a", "b") + link("2", "c", "a") + link("3", "b", "d") +
                    link("4", "c", "d") + link("5", "d", "c") + link("6", "e", "e") + link("7", "b", "e"));
    const CyclicLinks cyclic = findCyclicLinks(viewpoint->structure(), CancelToken());
    ASSERT_EQ(cyclic.components.size(), 2U);
    // a, b and the group of c and d.
    EXPECT_EQ(cyclic.components[0].group, DocumentStructure::topLevel);
    EXPECT_EQ(cyclic.components[0].nodes, (std::vector<std::size_t>{1, 2, 3}));
    EXPECT_EQ(cyclic.components[0].links, (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(cyclic.components[1].group, 3U);
    EXPECT_EQ(cyclic.components[1].links, (std::vector<std::size_t>{3, 4}));
    ASSERT_EQ(cyclic.loops.size(), 1U);
    EXPECT_EQ(cyclic.loops[0].link, 5U);
    EXPECT_EQ(cyclic.loops[0].node, 6U);
}

TEST(CycleFinder, OriginIsANodeWithoutIncomingLinksThatLeadsThere) {
    const std::string cycle = link("1", "a", "b") + link("2", "b", "a");
    const auto originOf = [](const std::string& graph) {
        return findCyclicLinks(viewpointOf(graph)->structure(), CancelToken()).components.at(0).origin;
    };
    EXPECT_EQ(originOf(nodes + cycle), DocumentStructure::none);
    EXPECT_EQ(originOf(nodes + cycle + link("3", "b", "e")), DocumentStructure::none);
    EXPECT_EQ(originOf(nodes + cycle + link("3", "e", "c") + link("4", "d", "b")), 6U);
}

// The check and the drawing name the same cycle in the same words; only what they add to it differs.
TEST(CycleReport, CheckAndDrawingSayTheSame) {
    const auto viewpoint = viewpointOf(nodes + link("1", "a", "b") + link("2", "b", "a") +
                                       link("3", "c", "c") + link("4", "c", "G"));
    const CyclicLinks cyclic = findCyclicLinks(viewpoint->structure(), CancelToken());
    const auto check = reportCycles(viewpoint->structure(), cyclic, CycleReport::check, CancelToken());
    const auto drawing = reportCycles(viewpoint->structure(), cyclic, CycleReport::drawing, CancelToken());
    ASSERT_EQ(check.size(), 3U);
    // A picture draws a link between a group and what is inside it as any other.
    ASSERT_EQ(drawing.size(), 2U);
    const std::string cycle =
        "links \"1\" (line 2) and \"2\" (line 3) form a cycle at the top level: a -> b -> a; ";
    EXPECT_EQ(check[0].text, cycle + "no node without incoming links leads to it, so its nodes get no layer");
    EXPECT_EQ(drawing[0].text,
              cycle +
                  "pictures follow the links anyway; for the levels in the data, --acyclic reverses as few "
                  "links as possible");
    EXPECT_EQ(drawing[1].text,
              "link \"3\" from \"c\" to itself forms a cycle inside group \"G\": c -> c; "
              "reversing the link does not help");
    for (std::size_t i = 0; i < drawing.size(); ++i) {
        EXPECT_EQ(check[i].position, drawing[i].position);
        EXPECT_EQ(check[i].severity, severity_t::error);
        EXPECT_EQ(drawing[i].severity, severity_t::warning);
        const auto end = drawing[i].text.find(';');
        EXPECT_EQ(check[i].text.substr(0, end), drawing[i].text.substr(0, end));
    }
}

TEST(CycleReport, IsWhatTheCheckAndTheWarningsHold) {
    const auto viewpoint = viewpointOf(nodes + link("1", "a", "b") + link("2", "b", "a"));
    const CyclicLinks cyclic = findCyclicLinks(viewpoint->structure(), CancelToken());
    EXPECT_EQ(describeCycles(*viewpoint, CancelToken()),
              reportCycles(viewpoint->structure(), cyclic, CycleReport::drawing, CancelToken()));
    const auto problems = checkDocument(*viewpoint, {}, CancelToken());
    ASSERT_TRUE(problems);
    EXPECT_EQ(*problems, reportCycles(viewpoint->structure(), cyclic, CycleReport::check, CancelToken()));
}

TEST(CycleReport, TheCheckReportsAllAndTheDrawingAFew) {
    std::string graph = nodes;
    for (int i = 0; i < 15; ++i)
        graph += link(std::to_string(i), "a", "a");
    const auto viewpoint = viewpointOf(graph);
    const CyclicLinks cyclic = findCyclicLinks(viewpoint->structure(), CancelToken());
    EXPECT_EQ(reportLoops(viewpoint->structure(), cyclic, CycleReport::check).size(), 15U);
    const auto few = reportLoops(viewpoint->structure(), cyclic, CycleReport::drawing);
    ASSERT_EQ(few.size(), maxCycleMessages + 1);
    EXPECT_EQ(few.back().text, "and 5 more links between a node and itself");
    EXPECT_EQ(few.back().position.line, 0U);
}

TEST(CycleReport, LongCyclesAreShortened) {
    std::string graph;
    for (int i = 0; i < 100; ++i)
        graph += "<node id='n" + std::to_string(i) + "'/>";
    for (int i = 0; i < 100; ++i)
        graph += "<link id='" + std::to_string(i) + "' from='n" + std::to_string(i) + "' to='n" +
                 std::to_string((i + 1) % 100) + "'/>";
    const auto viewpoint = viewpointOf(graph);
    const auto messages = describeCycles(*viewpoint, CancelToken());
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].text,
              "links \"0\" (line 1), \"1\" (line 1), \"2\" (line 1), \"3\" (line 1), \"4\" (line 1), \"5\" "
              "(line 1), "
              "\"6\" (line 1), \"7\" (line 1) and 92 more form a cycle at the top level: n0 -> n1 -> n2 -> "
              "n3 -> n4 -> "
              "n5 -> n6 -> n7 -> (92 more) -> n0; pictures follow the links anyway; for the levels in the "
              "data, --acyclic reverses as few links as possible");
}

}  // namespace
}  // namespace tessera_host
