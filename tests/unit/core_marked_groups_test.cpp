// Marked groups around a nested node, compared with plain walks.
#include "core/view_model/passes/marked_groups.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tests/support/model_building.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::Graph;
using tessera_1::view_model::MarkedGroups;
using tessera_1::view_model::Node;

TEST(MarkedGroups, TopLevelAloneHasNoGroupAndContainsItself) {
    const Graph graph;
    const MarkedGroups marked(graph);
    EXPECT_TRUE(marked.groups().empty());
    EXPECT_TRUE(marked.contains(nullptr, nullptr));
    EXPECT_EQ(marked.innermostMarked(nullptr), nullptr);
}

TEST(MarkedGroups, GroupsOfEndsThatTheGraphDoesNotListAreKnown) {
    LooseNodes nodes;
    const NodePtr g = nodes.node("g"), a = nodes.member("a", g), b = nodes.node("b");
    Graph graph;
    graph.addLink(makeLink(a, b));
    MarkedGroups marked(graph);
    EXPECT_EQ(marked.groups(), std::vector<const Node*>{g.get()});
    EXPECT_TRUE(marked.contains(nullptr, g.get()));
    EXPECT_FALSE(marked.contains(g.get(), nullptr));
}

TEST(MarkedGroups, ReturnsWhatAWalkOutwardsFinds) {
    std::mt19937 random(7);
    for (int round = 0; round < 100; ++round) {
        Graph graph;
        std::vector<NodePtr> nodes;
        const std::size_t size = 1 + random() % 40;
        for (std::size_t i = 0; i < size; ++i) {
            const NodePtr node = nodes.empty() || random() % 5 == 0
                                     ? makeNode(std::to_string(i))
                                     : makeMember(std::to_string(i), nodes[random() % nodes.size()]);
            nodes.push_back(node);
            graph.addNode(node);
        }
        MarkedGroups marked(graph);
        std::set<const Node*> marks;
        const auto all = marked.groups();
        for (std::size_t times = 0; times <= all.size(); ++times) {
            for (const Node* group : all) {
                const Node* expected = group;
                while (expected && !marks.contains(expected))
                    expected = expected->m_group.get();
                ASSERT_EQ(marked.innermostMarked(group), expected) << "round " << round;
                for (const Node* outer : all) {
                    const Node* at = group;
                    while (at && at != outer)
                        at = at->m_group.get();
                    ASSERT_EQ(marked.contains(outer, group), at == outer) << "round " << round;
                }
            }
            if (all.empty()) break;
            const Node* chosen = all[random() % all.size()];
            marked.mark(chosen);
            marks.insert(chosen);
        }
    }
}

}  // namespace
}  // namespace tessera_test
