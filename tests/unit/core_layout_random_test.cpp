// Every pass, compared with a literal second implementation of it, on random diagrams.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "core/layout_watch.h"
#include "core/view_model/graph.h"
#include "core/view_model/passes/layout_run.h"
#include "tests/support/graph_difference.h"
#include "tests/support/literal_layout.h"
#include "tests/support/log_capture.h"
#include "tests/support/random_diagram.h"

namespace tessera_test {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using literal::Code;
using literal::Record;
using tessera_1::view_model::Graph;
using tessera_1::view_model::LayoutRun;
using tessera_1::view_model::WalkBudget;

struct Pass {
    const char* name;
    const char* stage;
    std::function<error_code_t(Graph&)> run;
    std::function<Code(Graph&, Record&)> runLiterally;
};

const std::vector<Pass>& passes() {
    static const std::vector<Pass> all{
        {"setLinkInfoAsNodes", "data", &Graph::setLinkInfoAsNodes, literal::setLinkInfoAsNodes},
        {"setGroupInfoAsNodes", "info_nodes", &Graph::setGroupInfoAsNodes, literal::setGroupInfoAsNodes},
        {"createDummyLinksForGroups", "group_links",
         [](Graph& graph) {
             graph.createDummyLinksForGroups();
             return error_code_t::success();
         },
         [](Graph& graph, Record&) {
             literal::createDummyLinksForGroups(graph);
             return Code::success;
         }},
        {"calculateHierarchicalLevels", "hierarchical_levels", &Graph::calculateHierarchicalLevels,
         literal::calculateHierarchicalLevels},
        {"addDummyNodesForLabels", "label_dummies", &Graph::addDummyNodesForLabels,
         literal::addDummyNodesForLabels},
        {"addDummyNodesForInterfaces", "interfaces", &Graph::addDummyNodesForInterfaces,
         literal::addDummyNodesForInterfaces},
        {"adjustLabelLocations", "label_locations", &Graph::adjustLabelLocations,
         literal::adjustLabelLocations},
        {"setNodeAlignings", "node_alignings",
         [](Graph& graph) {
             graph.setNodeAlignings();
             return error_code_t::success();
         },
         [](Graph& graph, Record& record) {
             literal::setNodeAlignings(graph, record);
             return Code::success;
         }},
        {"setGroupLevels", "group_levels", &Graph::setGroupLevels, literal::setGroupLevels}};
    return all;
}

std::string nameOf(error_code_t code) {
    return code.name();
}
std::string nameOf(Code code) {
    return code == Code::success ? "success" : code == Code::falseCode ? "false" : "IsNot.Valid.Range";
}

// In how many diagrams something occurred, so that a test can show that they are of all kinds.
struct Met {
    int finished = 0;
    int exchanged = 0;
    int centresAligned = 0;
    std::map<std::string, int> failures;  // by pass
    std::map<std::string, int> growths;   // more nodes than before, by pass
};

// The differences between what the passes say, or "".
std::string saidDifferently(error_code_t code, Code literalCode, const LogCapture& log,
                            const Record& record) {
    if (nameOf(code) != nameOf(literalCode))
        return "it returns " + nameOf(code) + ", not " + nameOf(literalCode);
    std::vector<std::string> expected;
    for (const std::string& condition : record.failed)
        expected.push_back("ERROR check " + condition);
    const auto reports = log.reports();
    const auto [report, other] =
        std::mismatch(reports.begin(), reports.end(), expected.begin(), expected.end());
    if (report == reports.end() && other == expected.end()) return "";
    return "it reports " + (report == reports.end() ? "nothing" : *report) + ", not " +
           (other == expected.end() ? "nothing" : *other);
}

void note(const Pass& pass, bool hasFailed, bool hasGrown, Met& met) {
    if (hasFailed) ++met.failures[pass.name];
    if (hasGrown) ++met.growths[pass.name];
}

variant_bag_t dumped(Graph& graph) {
    variant_bag_t out;
    graph.dumpTotalInfo(out);
    graph.dumpNodes(out);
    graph.dumpLinks(out);
    return out;
}

// "" when all passes agree.
std::string compareAllPasses(std::uint64_t seed, Met& met) {
    Graph graph;
    Graph literalGraph;
    fillRandomDiagram(graph, seed);
    fillRandomDiagram(literalGraph, seed);
    const std::string start = firstDifference(graph, literalGraph, true);
    if (!start.empty()) return "at the start: " + start;
    const LogCapture log;
    Record record;
    for (const Pass& pass : passes()) {
        const std::size_t nodesBefore = literalGraph.m_nodeList.size();
        const std::size_t failedBefore = record.failed.size();
        Code literalCode = Code::success;
        try {
            literalCode = pass.runLiterally(literalGraph, record);
        } catch (const literal::TooLarge&) {
            return "";
        }
        const error_code_t code = pass.run(graph);
        const std::string said = saidDifferently(code, literalCode, log, record);
        if (!said.empty()) return std::string(pass.name) + ": " + said;
        const auto unsound = tessera_1::verifyGraph(graph, pass.stage);
        if (!unsound.empty()) return "after " + std::string(pass.name) + ": " + unsound.front();
        const std::string difference = firstDifference(graph, literalGraph, true);
        if (!difference.empty()) return "after " + std::string(pass.name) + ": " + difference;
        note(pass, record.failed.size() > failedBefore, literalGraph.m_nodeList.size() > nodesBefore, met);
    }
    if (dumped(graph) != dumped(graph)) return "the second dump is another one";
    ++met.finished;
    if (record.exchanges > 0) ++met.exchanged;
    for (const auto& node : literalGraph.m_nodeList) {
        if (node->m_location != "center" || node->m_aligning == "none") continue;
        ++met.centresAligned;
        break;
    }
    return "";
}

TEST(LayoutRandom, EveryPassDoesWhatTheLiteralOneDoes) {
    constexpr int seeds = 6'000;
    Met met;
    for (int seed = 0; seed < seeds; ++seed) {
        const std::string difference = compareAllPasses(static_cast<std::uint64_t>(seed), met);
        ASSERT_EQ(difference, "") << "seed " << seed;
    }
    // All kinds of diagrams occurred, and few were too large.
    EXPECT_GT(met.finished, seeds * 99 / 100);
    EXPECT_GT(met.exchanged, seeds / 20);
    EXPECT_GT(met.centresAligned, seeds / 20);
    EXPECT_GT(met.failures["calculateHierarchicalLevels"], seeds / 10);
    EXPECT_GT(met.failures["addDummyNodesForLabels"], seeds / 100);
    EXPECT_GT(met.failures["addDummyNodesForInterfaces"], seeds / 10);
    EXPECT_GT(met.failures["adjustLabelLocations"], seeds / 10);
    EXPECT_GT(met.failures["setNodeAlignings"], seeds / 10);
    EXPECT_LT(met.failures["setNodeAlignings"], seeds / 2);
    EXPECT_GT(met.growths["setLinkInfoAsNodes"], seeds / 4);
    EXPECT_GT(met.growths["setGroupInfoAsNodes"], seeds / 4);
    EXPECT_GT(met.growths["addDummyNodesForLabels"], seeds / 4);
}

// Dummy links before their real links in the list, which no document leads to.
TEST(LayoutRandom, LinksAreSplitAsTheLiteralPassDoesInAnyOrderOfTheList) {
    constexpr std::uint64_t seeds = 1'500;
    int grown = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        Graph graph;
        Graph literalGraph;
        Record record;
        const LogCapture log;
        for (Graph* each : {&graph, &literalGraph}) {
            fillRandomDiagram(*each, seed);
            each->createDummyLinksForGroups();
            std::mt19937_64 random(seed);
            std::shuffle(each->m_linkList.begin(), each->m_linkList.end(), random);
            (void)each->calculateHierarchicalLevels();
        }
        ASSERT_EQ(firstDifference(graph, literalGraph, true), "") << "seed " << seed;
        const std::size_t before = graph.m_nodeList.size();
        const std::size_t reports = log.reports().size();
        Code literalCode = Code::success;
        try {
            literalCode = literal::addDummyNodesForLabels(literalGraph, record);
        } catch (const literal::TooLarge&) {
            continue;
        }
        ASSERT_EQ(nameOf(graph.addDummyNodesForLabels()), nameOf(literalCode)) << "seed " << seed;
        ASSERT_EQ(log.reports().size() - reports, record.failed.size()) << "seed " << seed;
        ASSERT_EQ(firstDifference(graph, literalGraph, true), "") << "seed " << seed;
        if (graph.m_nodeList.size() > before) ++grown;
    }
    EXPECT_GT(grown, 300);
}

// The root's links drive all others down, one layer a sweep: far more moves than there are links.
TEST(LayoutRandom, AWalkOfManyMovesLeavesItsPlaceholdersButTheFirstOfEachLayer) {
    Graph graph;
    Graph literalGraph;
    for (Graph* each : {&graph, &literalGraph}) {
        std::vector<NodePtr> nodes;
        for (int i = 0; i < 300; ++i) {
            nodes.push_back(makeNode(std::to_string(1'000 + i)));
            each->addNode(nodes.back());
            if (i > 0) each->addLink(makeLink(nodes[0], nodes.back(), "r" + std::to_string(i)));
            if (i > 1)
                each->addLink(makeLink(nodes[nodes.size() - 2], nodes.back(), "c" + std::to_string(i)));
        }
    }
    Record record;
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(literal::calculateHierarchicalLevels(literalGraph, record), Code::success);
    EXPECT_EQ(firstDifference(graph, literalGraph, true), "");
    const auto& layers = graph.m_levelManagers[nullptr].m_levels;
    ASSERT_EQ(layers.size(), 300U);
    EXPECT_EQ(layers[1]->size(), 298U) << "one node, and all placeholders but one of the 298";
}

// In a complete graph whose links to far nodes come first, the walk takes a step for every three nodes: more than
// are taken without a look at what they will lead to.
TEST(LayoutRandom, AWalkThatTakesTwelveMillionStepsLeavesItsPlaceholdersToo) {
    constexpr std::size_t size = 420;
    Graph graph;
    Graph literalGraph;
    for (Graph* each : {&graph, &literalGraph}) {
        std::vector<NodePtr> nodes;
        for (std::size_t i = 0; i < size; ++i) {
            nodes.push_back(makeNode(std::to_string(1'000 + i)));
            each->addNode(nodes.back());
        }
        for (std::size_t i = 0; i < size; ++i)
            for (std::size_t j = size - 1; j > i; --j)
                each->addLink(makeLink(nodes[i], nodes[j], std::to_string(i) + ">" + std::to_string(j)));
    }
    Record record;
    EXPECT_TRUE(graph.calculateHierarchicalLevels().is_success());
    EXPECT_EQ(literal::calculateHierarchicalLevels(literalGraph, record), Code::success);
    EXPECT_EQ(firstDifference(graph, literalGraph, true), "");
    const auto& layers = graph.m_levelManagers[nullptr].m_levels;
    ASSERT_EQ(layers.size(), size);
    EXPECT_EQ(layers[1]->size(), size - 2) << "all nodes but the root have been here, less one placeholder";
}

// Nodes that push each other through many layers, some of them in cycles.
void addCrowd(Graph& graph, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::vector<NodePtr> nodes;
    for (int i = 0; i < 12; ++i) {
        nodes.push_back(makeNode("crowd " + std::to_string(i)));
        graph.addNode(nodes.back());
    }
    std::shuffle(nodes.begin(), nodes.end(), random);
    for (std::size_t i = 0; i < 36; ++i) {
        std::size_t from = random() % nodes.size();
        std::size_t to = random() % nodes.size();
        const bool isForward = seed % 4 != 0 || from == 0 || to == 0;
        if (isForward && from > to) std::swap(from, to);
        if (from != to) graph.addLink(makeLink(nodes[from], nodes[to], "crowd link " + std::to_string(i)));
    }
}

// With a budget of nothing, groups are layered by whole parts; with one without end, step by step.
TEST(LayoutRandom, BothWaysOfLayeringPutEveryNodeInTheSamePlace) {
    constexpr std::uint64_t seeds = 1'500;
    constexpr std::size_t plenty = std::size_t{1} << 40U;
    int withPlaceholders = 0;
    int failures = 0;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        std::array<Graph, 2> graphs;
        std::array<error_code_t, 2> codes;
        std::array<std::vector<std::string>, 2> reports;
        for (std::size_t i = 0; i < 2; ++i) {
            fillRandomDiagram(graphs[i], seed);
            addCrowd(graphs[i], seed);
            graphs[i].createDummyLinksForGroups();
            const LogCapture log;
            LayoutRun run;
            run.walkBudget = i == 0 ? WalkBudget{0, 0, 0, 0} : WalkBudget{0, 0, plenty, plenty};
            codes[i] = calculateHierarchicalLevels(graphs[i], run);
            reports[i] = log.reports();
        }
        ASSERT_EQ(codes[0].value(), codes[1].value()) << "seed " << seed;
        ASSERT_EQ(reports[0], reports[1]) << "seed " << seed;
        ASSERT_EQ(firstDifference(graphs[0], graphs[1], false), "") << "seed " << seed;
        if (!firstDifference(graphs[0], graphs[1], true).empty()) ++withPlaceholders;
        if (!codes[0].is_success()) ++failures;
    }
    EXPECT_GT(withPlaceholders, 1'000) << "the second way was taken where it can be seen";
    EXPECT_GT(failures, 200) << "of groups with a cycle";
}

// Nothing is cleared between two layerings, so the second finds the layers of the first.
TEST(LayoutRandom, SecondLayeringOnTopOfTheFirstDoesWhatTheLiteralOneDoes) {
    constexpr std::uint64_t seeds = 1'000;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        Graph graph;
        Graph literalGraph;
        fillRandomDiagram(graph, seed);
        fillRandomDiagram(literalGraph, seed);
        Record record;
        const LogCapture log;
        for (int times = 0; times < 2; ++times) {
            const error_code_t code = graph.calculateHierarchicalLevels();
            const Code literalCode = literal::calculateHierarchicalLevels(literalGraph, record);
            ASSERT_EQ(saidDifferently(code, literalCode, log, record), "") << "seed " << seed;
            ASSERT_EQ(firstDifference(graph, literalGraph, true), "") << "seed " << seed;
        }
    }
}

}  // namespace
}  // namespace tessera_test
