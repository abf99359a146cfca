// Which arcs are turned around, held against the fewest possible.
#include "host/acyclic/feedback_arcs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

#include "host/acyclic/node_order.h"
#include "tests/support/effort.h"
#include "tests/support/memory_host.h"

namespace tessera_host {
namespace {

using Index = std::size_t;
using Order = std::vector<Index>;

// A circle through all nodes, and arcs between any two.
ArcGraph tangle(std::mt19937& random, Index nodes, Index chords) {
    Order circle(nodes);
    std::iota(circle.begin(), circle.end(), 0);
    std::shuffle(circle.begin(), circle.end(), random);
    std::vector<Arc> arcs;
    for (Index i = 0; i < nodes; ++i)
        arcs.push_back({circle[i], circle[(i + 1) % nodes]});
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

// Takes away what nothing enters until nothing is left.
bool isAcyclic(const ArcGraph& graph, const std::vector<bool>& isTurned) {
    std::vector<Index> entering(graph.nodeCount());
    std::vector<Order> next(graph.nodeCount());
    for (Index arc = 0; arc < graph.arcCount(); ++arc) {
        const auto [from, to] = graph[arc];
        next[isTurned[arc] ? to : from].push_back(isTurned[arc] ? from : to);
        ++entering[isTurned[arc] ? from : to];
    }
    Order free;
    for (Index node = 0; node < graph.nodeCount(); ++node)
        if (entering[node] == 0) free.push_back(node);
    for (Index i = 0; i < free.size(); ++i)
        for (const Index node : next[free[i]])
            if (--entering[node] == 0) free.push_back(node);
    return free.size() == graph.nodeCount();
}

bool isMinimal(const ArcGraph& graph, std::vector<bool> isTurned) {
    for (Index arc = 0; arc < graph.arcCount(); ++arc) {
        if (!isTurned[arc]) continue;
        isTurned[arc] = false;
        if (isAcyclic(graph, isTurned)) return false;
        isTurned[arc] = true;
    }
    return true;
}

// Of all orders there are.
Index fewestOfAllOrders(const ArcGraph& graph) {
    Order order(graph.nodeCount());
    std::iota(order.begin(), order.end(), 0);
    Index fewest = graph.arcCount();
    do
        fewest = std::min(fewest, backwardsIn(graph, order));
    while (std::next_permutation(order.begin(), order.end()));
    return fewest;
}

// The same for more nodes: each set of nodes may stand first, and each of the others behind it.
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
            Index& behind = fewest[first | Index{1} << node];
            behind = std::min(behind, backwards);
        }
    return fewest.back();
}

std::vector<Index> turnedAlone(const ArcGraph& graph) {
    Watch watch(nullptr);
    return feedbackArcs({&graph}, watch).front();
}

TEST(FeedbackArcs, FewestPossibleInSmallGraphs) {
    std::mt19937 random(1);
    for (int i = 0; i < 400; ++i) {
        const Index nodes = 2 + random() % 6;
        const ArcGraph graph = tangle(random, nodes, random() % (3 * nodes));
        const auto turned = turnedAlone(graph);
        ASSERT_EQ(turned.size(), fewestOfAllOrders(graph));
        ASSERT_TRUE(isAcyclic(graph, flagsOf(graph, turned)));
    }
    for (int i = 0; i < 100; ++i) {
        const ArcGraph graph = tangle(random, maxExactNodes, random() % 40);
        ASSERT_EQ(turnedAlone(graph).size(), fewestBackwards(graph));
    }
}

TEST(FeedbackArcs, NearTheFewestInGraphsTooLargeToTryAll) {
    std::mt19937 random(2);
    Index turned = 0;
    Index fewest = 0;
    for (int i = 0; i < 60; ++i) {
        const Index nodes = maxExactNodes + 1 + random() % 4;
        const ArcGraph graph = tangle(random, nodes, random() % (4 * nodes));
        const auto arcs = turnedAlone(graph);
        ASSERT_TRUE(isAcyclic(graph, flagsOf(graph, arcs)));
        turned += arcs.size();
        fewest += fewestBackwards(graph);
    }
    EXPECT_GE(turned, fewest);
    EXPECT_LE(turned * 100, fewest * 102);
    RecordProperty("turned", static_cast<int>(turned));
    RecordProperty("fewest", static_cast<int>(fewest));
}

TEST(FeedbackArcs, NoneIsTurnedForNothing) {
    std::mt19937 random(3);
    for (int i = 0; i < tessera_test::effort(300); ++i) {
        const Index nodes = 2 + random() % 60;
        const ArcGraph graph = tangle(random, nodes, random() % (4 * nodes));
        const auto turned = flagsOf(graph, turnedAlone(graph));
        ASSERT_TRUE(isAcyclic(graph, turned));
        ASSERT_TRUE(isMinimal(graph, turned));
    }
}

TEST(FeedbackArcs, OrdersHoldWhatTheyPromise) {
    std::mt19937 random(4);
    Watch watch(nullptr);
    for (int i = 0; i < 300; ++i) {
        const Index nodes = 2 + random() % 40;
        const ArcGraph graph = tangle(random, nodes, random() % (4 * nodes));
        const auto isOrder = [&](Order order) {
            std::sort(order.begin(), order.end());
            for (Index node = 0; node < nodes; ++node)
                if (order[node] != node) return false;
            return order.size() == nodes;
        };
        Order order = greedyOrder(graph, watch);
        ASSERT_TRUE(isOrder(order));
        Order sifted = siftedOrder(graph, order, watch);
        ASSERT_TRUE(isOrder(sifted));
        ASSERT_LE(backwardsIn(graph, sifted), backwardsIn(graph, order));
        Order reversed = reversedOrder(graph, sifted, watch);
        ASSERT_TRUE(isOrder(reversed));
        ASSERT_LE(backwardsIn(graph, reversed), backwardsIn(graph, sifted));
        const Order minimal = minimalOrder(graph, reversed, watch);
        ASSERT_TRUE(isOrder(minimal));
        ASSERT_LE(backwardsIn(graph, minimal), backwardsIn(graph, reversed));
    }
}

// Fewer than half of the arcs run backwards, by a sixth of the nodes: its authors prove that.
TEST(FeedbackArcs, GreedyOrderKeepsItsBound) {
    std::mt19937 random(5);
    Watch watch(nullptr);
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
        ASSERT_LE(6 * backwardsIn(graph, greedyOrder(graph, watch)) + joined, 3 * arcs.size());
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
    Watch watch(nullptr);
    const ArcGraph graph(count, arcs);
    const auto turned = turnedAlone(graph);
    EXPECT_EQ(turned.size(), count - 1);
    for (const Index arc : turned)
        ASSERT_EQ(graph[arc].to, 0U);
}

TEST(FeedbackArcs, LongCircleIsOpenedOnce) {
    constexpr Index count = 300'000;
    std::vector<Arc> arcs;
    for (Index i = 0; i < count; ++i)
        arcs.push_back({i, (i + 1) % count});
    EXPECT_EQ(turnedAlone(ArcGraph(count, arcs)).size(), 1U);
}

TEST(FeedbackArcs, LargeTanglesInLittleTime) {
    std::mt19937 random(6);
    constexpr Index nodes = tessera_test::effort(100'000);
    const ArcGraph graph = tangle(random, nodes, 2 * nodes);
    const auto turned = turnedAlone(graph);
    EXPECT_TRUE(isAcyclic(graph, flagsOf(graph, turned)));
    EXPECT_LT(turned.size(), graph.arcCount() / 4);
    EXPECT_EQ(turned, turnedAlone(graph));
}

TEST(FeedbackArcs, CanBeInterruptedAnywhere) {
    std::mt19937 random(8);
    const ArcGraph graph = tangle(random, 1'000, 3'000);
    tessera_test::CountingProgress all;
    Watch unhurried(&all);
    (void)feedbackArcs({&graph}, unhurried);
    ASSERT_GT(all.calls(), 20);
    for (int call = 1; call < all.calls(); call += 1 + call / 7) {
        tessera_test::CountingProgress progress(call);
        Watch watch(&progress);
        (void)feedbackArcs({&graph}, watch);
        ASSERT_TRUE(watch.mustStopNow());
        ASSERT_LE(progress.calls(), call + 2);
    }
}

}  // namespace
}  // namespace tessera_host
