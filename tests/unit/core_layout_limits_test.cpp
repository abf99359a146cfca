// Diagrams that would grow too large.
#include <gtest/gtest.h>

#include <string>

#include "core/layout_watch.h"
#include "core/view_model/passes/layout_run.h"
#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

// A chain of ten nodes, and a link from the first to the last that needs eight dummies.
struct LayoutLimitsOfAGraph : testing::Test, Diagram {
    LayoutLimitsOfAGraph() {
        std::vector<NodePtr> all;
        for (int i = 0; i < 10; ++i)
            all.push_back(node(std::to_string(i)));
        chain(all);
        longLink = link(all.front(), all.back());
        longLink->m_id = "the long one";
        EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    }
    std::size_t elements() const { return graph.m_nodeList.size() + graph.m_linkList.size(); }
    // Expects that the pass stopped with one report, which names the link and the limit.
    void expectStop(const std::string& limit) {
        EXPECT_TRUE(tessera_1::view_model::addDummyNodesForLabels(graph, run).is_false());
        const auto reports = log.reports();
        ASSERT_EQ(reports.size(), 2U) << "an alert, and its message once more";
        ASSERT_TRUE(reports[0].starts_with("ERROR alert "));
        const std::string message = reports[0].substr(std::string("ERROR alert ").size());
        EXPECT_EQ(reports[1], "INFO " + message);
        EXPECT_NE(message.find("<the long one>"), std::string::npos) << message;
        EXPECT_NE(message.find(limit), std::string::npos) << message;
    }

    LogCapture log;
    LinkPtr longLink;
    tessera_1::view_model::LayoutRun run;
};

TEST_F(LayoutLimitsOfAGraph, WithinTheLimitsTheLinkGetsAllItsDummies) {
    run.limits.maxElements = elements() + 16;  // a node and a link each
    EXPECT_TRUE(tessera_1::view_model::addDummyNodesForLabels(graph, run).is_success());
    EXPECT_EQ(graph.m_nodeList.size(), 18U);
    EXPECT_EQ(log.reports(), Names{});
}

TEST_F(LayoutLimitsOfAGraph, OneElementTooManyStopsThePassAndWhatIsThereStays) {
    run.limits.maxElements = elements() + 15;
    expectStop(std::to_string(elements() + 15));
    EXPECT_EQ(graph.m_nodeList.size(), 17U) << "the last of eight exceeds the limit";
    EXPECT_EQ(longLink->m_from->m_hierarchicalLevel, 0);
    EXPECT_EQ(longLink->m_to->m_hierarchicalLevel, 2) << "what is left of the link skips one layer";
}

TEST_F(LayoutLimitsOfAGraph, WithoutSpaceForOneDummyNothingChanges) {
    run.limits.maxElements = elements();
    expectStop(std::to_string(elements()));
    EXPECT_EQ(elements(), 20U);
    EXPECT_EQ(endsOf(*longLink), "0>9");
}

TEST_F(LayoutLimitsOfAGraph, IdsMayNotGrowWithoutEndEither) {
    // The ids of the chain take 76 bytes, each dummy and its link 20, 36, 52 and so on.
    run.limits.maxIdBytes = 150;
    expectStop("150 bytes");
    std::size_t bytes = 0;
    for (const auto& each : graph.m_nodeList)
        bytes += each->m_id.size();
    for (const auto& each : graph.m_linkList)
        bytes += each->m_id.size();
    EXPECT_LE(bytes, 150U);
    EXPECT_GT(graph.m_nodeList.size(), 10U);
}

TEST_F(LayoutLimitsOfAGraph, LinkBetweenGroupsStopsAsWell) {
    const NodePtr g = node("g"), x = node("x", g), y = node("y", g), z = node("z", g);
    chain({x, y, z});
    longLink = link(x, graph.m_nodeList.front());
    longLink->m_id = "the long one";
    graph.clearHierarchicalLevelManagers();
    graph.createDummyLinksForGroups();
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    // Space for the eight dummies inside the top level and one of the two that leaving g takes.
    run.limits.maxElements = elements() + 18;
    expectStop(std::to_string(elements() + 18));
    EXPECT_EQ(endsOf(*longLink), "x>0_x_dummy");
    EXPECT_EQ(graph.m_levelManagers[g].m_levels[1]->back()->m_id, "0_x_dummy");
}

// A chain of ten nodes and a link past all of them, as a document.
std::string longLinkDocument() {
    std::string text = "<v><diagram><graph id='g'>";
    for (int i = 0; i < 10; ++i)
        text += "<node id='n" + std::to_string(i) + "'/>";
    for (int i = 1; i < 10; ++i)
        text += "<link id='l" + std::to_string(i) + "' from='n" + std::to_string(i - 1) + "' to='n" +
                std::to_string(i) + "'/>";
    return text + "<link id='long' from='n0' to='n9'/></graph><display/></diagram></v>";
}

// Keeps what the last stage said.
class LastStage final : public tessera_1::ILayoutWatcher {
  public:
    bool stageEnded(const tessera_1::LayoutStage& stage) override {
        names.push_back(stage.name);
        isTruncated = stage.isTruncated;
        elements = stage.graph.m_nodeList.size() + stage.graph.m_linkList.size();
        return true;
    }
    std::vector<std::string> names;
    bool isTruncated = false;
    std::size_t elements = 0;
};

TEST(LayoutOptionsOfAHandler, AreItsOwnWhateverOthersHave) {
    LogCapture log;
    MemoryHost host(longLinkDocument());
    LastStage limited, unlimited;
    const auto first = host.makeHandler({{30, tessera_1::LayoutLimits::none}, &limited});
    const auto second = host.makeHandler({{}, &unlimited});
    variant_bag_t out;
    EXPECT_TRUE(first->handleRequest("create", {}, out, nullptr).is_success());
    EXPECT_EQ(log.reports().size(), 2U) << "the alert of the limit";
    EXPECT_TRUE(second->handleRequest("create", {}, out, nullptr).is_success());
    EXPECT_EQ(log.reports().size(), 2U);
    EXPECT_EQ(limited.names, tessera_1::layoutStages());
    EXPECT_EQ(unlimited.names, tessera_1::layoutStages());
    EXPECT_TRUE(limited.isTruncated);
    EXPECT_FALSE(unlimited.isTruncated);
    EXPECT_EQ(limited.elements, 30U);
    EXPECT_EQ(unlimited.elements, 10U + 10U + 2U * 8U);
}

TEST(LayoutOptionsOfAHandler, WithoutOptionsThereAreNoLimitsAndNoReports) {
    LogCapture log;
    MemoryHost host(longLinkDocument());
    variant_bag_t out;
    EXPECT_TRUE(host.makeHandler()->handleRequest("create", {}, out, nullptr).is_success());
    EXPECT_EQ(log.reports(), Names{});
    const tessera_1::LayoutLimits limits;
    EXPECT_EQ(limits.maxElements, tessera_1::LayoutLimits::none);
    EXPECT_EQ(limits.maxIdBytes, tessera_1::LayoutLimits::none);
}

}  // namespace
}  // namespace tessera_test
