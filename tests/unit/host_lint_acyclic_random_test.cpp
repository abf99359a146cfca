// Random and large documents with cycles: reversed, the layering reaches its end, and drawings mean the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "host/lint/cycles/cycle_finder.h"
#include "tests/support/bag_reading.h"
#include "tests/support/effort.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"
#include "tests/support/model_building.h"
#include "tests/support/random_diagram.h"
#include "tests/unit/host_lint_acyclic_support.h"

namespace tessera_host {
namespace {

using namespace acyclic_support;
using tessera_test::bagOf;
using tessera_test::jsonOf;
using tessera_test::LogCapture;
using tessera_test::MemoryHost;
using tessera_test::textOf;

// A document of nodes in groups and of links anywhere, some of them wrong.
class RandomDocument {
  public:
    explicit RandomDocument(unsigned seed) : m_random(seed), m_isAcyclic(seed % 4 == 0) {}

    std::string text() {
        addNodes(below(4));
        const std::string nodes = m_text;
        m_text.clear();
        const std::size_t count = below(3 * m_ids.size() + 1);
        std::string display;
        for (std::size_t i = 0; i < count; ++i)
            addLink(i, display);
        return diagram(nodes + m_text, display);
    }

  private:
    std::size_t below(std::size_t n) { return m_random() % n; }

    // Ids that ascend in the order of the document, groups in front of what is in them.
    void addNodes(std::size_t depth) {
        for (std::size_t i = 1 + below(4); i > 0; --i) {
            m_ids.push_back("n" + std::to_string(m_ids.size()));
            m_depths.push_back(m_depth);
            if (!m_isAcyclic && below(30) == 0) m_ids.back() = m_ids[below(m_ids.size())];
            m_text += "<node id='" + m_ids.back() + "'>";
            ++m_depth;
            if (depth > 0 && below(2) == 0) addNodes(depth - 1);
            --m_depth;
            m_text += "</node>";
        }
    }

    [[nodiscard]] bool isInside(std::size_t node, std::size_t group) const {
        for (std::size_t i = group + 1; i <= node; ++i)
            if (m_depths[i] <= m_depths[group]) return false;
        return true;
    }

    void addLink(std::size_t number, std::string& display) {
        static const std::vector<std::string> directions{"forward", "back", "both", "none"};
        std::size_t from = below(m_ids.size());
        std::size_t to = below(m_ids.size());
        if (m_isAcyclic && from > to) std::swap(from, to);
        if (isInside(std::max(from, to), std::min(from, to))) return;  // a loop
        const std::string id = "l" + std::to_string(below(20) == 0 ? below(number + 1) : number);
        const std::string end = !m_isAcyclic && below(40) == 0 ? "nowhere" : m_ids[to];
        m_text += "<link id='" + id + "' from='" + m_ids[from] + "' to='" + end + "' direction='" +
                  directions[below(4)] + "'/>" + (below(3) == 0 ? "\n" : "");
        if (below(2) == 0) return;
        display += "<link id='" + id + "'>";
        for (const char* location : {"from", "to", "center"})
            if (below(2) == 0)
                display += "<label location='" + std::string(location) + "'><dataTransfer displayName='" +
                           id + location +
                           "'><bandwidth><rowSet><queryRef>/q</queryRef></rowSet></bandwidth></"
                           "dataTransfer></label>";
        display += "</link>";
    }

    std::mt19937 m_random;
    const bool m_isAcyclic;
    std::size_t m_depth = 0;
    std::string m_text;
    std::vector<std::string> m_ids;
    std::vector<std::size_t> m_depths;
};

// What the layering reports, and how many nodes of the document got no layer.
struct Layered {
    bool isBrokenOff = false;
    std::size_t withoutLayer = 0;
};

Layered layered(const std::string& text) {
    const LogCapture log;
    MemoryHost host(text);
    host.result->values["q"] = "1";
    const auto handler = host.makeHandler();
    variant_bag_t out;
    EXPECT_TRUE(handler->handleRequest("create", {}, out, nullptr).succeeded());
    Layered layered;
    for (const std::string& report : log.reports())
        layered.isBrokenOff = layered.isBrokenOff || report == "ERROR check nextLevel <= m_nodes.size()";
    const variant_bag_t* nodes = out.get_variant_bag("nodes");
    for (auto node = nodes->begin(); !node.at_end(); node.next())
        if (node.get_value().get("hierarchicalLevel")->get<std::int64_t>() < 0) ++layered.withoutLayer;
    return layered;
}

// A random diagram of the layout's tests, as the document that describes it.
std::string randomDiagram(std::uint64_t seed) {
    tessera_1::view_model::Graph graph;
    tessera_test::fillRandomDiagram(graph, seed);
    std::string text;
    const std::function<void(const tessera_test::NodePtr&)> write = [&](const tessera_test::NodePtr& node) {
        text += "<node id='" + node->m_id + "'>";
        for (const auto& member : node->m_groupChildren)
            write(member);
        text += "</node>";
    };
    for (const auto& node : graph.m_nodeList)
        if (!node->m_group) write(node);
    for (const auto& link : graph.m_linkList)
        text += "<link id='" + link->m_id + "' from='" + (link->m_from ? link->m_from->m_id : "nowhere") +
                "' to='" + (link->m_to ? link->m_to->m_id : "nowhere") + "' direction='" + link->m_direction +
                "'/>";
    return diagram(text);
}

// How many of the documents that were met are of each kind.
struct Met {
    int untouched = 0;
    int cyclic = 0;
    int brokenOff = 0;
    int layeredWhole = 0;
};

void expectLayeredToTheEnd(const std::string& text, Met& met) {
    const auto fixed = fixDocument(text, viewpointOf(text), CancelToken());
    ASSERT_TRUE(fixed);
    ASSERT_EQ(jsonOf(acyclic(text)), jsonOf(fixed->viewpoint->bag()));
    if (fixed->reversed.empty()) {
        ++met.untouched;
        ASSERT_EQ(fixed->text, text);
    } else {
        ++met.cyclic;
        const Layered before = layered(text);
        met.brokenOff += before.isBrokenOff ? 1 : 0;
        ASSERT_TRUE(before.isBrokenOff || before.withoutLayer > 0) << "there was nothing to fix";
    }
    const auto left = findCyclicLinks(fixed->viewpoint->structure(), CancelToken());
    ASSERT_TRUE(left.components.empty());
    if (!left.loops.empty()) return;
    ++met.layeredWhole;
    ASSERT_FALSE(layered(fixed->text).isBrokenOff);
}

TEST(AcyclicRandomDocument, RandomDocumentsAreLayeredToTheEnd) {
    Met met;
    for (unsigned seed = 0; seed < tessera_test::effort(1500U); ++seed) {
        SCOPED_TRACE(seed);
        const int cyclicBefore = met.cyclic;
        ASSERT_NO_FATAL_FAILURE(expectLayeredToTheEnd(RandomDocument(seed).text(), met));
        const bool isSound = seed % 4 == 0;
        ASSERT_TRUE(!isSound || met.cyclic == cyclicBefore) << "a document without cycles was changed";
    }
    EXPECT_GT(met.cyclic, tessera_test::effort(300));
    EXPECT_GT(met.brokenOff, tessera_test::effort(100));
    EXPECT_GT(met.untouched, tessera_test::effort(400));
    EXPECT_GT(met.layeredWhole, tessera_test::effort(600));
}

TEST(AcyclicRandomDocument, RandomDiagramsAreLayeredToTheEnd) {
    Met met;
    for (std::uint64_t seed = 0; seed < tessera_test::effort(1000U); ++seed) {
        SCOPED_TRACE(seed);
        ASSERT_NO_FATAL_FAILURE(expectLayeredToTheEnd(randomDiagram(seed), met));
    }
    EXPECT_GT(met.cyclic, tessera_test::effort(100));
    EXPECT_GT(met.layeredWhole, tessera_test::effort(300));
}

// What a drawing shows: between which nodes, which way arrows point, what stands at which end.
std::vector<std::string> shown(const variant_bag_t& viewpoint) {
    const DocumentStructure structure(viewpoint, CancelToken());
    std::vector<std::string> shown;
    for (std::size_t index = 0; index < structure.links().size(); ++index) {
        const DocumentStructure::Element link = structure.links()[index].element;
        const std::string from = textOf(*link, "from");
        const std::string to = textOf(*link, "to");
        const std::string direction = textOf(*link, "direction");
        const bool atFrom = direction == "back" || direction == "both";
        const bool atTo = direction == "forward" || direction == "both";
        std::string ends[2] = {from + (atFrom ? "<" : ""), to + (atTo ? "<" : "")};
        std::string center;
        for (const auto& entry : structure.linkEntries()) {
            const auto reached =
                entry.link != DocumentStructure::none ? entry.link : structure.findLink(entry.id);
            if (reached != index) continue;
            for (auto label = entry.element->begin(); !label.at_end(); label.next()) {
                const std::string location = textOf(label.get_value(), "location");
                const std::string name =
                    textOf(*label.get_value().get_variant_bag("dataTransfer"), "displayName");
                (location == "from" ? ends[0] : location == "to" ? ends[1] : center) += " " + name;
            }
        }
        shown.push_back(std::min(ends[0], ends[1]) + " - " + std::max(ends[0], ends[1]) + center);
    }
    return shown;
}

TEST(AcyclicRandomDocument, PictureMeansTheSame) {
    int reversed = 0;
    for (unsigned seed = 0; seed < tessera_test::effort(1500U); ++seed) {
        SCOPED_TRACE(seed);
        const std::string text = RandomDocument(seed).text();
        const variant_bag_t viewpoint = bagOf(text);
        const variant_bag_t changed = acyclic(text);
        if (!(changed == viewpoint)) ++reversed;
        ASSERT_EQ(shown(changed), shown(viewpoint));
    }
    EXPECT_GT(reversed, tessera_test::effort(300));
}

TEST(AcyclicRandomDocument, DeepNestingAndManyLinks) {
    constexpr int count = 100'000;
    std::string graph;
    for (int i = 0; i < count; ++i)
        graph += "<node id='n" + std::to_string(i) + "'>";
    graph += "<node id='a'/><node id='b'/>";
    for (int i = 0; i < count; ++i)
        graph += "</node>";
    graph += "<node id='c'/><link id='1' from='a' to='b'/><link id='2' from='b' to='a'/>";
    for (int i = 0; i < count; ++i)  // every group and a node outside, both ways
        graph += "<link from='c' to='n" + std::to_string(i) + "'/><link from='n" + std::to_string(i) +
                 "' to='c'/>";
    const auto messages = madeAcyclic(diagram(graph)).messages;
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_TRUE(messages[0].text.starts_with("100001 links \"2\""));
}

}  // namespace
}  // namespace tessera_host
