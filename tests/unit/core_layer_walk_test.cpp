// The shortened walk through layers, compared with one that sweeps them all.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <utility>
#include <vector>

#include "core/view_model/passes/layer_walk.h"
#include "core/view_model/passes/plain_walk.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::LayerGraph;
using tessera_1::view_model::Layers;
using tessera_1::view_model::WalkBudget;
using tessera_1::view_model::WalkedLayers;
using tessera_1::view_model::walkLayers;
using tessera_1::view_model::walkPlainly;
using Number = std::uint32_t;
using Children = std::vector<std::vector<Number>>;

LayerGraph layerGraph(const Children& children, const std::vector<Number>& roots) {
    LayerGraph graph;
    graph.childrenStart.push_back(0);
    for (const auto& each : children) {
        graph.children.insert(graph.children.end(), each.begin(), each.end());
        graph.childrenStart.push_back(static_cast<Number>(graph.children.size()));
    }
    graph.roots = roots;
    return graph;
}

// Every sweep in full, with placeholders. Empty layers at the end are there in a walk that has moved all of
// their nodes away.
Layers sweepAll(const Children& children, const std::vector<Number>& roots, Number lastLayer) {
    std::vector<std::vector<std::optional<Number>>> layers;
    std::vector<int> levels(children.size(), -1);
    Layers out;
    const auto put = [&](Number node, std::size_t level) {
        if (levels[node] == static_cast<int>(level)) return;
        if (levels[node] >= 0)
            for (auto& entry : layers[static_cast<std::size_t>(levels[node])])
                if (entry == node) entry.reset();
        if (layers.size() <= level) layers.resize(level + 1);
        layers[level].emplace_back(node);
        levels[node] = static_cast<int>(level);
    };
    for (const Number root : roots)
        put(root, 0);
    for (std::size_t level = 0; level < layers.size() && !out.isBroken; ++level) {
        const std::size_t size = layers[level].size();
        for (std::size_t i = 0; i < size && !out.isBroken; ++i) {
            const auto node = layers[level][i];
            if (!node) continue;
            for (const Number child : children[*node]) {
                if (level == lastLayer) {
                    out.isBroken = true;
                    break;
                }
                put(child, level + 1);
            }
        }
    }
    for (const auto& layer : layers) {
        out.nodes.emplace_back();
        for (const auto& node : layer)
            if (node) out.nodes.back().push_back(*node);
    }
    return out;
}

// Nodes without a parent, in order.
std::vector<Number> rootsOf(const Children& children) {
    std::vector<bool> hasParent(children.size(), false);
    for (const auto& each : children)
        for (const Number child : each)
            hasParent[child] = true;
    std::vector<Number> roots;
    for (Number node = 0; node < children.size(); ++node)
        if (!hasParent[node]) roots.push_back(node);
    return roots;
}

Children randomChildren(std::mt19937_64& random, bool isAcyclic) {
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    Children children(1 + below(14));
    const std::size_t links = below(3 * children.size());
    // The ids do not order the nodes; a shuffled order keeps the links from forming cycles.
    std::vector<Number> order(children.size());
    for (Number i = 0; i < order.size(); ++i)
        order[i] = i;
    std::shuffle(order.begin(), order.end(), random);
    for (std::size_t i = 0; i < links; ++i) {
        std::size_t from = below(order.size());
        std::size_t to = below(order.size());
        if (isAcyclic && from >= to) continue;
        if (order.size() > 3 && below(3) > 0 && to == 0) to = 1;  // some node is to be a root
        auto& all = children[order[from]];
        if (std::find(all.begin(), all.end(), order[to]) == all.end()) all.push_back(order[to]);
    }
    return children;
}

void expectSame(const Children& children, Number lastLayer, const std::string& what) {
    const auto roots = rootsOf(children);
    const Layers expected = sweepAll(children, roots, lastLayer);
    const Layers layers = walkLayers(layerGraph(children, roots), lastLayer);
    ASSERT_EQ(layers.isBroken, expected.isBroken) << what;
    ASSERT_EQ(layers.nodes, expected.nodes) << what;
}

TEST(LayerWalk, WithoutRootsThereIsNoLayer) {
    const Layers layers = walkLayers(layerGraph({{1}, {0}}, {}), 10);
    EXPECT_TRUE(layers.nodes.empty());
    EXPECT_FALSE(layers.isBroken);
}

TEST(LayerWalk, NodeBelowTwoWaysStandsBelowTheLongerOne) {
    const Layers layers = walkLayers(layerGraph({{1, 2}, {2}, {}}, {0}), 3);
    EXPECT_EQ(layers.nodes, (std::vector<std::vector<Number>>{{0}, {1}, {2}}));
    EXPECT_FALSE(layers.isBroken);
}

TEST(LayerWalk, CycleOfTwoAlternatesDownToTheLastLayer) {
    for (const Number last : {4U, 5U, 100'000U}) {
        const Layers layers = walkLayers(layerGraph({{1}, {2}, {1}}, {0}), last);
        EXPECT_TRUE(layers.isBroken);
        ASSERT_EQ(layers.nodes.size(), last + 1);
        // The ring's first node is in the odd layers.
        EXPECT_EQ(layers.nodes[last], std::vector<Number>{last % 2 == 1 ? 1U : 2U});
        EXPECT_EQ(layers.nodes[last - 1], std::vector<Number>{last % 2 == 1 ? 2U : 1U});
    }
}

TEST(LayerWalk, DoesWhatTheFullWalkDoesWithoutCycles) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 3'000; ++i) {
        const Children children = randomChildren(random, true);
        expectSame(children, static_cast<Number>(children.size()), "diagram " + std::to_string(i));
    }
}

TEST(LayerWalk, DoesWhatTheFullWalkDoesWithCycles) {
    std::mt19937_64 random(2);
    int cyclic = 0;
    for (int i = 0; i < 3'000; ++i) {
        const Children children = randomChildren(random, false);
        const auto size = static_cast<Number>(children.size());
        if (sweepAll(children, rootsOf(children), size).isBroken) ++cyclic;
        for (const Number last : {size, size + 1, 2 * size + 3, 5 * size, 200U})
            expectSame(children, last,
                       "diagram " + std::to_string(i) + ", last layer " + std::to_string(last));
    }
    EXPECT_GT(cyclic, 300);
}

constexpr std::size_t plenty = std::size_t{1} << 40U;

// The cost that is computed beforehand is never less than that of the walk.
TEST(PlainWalk, TakesNoMoreThanWasForeseen) {
    std::mt19937_64 random(3);
    int cyclic = 0;
    for (int i = 0; i < 3'000; ++i) {
        const Children children = randomChildren(random, i % 2 == 0);
        const LayerGraph graph = layerGraph(children, rootsOf(children));
        const auto last = static_cast<Number>(children.size() + random() % 20);
        WalkBudget foreseen{0, plenty, 0, plenty};
        WalkBudget unforeseen{0, 0, plenty, plenty};
        const WalkedLayers walked = walkPlainly(graph, last, foreseen);
        const WalkedLayers expected = walkPlainly(graph, last, unforeseen);
        ASSERT_NE(walked.end, WalkedLayers::End::overBudget) << "diagram " << i;
        ASSERT_EQ(walked.end, expected.end) << "diagram " << i;
        ASSERT_EQ(walked.arrivals, expected.arrivals) << "diagram " << i;
        ASSERT_EQ(walked.starts, expected.starts) << "diagram " << i;
        ASSERT_LE(unforeseen.placeholders, plenty) << "what is spent is never more than there is";
        if (walked.end == WalkedLayers::End::cycle) ++cyclic;
    }
    EXPECT_GT(cyclic, 300);
}

TEST(PlainWalk, StopsWhereItsPlaceholdersWouldNotFit) {
    // A ring after a root: two nodes, which alternate down to the last layer.
    const LayerGraph graph = layerGraph({{1}, {2}, {1}}, {0});
    for (const std::size_t placeholders : {97U, 98U}) {
        WalkBudget budget{0, plenty, plenty, placeholders};
        const WalkedLayers walked = walkPlainly(graph, 100, budget);
        // 101 arrivals, of which three are of the nodes' own places.
        EXPECT_EQ(walked.end == WalkedLayers::End::cycle, placeholders == 98) << placeholders;
        EXPECT_EQ(budget.placeholders, placeholders == 98 ? 0U : placeholders);
    }
}

// Rings of 2, 3, 5 and 7 below one root: the layers repeat after 210 sweeps.
// Several disconnected diagrams in one, their nodes mixed, some with cycles and some without.
TEST(LayerWalk, PartsWithoutLinksBetweenThemKeepTheirPlaceInTheLayers) {
    std::mt19937_64 random(11);
    for (int round = 0; round < 3'000; ++round) {
        std::vector<std::pair<int, Number>> mixed;  // part and number in it
        std::vector<Children> parts;
        for (int part = 0; part < 4; ++part) {
            parts.push_back(randomChildren(random, random() % 2 == 0));
            for (Number node = 0; node < parts.back().size(); ++node)
                mixed.emplace_back(part, node);
        }
        std::shuffle(mixed.begin(), mixed.end(), random);
        const auto numberOf = [&](int part, Number node) {
            return static_cast<Number>(std::find(mixed.begin(), mixed.end(), std::pair(part, node)) -
                                       mixed.begin());
        };
        Children children;
        for (const auto& [part, node] : mixed) {
            children.emplace_back();
            for (const Number child : parts[static_cast<std::size_t>(part)][node])
                children.back().push_back(numberOf(part, child));
        }
        const auto last = static_cast<Number>(children.size() + random() % 60);
        expectSame(children, last, "round " + std::to_string(round));
        if (HasFatalFailure()) return;
    }
}

TEST(LayerWalk, RingsOfDifferentLengthsRepeatLate) {
    Children children(1);
    for (const Number length : {2U, 3U, 5U, 7U}) {
        const auto first = static_cast<Number>(children.size());
        children[0].push_back(first);
        for (Number i = 0; i < length; ++i)
            children.push_back({i + 1 == length ? first : first + i + 1});
    }
    for (Number last = 18; last < 1'500; last += 37)
        expectSame(children, last, "last layer " + std::to_string(last));
}

TEST(LayerWalk, CyclesAfterOneNodeAreTakenApartAsWell) {
    // 0 leads to 1 and 2, these to rings of 1 to 6 nodes, some of which both lead to.
    for (Number last = 20; last < 200; last += 7) {
        Children children{{1, 2}, {}, {}};
        for (const Number length : {2U, 5U, 3U, 1U, 6U, 4U}) {
            const auto first = static_cast<Number>(children.size());
            for (Number i = 0; i < length; ++i)
                children.push_back({i + 1 == length ? first : first + i + 1});
            children[1 + length % 2].push_back(first);
            if (length % 3 == 0) children[1].push_back(first + length - 1);
        }
        expectSame(children, last, "last layer " + std::to_string(last));
    }
}

// Together they repeat after more sweeps than there are layers; each by itself repeats soon. All sweeps of
// all rings would be ten thousand million steps.
TEST(LayerWalk, ManyCyclesOfDifferentLengthsAreEachEndedEarly) {
    Children children;
    std::vector<Number> roots;
    for (Number ring = 0; ring < 1'000; ++ring) {
        const Number length = 2 + ring % 97;
        const auto first = static_cast<Number>(children.size());
        roots.push_back(first);
        children.push_back({first + 1});
        for (Number i = 1; i <= length; ++i)
            children.push_back({i == length ? first + 1 : first + i + 1});
    }
    const auto last = static_cast<Number>(10 * children.size());
    const Layers layers = walkLayers(layerGraph(children, roots), last);
    EXPECT_TRUE(layers.isBroken);
    EXPECT_EQ(layers.nodes.front(), roots);
    // In each ring the number of layers decides which node ends in the last layer.
    ASSERT_EQ(layers.nodes.back().size(), roots.size());
    for (Number ring = 0; ring < roots.size(); ++ring)
        EXPECT_EQ(layers.nodes.back()[ring], roots[ring] + 1 + (last - 1) % (2 + ring % 97));
}

}  // namespace
}  // namespace tessera_test
