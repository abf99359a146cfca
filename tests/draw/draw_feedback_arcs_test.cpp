// Which lines run back when links form cycles.
#include "draw/placement/feedback_arcs.h"

#include <gtest/gtest.h>

#include <random>
#include <utility>
#include <vector>

namespace tessera_draw::placing {
namespace {

using Marks = std::vector<char>;

bool isAcyclic(Index vertices, std::vector<Arc> arcs, const Marks& isReversed) {
    std::vector<Index> in(vertices, 0);
    for (std::size_t i = 0; i < arcs.size(); ++i) {
        if (isReversed[i] != 0) std::swap(arcs[i].from, arcs[i].to);
        ++in[arcs[i].to];
    }
    std::vector<Index> ready;
    for (Index vertex = 0; vertex < vertices; ++vertex)
        if (in[vertex] == 0) ready.push_back(vertex);
    for (std::size_t i = 0; i < ready.size(); ++i)
        for (const Arc& arc : arcs)
            if (arc.from == ready[i] && --in[arc.to] == 0) ready.push_back(arc.to);
    return ready.size() == vertices;
}

TEST(DrawFeedbackArcs, WithoutCyclesNoneIsReversed) {
    EXPECT_EQ(feedbackArcs(3, {{2, 1}, {1, 0}, {2, 0}}), (Marks{0, 0, 0}));
    EXPECT_EQ(feedbackArcs(0, {}), Marks{});
}

TEST(DrawFeedbackArcs, OfARingOneIsReversed) {
    EXPECT_EQ(feedbackArcs(3, {{0, 1}, {1, 2}, {2, 0}}), (Marks{0, 0, 1}));
    EXPECT_EQ(feedbackArcs(2, {{1, 0}, {0, 1}}), (Marks{1, 0})) << "the first vertex comes first";
}

TEST(DrawFeedbackArcs, AnArcToItselfIsLeftAlone) {
    EXPECT_EQ(feedbackArcs(2, {{0, 0}, {0, 1}, {1, 1}}), (Marks{0, 0, 0}));
}

// What nothing leads to comes first, wherever it is written.
TEST(DrawFeedbackArcs, TheSearchBeginsAtSources) {
    EXPECT_EQ(feedbackArcs(4, {{0, 1}, {1, 2}, {2, 0}, {3, 1}}), (Marks{1, 0, 0, 0}));
}

TEST(DrawFeedbackArcs, NoCycleIsLeftAndNoneIsReversedNeedlessly) {
    std::mt19937 random(3);
    for (int i = 0; i < 300; ++i) {
        const auto vertices = static_cast<Index>(2 + random() % 12);
        std::vector<Arc> arcs;
        for (auto k = random() % 40; k > 0; --k) {
            const auto from = static_cast<Index>(random() % vertices);
            arcs.push_back({from, static_cast<Index>((from + 1 + random() % (vertices - 1)) % vertices)});
        }
        const Marks isReversed = feedbackArcs(vertices, arcs);
        EXPECT_TRUE(isAcyclic(vertices, arcs, isReversed)) << i;
        // Each one closes a cycle again.
        for (std::size_t k = 0; k < arcs.size(); ++k) {
            Marks one = isReversed;
            one[k] = 0;
            EXPECT_TRUE(isReversed[k] == 0 || !isAcyclic(vertices, arcs, one)) << i;
        }
    }
}

}  // namespace
}  // namespace tessera_draw::placing
