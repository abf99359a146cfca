// Ranks keep their distances, and the sum of lengths is the smallest.
#include "draw/placement/network_simplex.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace tessera_draw::placing {
namespace {

using Ranks = std::vector<std::int32_t>;

bool keepsDistances(const Ranks& ranks, const std::vector<RankEdge>& edges) {
    return std::all_of(edges.begin(), edges.end(), [&](const RankEdge& edge) {
        return ranks[edge.head] - ranks[edge.tail] >= edge.minLength;
    });
}

std::int64_t lengthOf(const Ranks& ranks, const std::vector<RankEdge>& edges) {
    std::int64_t sum = 0;
    for (const RankEdge& edge : edges)
        sum += std::int64_t{edge.weight} * (ranks[edge.head] - ranks[edge.tail]);
    return sum;
}

// The smallest sum of all ranks from 0 to `most`.
std::int64_t shortest(Index vertices, const std::vector<RankEdge>& edges, std::int32_t most) {
    Ranks ranks(vertices, 0);
    std::int64_t best = std::numeric_limits<std::int64_t>::max();
    for (;;) {
        if (keepsDistances(ranks, edges)) best = std::min(best, lengthOf(ranks, edges));
        std::size_t i = 0;
        while (i < ranks.size() && ranks[i] == most)
            ranks[i++] = 0;
        if (i == ranks.size()) return best;
        ++ranks[i];
    }
}

// Edges lead from smaller to greater numbers.
std::vector<RankEdge> randomEdges(std::mt19937& random, Index vertices, Index count, std::int32_t longest) {
    std::vector<RankEdge> edges;
    while (edges.size() < count) {
        const auto a = static_cast<Index>(random() % vertices);
        const auto b = static_cast<Index>(random() % vertices);
        if (a == b) continue;
        edges.push_back({std::min(a, b), std::max(a, b),
                         1 + static_cast<std::int32_t>(random() % static_cast<unsigned>(longest)),
                         static_cast<std::int32_t>(random() % 4)});
    }
    return edges;
}

TEST(DrawNetworkSimplex, APathHasOneRankForEach) {
    EXPECT_EQ(shortestRanks(3, {{0, 1, 1, 1}, {1, 2, 2, 1}}), (Ranks{0, 1, 3}));
    EXPECT_EQ(shortestRanks(0, {}), Ranks{});
    EXPECT_EQ(shortestRanks(2, {}), (Ranks{0, 0}));
}

// The longest path alone would leave 3 at rank 0, three ranks before 2.
TEST(DrawNetworkSimplex, SourcesStandNextToWhatTheyLeadTo) {
    EXPECT_EQ(shortestRanks(4, {{0, 1, 1, 1}, {1, 2, 1, 1}, {3, 2, 1, 1}}), (Ranks{0, 1, 2, 1}));
}

TEST(DrawNetworkSimplex, HeavyEdgesAreShort) {
    // 1 may stand anywhere between 0 and 3.
    const std::vector<RankEdge> edges{{0, 1, 1, 1}, {1, 3, 1, 5}, {0, 2, 3, 1}, {2, 3, 1, 1}};
    EXPECT_EQ(shortestRanks(4, edges), (Ranks{0, 3, 3, 4}));
}

TEST(DrawNetworkSimplex, TheSumOfLengthsIsTheSmallest) {
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i) {
        const auto vertices = static_cast<Index>(2 + random() % 4);
        const std::vector<RankEdge> edges =
            randomEdges(random, vertices, static_cast<Index>(1 + random() % 8), 2);
        const Ranks ranks = shortestRanks(vertices, edges);
        ASSERT_TRUE(keepsDistances(ranks, edges)) << i;
        EXPECT_EQ(lengthOf(ranks, edges), shortest(vertices, edges, 8)) << i;
    }
}

TEST(DrawNetworkSimplex, EveryPartBeginsAtZero) {
    const Ranks ranks = shortestRanks(5, {{1, 0, 1, 1}, {4, 3, 1, 1}, {3, 2, 1, 1}});
    EXPECT_EQ(ranks, (Ranks{1, 0, 2, 1, 0}));
}

// What the bound on work leaves is still a ranking.
TEST(DrawNetworkSimplex, LargeGraphsKeepTheirDistances) {
    std::mt19937 random(11);
    std::vector<RankEdge> edges = randomEdges(random, 20'000, 40'000, 3);
    EXPECT_TRUE(keepsDistances(shortestRanks(20'000, edges), edges));
    edges.clear();
    for (Index i = 1; i < 100'000; ++i)
        edges.push_back({i - 1, i, 1, 1});
    edges.push_back({0, 99'999, 1, 1});
    EXPECT_EQ(shortestRanks(100'000, edges).back(), 99'999);
    // A hub between many.
    edges.clear();
    for (Index i = 1; i < 100'000; ++i)
        edges.push_back(i % 2 == 0 ? RankEdge{0, i, 1, 1} : RankEdge{i, 0, 1, 1});
    const Ranks ranks = shortestRanks(100'000, edges);
    EXPECT_EQ(lengthOf(ranks, edges), 99'999);
}

}  // namespace
}  // namespace tessera_draw::placing
