// Link paths of random diagrams, compared with what the layout did to each link.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/view_model/graph.h"
#include "draw/read/diagram.h"
#include "draw/read/link_paths.h"
#include "tests/support/effort.h"
#include "tests/support/log_capture.h"
#include "tests/support/model_building.h"
#include "tests/support/random_diagram.h"

namespace tessera_draw {
namespace {

using tessera_1::view_model::Graph;
using tessera_test::LinkPtr;
using tessera_test::NodePtr;
using ModelNode = tessera_1::view_model::Node;
using ModelLink = tessera_1::view_model::Link;

bool isInserted(const ModelNode* node) {
    return node && (node->m_type == "label" || node->m_type == "dummy");
}

// A diagram after the layout, and what the layout did.
class LaidOut {
  public:
    explicit LaidOut(std::uint64_t seed) {
        tessera_test::fillRandomDiagram(m_graph, seed);
        for (const NodePtr& node : m_graph.m_nodeList)
            node->m_type = "node";  // as every node of a document
        m_documentNodes = m_graph.m_nodeList.size();
        for (const LinkPtr& link : m_graph.m_linkList)
            m_document.push_back({link, link->m_from.get(), link->m_to.get(), link->m_direction});
        (void)m_graph.setLinkInfoAsNodes();
        (void)m_graph.setGroupInfoAsNodes();
        m_graph.createDummyLinksForGroups();
        (void)m_graph.calculateHierarchicalLevels();
        (void)m_graph.addDummyNodesForLabels();
        noteChains();
        (void)m_graph.addDummyNodesForInterfaces();
        (void)m_graph.adjustLabelLocations();
        noteExchanges();
        m_graph.setNodeAlignings();
        (void)m_graph.setGroupLevels();
        m_graph.dumpTotalInfo(m_bag);
        m_graph.dumpNodes(m_bag);
        m_graph.dumpLinks(m_bag);
        m_diagram = readDiagram(m_bag);
        numberNodes();
    }

    [[nodiscard]] const Diagram& diagram() const { return m_diagram; }
    [[nodiscard]] std::size_t linkCount() const { return m_document.size(); }
    [[nodiscard]] std::size_t exchangeCount() const { return m_exchanged.size() / 2; }

    // Whether ids tell the document's nodes from each other and from those that were put onto links.
    [[nodiscard]] bool hasClearIds() const {
        std::set<std::string> ids{""};
        for (std::size_t i = 0; i < m_graph.m_nodeList.size(); ++i) {
            const bool isNew = ids.insert(m_graph.m_nodeList[i]->m_id).second;
            if (!isNew && i < m_documentNodes) return false;
        }
        for (std::size_t i = m_documentNodes; i < m_graph.m_nodeList.size(); ++i)
            for (std::size_t j = 0; j < m_documentNodes; ++j)
                if (m_graph.m_nodeList[i]->m_id == m_graph.m_nodeList[j]->m_id) return false;
        return true;
    }

    // The document's link as it should be drawn, in words.
    [[nodiscard]] std::string expected(std::size_t number) const {
        const DocumentLink& link = m_document[number];
        std::string text = describe(link.link->m_id, link.direction, link.from, link.to);
        for (const Place& place : link.places)
            text += describe(place.node, place.group, place.level);
        return text;
    }

    [[nodiscard]] std::string found(const LinkPaths& linkPaths, std::size_t number) const {
        const LinkPath& path = linkPaths.paths[number];
        std::string text =
            describe(std::string(path.id), std::string(path.direction), at(path.from), at(path.to));
        for (std::uint32_t i = 0; i < path.stopCount; ++i) {
            const PathStop& stop = linkPaths.stops[path.firstStop + i];
            text += describe(at(stop.node), at(stop.group), stop.level);
        }
        return text;
    }

  private:
    struct Place {
        const ModelNode* node;
        const ModelNode* group;
        std::int32_t level;
    };
    struct DocumentLink {
        LinkPtr link;
        const ModelNode* from;
        const ModelNode* to;
        std::string direction;
        std::vector<Place> places = {};
    };

    // The path of each link through what was put onto it, before labels are exchanged.
    void noteChains() {
        std::unordered_map<const ModelNode*, const ModelLink*> halves;
        for (const LinkPtr& link : m_graph.m_linkList) {
            if (link->m_type == "dummy") continue;
            m_ends.emplace_back(link.get(), link->m_to.get());
            if (isInserted(link->m_from.get())) halves[link->m_from.get()] = link.get();
        }
        for (DocumentLink& link : m_document)
            for (const ModelNode* node = link.link->m_to.get(); isInserted(node);
                 node = halves.at(node)->m_to.get())
                link.places.push_back({node, node->m_group.get(), node->m_hierarchicalLevel});
    }

    void noteExchanges() {
        for (const auto& [link, end] : m_ends)
            if (link->m_to.get() != end) m_exchanged[end] = link->m_to.get();
        for (DocumentLink& link : m_document)
            for (Place& place : link.places)
                if (const auto other = m_exchanged.find(place.node); other != m_exchanged.end())
                    place.node = other->second;
    }

    // As the bag orders them: boxes with the values of groups last.
    void numberNodes() {
        for (const bool isGroupInfo : {false, true})
            for (const NodePtr& node : m_graph.m_nodeList)
                if ((node->m_type == "groupInfo") == isGroupInfo) m_byNumber.push_back(node.get());
        for (std::size_t i = 0; i < m_byNumber.size(); ++i)
            m_numbers[m_byNumber[i]] = i;
    }

    [[nodiscard]] const ModelNode* at(Index index) const {
        return index == nothing ? nullptr : m_byNumber.at(index);
    }
    // Its index in the diagram and its id.
    [[nodiscard]] std::string nameOf(const ModelNode* node) const {
        return node ? std::to_string(m_numbers.at(node)) + " " + node->m_id : "nothing";
    }
    [[nodiscard]] std::string describe(const std::string& id, const std::string& direction,
                                       const ModelNode* from, const ModelNode* to) const {
        return id + " " + direction + ": " + nameOf(from) + " to " + nameOf(to);
    }
    [[nodiscard]] std::string describe(const ModelNode* node, const ModelNode* group,
                                       std::int32_t level) const {
        return "\n    " + nameOf(node) + " " + node->m_location + ", layer " + std::to_string(level) +
               " of " + nameOf(group);
    }

    Graph m_graph;
    basekit2::variant_bag_t m_bag;
    Diagram m_diagram;
    std::size_t m_documentNodes = 0;
    std::vector<DocumentLink> m_document;
    std::vector<std::pair<const ModelLink*, const ModelNode*>> m_ends;
    std::unordered_map<const ModelNode*, const ModelNode*> m_exchanged;
    std::vector<const ModelNode*> m_byNumber;
    std::unordered_map<const ModelNode*, std::size_t> m_numbers;
};

// The labels and dummies that are not on exactly one link path.
std::size_t misplaced(const Diagram& diagram, const LinkPaths& linkPaths) {
    std::map<Index, int> counts;
    for (std::size_t i = 0; i < diagram.nodes.size(); ++i)
        if (diagram.nodes[i].type == "label" || diagram.nodes[i].type == "dummy")
            counts[static_cast<Index>(i)] = 0;
    for (const PathStop& stop : linkPaths.stops)
        ++counts[stop.node];
    std::size_t wrong = 0;
    for (const auto& [node, count] : counts)
        wrong += count == 1 ? 0U : 1U;
    return wrong;
}

// How often something occurred, so that the test can show that it has covered all kinds.
struct Met {
    std::size_t diagrams = 0;
    std::size_t stops = 0;
    std::size_t exchanges = 0;
};

void check(const LaidOut& laidOut, Met& met) {
    const LinkPaths linkPaths = findLinkPaths(laidOut.diagram());
    ASSERT_EQ(linkPaths.paths.size(), laidOut.linkCount());
    EXPECT_EQ(misplaced(laidOut.diagram(), linkPaths), 0U);
    EXPECT_TRUE(linkPaths.orphanLabels.empty());
    for (std::size_t i = 0; i < laidOut.linkCount(); ++i)
        ASSERT_EQ(laidOut.found(linkPaths, i), laidOut.expected(i)) << "link " << i;
    ++met.diagrams;
    met.stops += linkPaths.stops.size();
    met.exchanges += laidOut.exchangeCount();
}

TEST(DrawLinkPathsRandom, EveryLinkIsOneLinkPathAsTheLayoutMadeIt) {
    Met met;
    for (std::uint64_t seed = 0; seed < tessera_test::effort(3000U); ++seed) {
        SCOPED_TRACE(seed);
        const tessera_test::LogCapture log;
        const LaidOut laidOut(seed);
        if (laidOut.hasClearIds()) check(laidOut, met);
        if (HasFatalFailure()) return;
    }
    EXPECT_GT(met.diagrams, tessera_test::effort(1000U));
    EXPECT_GT(met.stops, tessera_test::effort(20000U));
    EXPECT_GT(met.exchanges, tessera_test::effort(100U));
}

// Where one id can mean several nodes it is undecidable which of two links leads to the one and which to the
// other; but nothing is lost or drawn twice.
TEST(DrawLinkPathsRandom, NothingIsLostWhenIdsAreNotClear) {
    std::size_t diagrams = 0;
    for (std::uint64_t seed = 0; seed < tessera_test::effort(3000U); ++seed) {
        SCOPED_TRACE(seed);
        const tessera_test::LogCapture log;
        const LaidOut laidOut(seed);
        if (laidOut.hasClearIds()) continue;
        ++diagrams;
        const LinkPaths linkPaths = findLinkPaths(laidOut.diagram());
        EXPECT_EQ(linkPaths.paths.size(), laidOut.linkCount());
        EXPECT_EQ(misplaced(laidOut.diagram(), linkPaths), 0U);
    }
    EXPECT_GT(diagrams, tessera_test::effort(500U));
}

// A finished diagram with pieces removed, reordered or given other ends.
Diagram spoiled(Diagram diagram, std::mt19937_64& random) {
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    for (std::size_t i = below(4); i > 0 && !diagram.links.empty(); --i)
        diagram.links.erase(diagram.links.begin() + static_cast<std::ptrdiff_t>(below(diagram.links.size())));
    for (std::size_t i = below(4); i > 0 && diagram.links.size() > 1; --i)
        std::swap(diagram.links[below(diagram.links.size())], diagram.links[below(diagram.links.size())]);
    for (std::size_t i = below(4); i > 0 && !diagram.links.empty(); --i) {
        Link& link = diagram.links[below(diagram.links.size())];
        (below(2) == 0 ? link.from : link.to) = static_cast<Index>(below(diagram.nodes.size()));
    }
    for (std::size_t i = below(4); i > 0; --i) {
        Node& node = diagram.nodes[below(diagram.nodes.size())];
        node.type = below(2) == 0 ? "label" : "dummy";
        node.location = below(2) == 0 ? "from" : "to";
        node.id = diagram.nodes[below(diagram.nodes.size())].id;
    }
    return diagram;
}

TEST(DrawLinkPathsRandom, EveryPieceOfASpoiledDiagramIsOnOneLinkPath) {
    std::mt19937_64 random(7);
    for (std::uint64_t seed = 0; seed < tessera_test::effort(1000U); ++seed) {
        SCOPED_TRACE(seed);
        const tessera_test::LogCapture log;
        const LaidOut laidOut(seed);
        for (int i = 0; i < 5; ++i) {
            const Diagram diagram = spoiled(laidOut.diagram(), random);
            const LinkPaths linkPaths = findLinkPaths(diagram);
            std::set<Index> seen;
            for (const PathStop& stop : linkPaths.stops)
                EXPECT_TRUE(seen.insert(stop.node).second);
            EXPECT_EQ(linkPaths.paths.size() + linkPaths.stops.size(), diagram.links.size());
        }
    }
}

}  // namespace
}  // namespace tessera_draw
