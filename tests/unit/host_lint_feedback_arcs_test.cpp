// Which arcs are reversed, compared with the fewest possible.
#include "host/lint/feedback/feedback_arcs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <thread>

#include "host/lint/feedback/node_order.h"
#include "tests/support/cpu_time.h"
#include "tests/support/effort.h"

namespace tessera_host {
namespace {

using tessera_support::CancelSource;
using tessera_support::CancelToken;
using Index = std::size_t;
using Order = std::vector<Index>;

// A cycle through all nodes, and arcs between any two.
ArcGraph cyclicGraph(std::mt19937& random, Index nodes, Index chords) {
    Order cycle(nodes);
    std::iota(cycle.begin(), cycle.end(), 0);
    std::shuffle(cycle.begin(), cycle.end(), random);
    std::vector<Arc> arcs;
    for (Index i = 0; i < nodes; ++i)
        arcs.push_back({cycle[i], cycle[(i + 1) % nodes]});
    for (Index i = 0; i < chords; ++i)
        arcs.push_back({i % nodes, (i % nodes + 1 + random() % (nodes - 1)) % nodes});
    std::shuffle(arcs.begin(), arcs.end(), random);
    return ArcGraph(nodes, arcs);
}

std::vector<bool> flagsOf(const ArcGraph& graph, const std::vector<Index>& arcs) {
    std::vector<bool> flags(graph.arcCount());
    for (const Index arc : arcs)
        flags[arc] = true;
    return flags;
}

Index backwardsIn(const ArcGraph& graph, const Order& order) {
    Order place(order.size());
    for (Index i = 0; i < order.size(); ++i)
        place[order[i]] = i;
    Index count = 0;
    for (Index arc = 0; arc < graph.arcCount(); ++arc)
        count += place[graph[arc].to] < place[graph[arc].from] ? 1 : 0;
    return count;
}

// Removes nodes that no arc enters until none is left.
bool isAcyclic(const ArcGraph& graph, const std::vector<bool>& isReversed) {
    std::vector<Index> entering(graph.nodeCount());
    std::vector<Order> next(graph.nodeCount());
    for (Index arc = 0; arc < graph.arcCount(); ++arc) {
        const auto [from, to] = graph[arc];
        next[isReversed[arc] ? to : from].push_back(isReversed[arc] ? from : to);
        ++entering[isReversed[arc] ? from : to];
    }
    Order free;
    for (Index node = 0; node < graph.nodeCount(); ++node)
        if (entering[node] == 0) free.push_back(node);
    for (Index i = 0; i < free.size(); ++i)
        for (const Index node : next[free[i]])
            if (--entering[node] == 0) free.push_back(node);
    return free.size() == graph.nodeCount();
}

bool isMinimal(const ArcGraph& graph, std::vector<bool> isReversed) {
    for (Index arc = 0; arc < graph.arcCount(); ++arc) {
        if (!isReversed[arc]) continue;
        isReversed[arc] = false;
        if (isAcyclic(graph, isReversed)) return false;
        isReversed[arc] = true;
    }
    return true;
}

// The minimum over all orders.
Index fewestOfAllOrders(const ArcGraph& graph) {
    Order order(graph.nodeCount());
    std::iota(order.begin(), order.end(), 0);
    Index fewest = graph.arcCount();
    do
        fewest = std::min(fewest, backwardsIn(graph, order));
    while (std::next_permutation(order.begin(), order.end()));
    return fewest;
}

// The same for more nodes: any set of nodes may come first, and any of the others after it.
Index fewestBackwards(const ArcGraph& graph) {
    const Index count = graph.nodeCount();
    std::vector<Order> between(count, Order(count));
    for (Index arc = 0; arc < graph.arcCount(); ++arc)
        ++between[graph[arc].from][graph[arc].to];
    std::vector<Index> fewest(Index{1} << count, graph.arcCount());
    fewest[0] = 0;
    for (Index first = 0; first + 1 < fewest.size(); ++first)
        for (Index node = 0; node < count; ++node) {
            if ((first >> node & 1U) != 0) continue;
            Index backwards = fewest[first];
            for (Index other = 0; other < count; ++other)
                if ((first >> other & 1U) != 0) backwards += between[node][other];
            Index& extended = fewest[first | Index{1} << node];
            extended = std::min(extended, backwards);
        }
    return fewest.back();
}

std::vector<Index> reversedIn(const ArcGraph& graph) {
    const CancelToken token;
    return feedbackArcs({&graph}, token).front();
}

TEST(FeedbackArcs, FewestPossibleInSmallGraphs) {
    std::mt19937 random(1);
    for (int i = 0; i < 400; ++i) {
        const Index nodes = 2 + random() % 6;
        const ArcGraph graph = cyclicGraph(random, nodes, random() % (3 * nodes));
        const auto reversed = reversedIn(graph);
        ASSERT_EQ(reversed.size(), fewestOfAllOrders(graph));
        ASSERT_TRUE(isAcyclic(graph, flagsOf(graph, reversed)));
    }
    for (int i = 0; i < 100; ++i) {
        const ArcGraph graph = cyclicGraph(random, maxExactNodes, random() % 40);
        ASSERT_EQ(reversedIn(graph).size(), fewestBackwards(graph));
    }
}

TEST(FeedbackArcs, NearTheFewestInGraphsTooLargeToTryAll) {
    std::mt19937 random(2);
    Index reversed = 0;
    Index fewest = 0;
    for (int i = 0; i < 60; ++i) {
        const Index nodes = maxExactNodes + 1 + random() % 4;
        const ArcGraph graph = cyclicGraph(random, nodes, random() % (4 * nodes));
        const auto arcs = reversedIn(graph);
        ASSERT_TRUE(isAcyclic(graph, flagsOf(graph, arcs)));
        reversed += arcs.size();
        fewest += fewestBackwards(graph);
    }
    EXPECT_GE(reversed, fewest);
    EXPECT_LE(reversed * 100, fewest * 102);
    RecordProperty("reversed", static_cast<int>(reversed));
    RecordProperty("fewest", static_cast<int>(fewest));
}

TEST(FeedbackArcs, NoneIsReversedInVain) {
    std::mt19937 random(3);
    for (int i = 0; i < tessera_test::effort(300); ++i) {
        const Index nodes = 2 + random() % 60;
        const ArcGraph graph = cyclicGraph(random, nodes, random() % (4 * nodes));
        const auto reversed = flagsOf(graph, reversedIn(graph));
        ASSERT_TRUE(isAcyclic(graph, reversed));
        ASSERT_TRUE(isMinimal(graph, reversed));
    }
}

TEST(FeedbackArcs, OrdersHoldWhatTheyPromise) {
    std::mt19937 random(4);
    const CancelToken token;
    for (int i = 0; i < 300; ++i) {
        const Index nodes = 2 + random() % 40;
        const ArcGraph graph = cyclicGraph(random, nodes, random() % (4 * nodes));
        const auto isOrder = [&](Order order) {
            std::sort(order.begin(), order.end());
            for (Index node = 0; node < nodes; ++node)
                if (order[node] != node) return false;
            return order.size() == nodes;
        };
        Order order = greedyOrder(graph, token);
        ASSERT_TRUE(isOrder(order));
        Order sifted = siftedOrder(graph, order, token);
        ASSERT_TRUE(isOrder(sifted));
        ASSERT_LE(backwardsIn(graph, sifted), backwardsIn(graph, order));
        Order reversed = reversedOrder(graph, sifted, token);
        ASSERT_TRUE(isOrder(reversed));
        ASSERT_LE(backwardsIn(graph, reversed), backwardsIn(graph, sifted));
        const Order minimal = minimalOrder(graph, reversed, token);
        ASSERT_TRUE(isOrder(minimal));
        ASSERT_LE(backwardsIn(graph, minimal), backwardsIn(graph, reversed));
    }
}

// Fewer than half of the arcs run backwards, by a sixth of the nodes: the algorithm is proven to reach that.
TEST(FeedbackArcs, GreedyOrderKeepsItsBound) {
    std::mt19937 random(5);
    const CancelToken token;
    for (int i = 0; i < 300; ++i) {
        const Index nodes = 3 + random() % 40;
        std::vector<Arc> arcs;  // at most one between two nodes: so it is proven
        for (Index a = 0; a < nodes; ++a)
            for (Index b = 0; b < a; ++b)
                if (random() % 4 == 0) arcs.push_back(random() % 2 == 0 ? Arc{a, b} : Arc{b, a});
        const ArcGraph graph(nodes, arcs);
        std::vector<bool> isJoined(nodes);
        for (const Arc& arc : arcs)
            isJoined[arc.from] = isJoined[arc.to] = true;
        const auto joined = static_cast<Index>(std::count(isJoined.begin(), isJoined.end(), true));
        ASSERT_LE(6 * backwardsIn(graph, greedyOrder(graph, token)) + joined, 3 * arcs.size());
    }
}

TEST(FeedbackArcs, HubsAndParallelArcs) {
    constexpr Index count = 100'000;
    std::vector<Arc> arcs;
    for (Index i = 1; i < count; ++i) {  // twice from the hub, once back to it
        arcs.push_back({0, i});
        arcs.push_back({i, 0});
        arcs.push_back({0, i});
    }
    const CancelToken token;
    const ArcGraph graph(count, arcs);
    const auto reversed = reversedIn(graph);
    EXPECT_EQ(reversed.size(), count - 1);
    for (const Index arc : reversed)
        ASSERT_EQ(graph[arc].to, 0U);
}

TEST(FeedbackArcs, LongCycleIsOpenedOnce) {
    constexpr Index count = 300'000;
    std::vector<Arc> arcs;
    for (Index i = 0; i < count; ++i)
        arcs.push_back({i, (i + 1) % count});
    EXPECT_EQ(reversedIn(ArcGraph(count, arcs)).size(), 1U);
}

TEST(FeedbackArcs, LargeComponentsInLittleTime) {
    std::mt19937 random(6);
    constexpr Index nodes = tessera_test::effort(100'000);
    const ArcGraph graph = cyclicGraph(random, nodes, 2 * nodes);
    const auto reversed = reversedIn(graph);
    EXPECT_TRUE(isAcyclic(graph, flagsOf(graph, reversed)));
    EXPECT_LT(reversed.size(), graph.arcCount() / 4);
    EXPECT_EQ(reversed, reversedIn(graph));
}

TEST(FeedbackArcs, ACancelledTokenEndsTheSearch) {
    std::mt19937 random(8);
    const ArcGraph graph = cyclicGraph(random, 20'000, 60'000);
    CancelSource source;
    const auto begin = tessera_test::threadCpuTime();
    (void)feedbackArcs({&graph}, source.token());
    const auto whole = tessera_test::threadCpuTime() - begin;
    source.cancel();
    const auto again = tessera_test::threadCpuTime();
    (void)feedbackArcs({&graph}, source.token());
    EXPECT_LT(tessera_test::threadCpuTime() - again, whole / 5);
}

// Whenever it comes, the search ends soon.
TEST(FeedbackArcs, CanBeCancelledAtAnyTime) {
    std::mt19937 random(8);
    const ArcGraph graph = cyclicGraph(random, 1'000, 3'000);
    for (int milliseconds = 0; milliseconds < 20; milliseconds += 3) {
        CancelSource source;
        std::thread canceller([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            source.cancel();
        });
        (void)feedbackArcs({&graph}, source.token());
        canceller.join();
    }
}

}  // namespace
}  // namespace tessera_host
