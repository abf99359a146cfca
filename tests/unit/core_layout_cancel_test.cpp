// Long passes are cancelled.
#include <gtest/gtest.h>

#include <string>

#include "core/data_provider.h"
#include "core/view_model/passes/layout_run.h"
#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::addDummyNodesForLabels;
using tessera_1::view_model::calculateHierarchicalLevels;
using tessera_1::view_model::LayoutRun;

// A root before a ring, whose chords make the walk through its layers a long one.
std::string ringDocument(int size) {
    std::string nodes;
    std::string links = "<link id='in' from='r' to='n0'/>";
    const auto link = [&links](int from, int to) {
        links += "<link id='l" + std::to_string(links.size()) + "' from='n" + std::to_string(from) +
                 "' to='n" + std::to_string(to) + "'/>";
    };
    for (int i = 0; i < size; ++i) {
        nodes += "<node id='n" + std::to_string(i) + "'/>";
        link(i, (i + 1) % size);
        if (i % 2 == 0) link(i, i * 7919 % size);
    }
    return "<v><diagram><graph id='g'><node id='r'/>" + nodes + links + "</graph><display/></diagram></v>";
}

// Sends requests to a handler whose "create" is cancelled at the given test of the progress sink.
struct LayoutCancelled : testing::TestWithParam<const char*> {
    static std::string answerOf(panelcore_1::IRequestHandler& handler, const std::string& name) {
        variant_bag_t in, out;
        in.add_variant_bag("mode").put("", "bandwidth");
        const error_code_t code = handler.handleRequest(name, in, out, nullptr);
        return std::string(code.name()) + jsonOf(out);
    }
};

// A document whose links between two groups need many thousand dummies.
std::string climbingDocument() {
    std::string nodes, links;
    for (int i = 0; i < 120; ++i) {
        const std::string number = std::to_string(i);
        nodes += "<node id='n" + number + "'/>";
        if (i > 0)
            links +=
                "<link id='c" + number + "' from='n" + std::to_string(i - 1) + "' to='n" + number + "'/>";
    }
    for (int i = 0; i < 200; ++i)
        links += "<link id='l" + std::to_string(i) + "' from='n0' to='t'/><link id='i" + std::to_string(i) +
                 "' from='n0' to='n119'/>";
    return "<v><diagram><graph id='g'><node id='G'>" + nodes + "</node><node id='H'><node id='t'/></node>" +
           links + "</graph><display/></diagram></v>";
}

TEST_P(LayoutCancelled, TheNextRequestWorksAsIfThePassesHadFinished) {
    LogCapture log;
    for (const std::string& document : {ringDocument(3'000), climbingDocument()}) {
        MemoryHost host(document);
        CountingProgress uncancelled;
        variant_bag_t whole;
        const auto finished = host.makeHandler();
        const std::size_t before = log.reports().size();
        ASSERT_TRUE(finished->handleRequest("create", {}, whole, &uncancelled).is_success());
        const std::size_t reports = log.reports().size() - before;
        const std::string expected = answerOf(*finished, GetParam());
        const int inPasses = uncancelled.calls() - 3;  // before the data, before and after the dump
        ASSERT_GT(inPasses, 1);
        for (const int look : {2, 3, 1 + inPasses}) {
            const std::size_t begin = log.reports().size();
            const auto handler = host.makeHandler();
            CountingProgress progress(look);
            variant_bag_t none;
            EXPECT_EQ(std::string(handler->handleRequest("create", {}, none, &progress).name()), "Cancelled");
            EXPECT_TRUE(none.is_empty());
            CountingProgress again(3);  // in the rest of the layout, or after it
            EXPECT_EQ(std::string(handler->handleRequest("refresh", {}, none, &again).name()), "Cancelled");
            EXPECT_EQ(answerOf(*handler, GetParam()), expected) << "cancelled at look " << look;
            EXPECT_EQ(log.reports().size() - begin, reports) << "each report is made once";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(NextRequest, LayoutCancelled,
                         testing::Values("create", "refresh", "changeDisplayMode"));

TEST(LayoutCancelledProvider, IsNotHandedOut) {
    const LogCapture log;
    MemoryHost host(climbingDocument());
    variant_bag_t config = host.base->config, out;
    CountingProgress progress(2);
    EXPECT_EQ(tessera_1::DataProvider::create(config, out, host.library, nullptr, host.inputData, &progress),
              nullptr);
    EXPECT_EQ(log.reports(), Names{});
}

struct LayoutCancelledInDummies : testing::Test, Diagram {
    LogCapture log;
};

TEST_F(LayoutCancelledInDummies, LinksAreNotSplitToTheEnd) {
    std::vector<NodePtr> all;
    for (int i = 0; i < 300; ++i)
        all.push_back(node(std::to_string(i)));
    chain(all);
    for (int i = 0; i < 100; ++i)
        link(all.front(), all.back());  // 298 dummies each
    ASSERT_TRUE(graph.calculateHierarchicalLevels().is_success());
    const CountingProgress progress(1);
    LayoutRun run;
    run.progress = &progress;
    EXPECT_TRUE(addDummyNodesForLabels(graph, run).is_false());
    EXPECT_TRUE(run.isCancelled);
    EXPECT_FALSE(run.isTruncated);
    EXPECT_EQ(progress.calls(), 1);
    EXPECT_LT(graph.m_nodeList.size(), 300U + 100U * 298U);
    EXPECT_EQ(log.reports(), Names{}) << "the caller has cancelled and knows";
}

// A complete graph whose links to far nodes come first: layering takes a step for every three nodes.
TEST_F(LayoutCancelledInDummies, LayersAreNotSweptToTheEnd) {
    std::vector<NodePtr> all;
    for (int i = 0; i < 230; ++i)
        all.push_back(node(std::to_string(1'000 + i)));
    for (std::size_t i = 0; i < all.size(); ++i)
        for (std::size_t j = all.size() - 1; j > i; --j)
            link(all[i], all[j]);
    const CountingProgress progress(1);
    LayoutRun run;
    run.progress = &progress;
    EXPECT_TRUE(calculateHierarchicalLevels(graph, run).is_false());
    EXPECT_TRUE(run.isCancelled);
    EXPECT_EQ(progress.calls(), 1);
    EXPECT_EQ(layers(), Layers{}) << "half a layering is not left";
    EXPECT_EQ(log.reports(), Names{});
    LayoutRun next;
    EXPECT_TRUE(calculateHierarchicalLevels(graph, next).is_success());
    EXPECT_EQ(layers().size(), all.size());
}

TEST_F(LayoutCancelledInDummies, SmallDiagramsAreNotPolledFor) {
    const NodePtr a = node("a"), b = node("b"), c = node("c");
    chain({a, b, c});
    link(a, c);
    const CountingProgress progress(1);
    LayoutRun run;
    run.progress = &progress;
    EXPECT_TRUE(calculateHierarchicalLevels(graph, run).is_success());
    EXPECT_TRUE(addDummyNodesForLabels(graph, run).is_success());
    EXPECT_EQ(progress.calls(), 0);
}

}  // namespace
}  // namespace tessera_test
