// Passes that take long are asked to stop.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

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

TEST(LayoutCancelled, InAWalkThroughLayersNothingIsKeptAndTheNextCreateWorks) {
    LogCapture log;
    MemoryHost host(ringDocument(3'000));
    const auto handler = host.makeHandler();
    CountingProgress uncancelled;
    variant_bag_t out;
    ASSERT_TRUE(handler->handleRequest("create", {}, out, &uncancelled).is_success());
    const int calls = uncancelled.calls();
    ASSERT_GT(calls, 4) << "before the data, in the walk at least twice, before and after the dump";

    const auto cancelled = host.makeHandler();
    CountingProgress progress(3);
    variant_bag_t none;
    const error_code_t code = cancelled->handleRequest("create", {}, none, &progress);
    EXPECT_EQ(std::string(code.name()), "Cancelled");
    EXPECT_TRUE(none.is_empty());
    EXPECT_TRUE(cancelled->handleRequest("refresh", {}, none, nullptr).is_false()) << "there is no diagram";
    ASSERT_TRUE(cancelled->handleRequest("create", {}, none, nullptr).is_success());
    EXPECT_EQ(none, out);
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
    graph.m_progress = &progress;
    EXPECT_TRUE(graph.addDummyNodesForLabels().is_false());
    EXPECT_TRUE(graph.m_isCancelled);
    EXPECT_FALSE(graph.m_isCutShort);
    EXPECT_EQ(progress.calls(), 1);
    EXPECT_LT(graph.m_nodeList.size(), 300U + 100U * 298U);
    EXPECT_EQ(log.reports(), Names{}) << "whoever cancels knows";
}

TEST_F(LayoutCancelledInDummies, SmallDiagramsNeverAsk) {
    const NodePtr a = node("a"), b = node("b"), c = node("c");
    chain({a, b, c});
    link(a, c);
    const CountingProgress progress(1);
    graph.m_progress = &progress;
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_TRUE(graph.addDummyNodesForLabels().is_success());
    EXPECT_EQ(progress.calls(), 0);
}

}  // namespace
}  // namespace tessera_test
