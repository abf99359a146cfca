// The lists that the structure of a document is read into.
#include "host/document/document_structure.h"

#include <gtest/gtest.h>

#include "tests/support/memory_host.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using tessera_support::CancelSource;
using tessera_support::CancelToken;
using tessera_test::bagOf;
using Index = DocumentStructure::Index;

constexpr Index none = DocumentStructure::none;

// A structure with the bag that it refers to.
class Structure {
  public:
    explicit Structure(const std::string& xml) : m_bag(bagOf(xml)), m_structure(m_bag, CancelToken()) {}
    const DocumentStructure* operator->() const { return &m_structure; }

  private:
    const variant_bag_t m_bag;
    const DocumentStructure m_structure;
};

std::string diagram(const std::string& graph, const std::string& display = {}) {
    return "<v><diagram><graph id='g'>" + graph + "</graph><display>" + display + "</display></diagram></v>";
}

TEST(DocumentStructure, AnEmptyDocumentHasTheTopLevelOnly) {
    const Structure structure("<v/>");
    EXPECT_EQ(structure->nodes().size(), 1U);
    EXPECT_EQ(structure->nodes()[0].element, nullptr);
    EXPECT_TRUE(structure->diagrams().empty());
    EXPECT_TRUE(structure->links().empty());
    EXPECT_FALSE(structure->findNode(""));
}

TEST(DocumentStructure, GroupsStandBeforeTheirMembers) {
    const Structure structure(
        diagram("<node id='G'><node id='a'/><node id='H'><node id='b'/></node></node><node id='c'/>"));
    std::vector<std::pair<std::string_view, Index>> nodes;
    for (const auto& node : structure->nodes())
        nodes.emplace_back(node.id, node.parent);
    EXPECT_EQ(nodes, (std::vector<std::pair<std::string_view, Index>>{
                         {"", 0}, {"G", 0}, {"a", 1}, {"H", 1}, {"b", 3}, {"c", 0}}));
    EXPECT_EQ(structure->findNode("b"), Index{4});
    EXPECT_FALSE(structure->findNode("d"));
}

TEST(DocumentStructure, ALinkFindsOnlyNodesBeforeIt) {
    const Structure structure(
        diagram("<node id='a'/><link id='1' from='a' to='b'/><node id='b'/><link id='2' from='b' to='a'/>"));
    ASSERT_EQ(structure->links().size(), 2U);
    EXPECT_EQ(structure->links()[0].from, 1U);
    EXPECT_EQ(structure->links()[0].to, DocumentStructure::topLevel);
    EXPECT_EQ(structure->links()[1].from, 2U);
    EXPECT_EQ(structure->links()[1].to, 1U);
}

TEST(DocumentStructure, AGroupTakesItsIdOverFromItsMember) {
    const Structure structure(
        diagram("<node id='a'><node id='a'/></node><link id='l' from='a' to='a'/>"
                "<node id='a'/><link id='l' from='a' to='a'/>"));
    EXPECT_EQ(structure->nodes()[2].replacedBy, 1U);
    EXPECT_EQ(structure->nodes()[1].replacedBy, 3U);
    EXPECT_EQ(structure->nodes()[3].replacedBy, none);
    EXPECT_EQ(structure->links()[0].from, 1U);
    EXPECT_EQ(structure->links()[1].from, 3U);
    EXPECT_EQ(structure->links()[0].replacedBy, 1U);
    EXPECT_EQ(structure->findLink("l"), Index{1});
}

TEST(DocumentStructure, EntriesReachOnlyWhatComesBeforeThem) {
    const Structure structure(
        "<v><diagram><display><node id='a'/><link id='l'/></display><graph><node id='a'/>"
        "<link id='l' from='a' to='a'/></graph><display><node id='a'/><link id='l'/><node id='x'/>"
        "</display></diagram></v>");
    ASSERT_EQ(structure->nodeEntries().size(), 3U);
    EXPECT_EQ(structure->nodeEntries()[0].node, none);
    EXPECT_EQ(structure->nodeEntries()[1].node, 1U);
    EXPECT_EQ(structure->nodeEntries()[2].node, none);
    EXPECT_EQ(structure->nodeEntries()[0].replacedBy, none);
    EXPECT_EQ(structure->linkEntries()[0].link, none);
    EXPECT_EQ(structure->linkEntries()[1].link, 0U);
}

TEST(DocumentStructure, LaterEntriesReplaceEarlierOnesOfTheSameNode) {
    const Structure structure(
        diagram("<node id='a'/><node id='b'/>", "<node id='a'/><node id='b'/><node id='a'/>"));
    EXPECT_EQ(structure->nodeEntries()[0].replacedBy, 2U);
    EXPECT_EQ(structure->nodeEntries()[1].replacedBy, none);
    EXPECT_EQ(structure->nodeEntries()[2].replacedBy, none);
}

TEST(DocumentStructure, LabelsOfOnePlaceReplaceEachOtherAcrossEntries) {
    const Structure structure(
        diagram("<node id='a'/><link id='1' from='a' to='a'/><link id='2' from='a' to='a'/>",
                "<link id='1'><label location='from'/><label location='to'/><label/></link>"
                "<link id='2'><label location='to'/></link>"
                "<link id='1'><label location='elsewhere'/><label location='to'/></link>"));
    const auto& labels = structure->labels();
    ASSERT_EQ(labels.size(), 6U);
    EXPECT_EQ(labels[0].place, LabelPlace::from);
    EXPECT_EQ(labels[0].replacedBy, none);
    EXPECT_EQ(labels[1].replacedBy, 5U);
    EXPECT_EQ(labels[2].place, LabelPlace::center);
    EXPECT_EQ(labels[2].replacedBy, 4U);
    EXPECT_EQ(labels[3].replacedBy, none);
    EXPECT_EQ(structure->linkEntries()[2].labels.begin, 4U);
    EXPECT_EQ(structure->linkEntries()[2].labels.end, 6U);
}

TEST(DocumentStructure, AllDataTransfersOfALabelShareItsModes) {
    const std::string rowSet = "<rowSet><queryRef>/q</queryRef><queryRef/></rowSet>";
    const Structure structure(diagram("<node id='a'/><link id='1' from='a' to='a'/>",
                                      "<link id='1'><label><dataTransfer displayName='x'><size>" + rowSet +
                                          "</size><other/><ratio/></dataTransfer>"
                                          "<dataTransfer displayName='y'><size>" +
                                          rowSet + rowSet + "</size></dataTransfer></label></link>"));
    const auto& modes = structure->modes();
    ASSERT_EQ(modes.size(), 3U);
    EXPECT_EQ(modes[0].mode, DisplayMode::size);
    EXPECT_EQ(modes[0].replacedBy, 2U);
    EXPECT_EQ(modes[1].mode, DisplayMode::ratio);
    EXPECT_EQ(modes[1].rowSets.begin, modes[1].rowSets.end);
    EXPECT_EQ(modes[2].dataTransfer->get("displayName")->get<std::string_view>(), "y");
    ASSERT_EQ(structure->rowSets().size(), 3U);
    EXPECT_EQ(structure->rowSets()[1].replacedBy, 2U);
    EXPECT_EQ(structure->rowSets()[2].rows.begin, 4U);
    ASSERT_EQ(structure->rows().size(), 6U);
    EXPECT_EQ(structure->rows()[4].reference, "/q");
    EXPECT_EQ(structure->rows()[5].reference, "");
}

TEST(DocumentStructure, SeveralDiagramsAndSectionsAreOneDiagram) {
    const Structure structure(
        "<v><diagram><graph><node id='a'/></graph></diagram><other><graph><node id='z'/></graph></other>"
        "<diagram><graph><node id='b'/><link id='1' from='a' to='b'/></graph><display><graph/></display>"
        "</diagram></v>");
    EXPECT_EQ(structure->diagrams().size(), 2U);
    EXPECT_EQ(structure->graphs().size(), 2U);
    EXPECT_EQ(structure->displayGraphs().size(), 1U);
    EXPECT_EQ(structure->nodes().size(), 3U);
    EXPECT_EQ(structure->links()[0].from, 1U);
}

TEST(DocumentStructure, DeepNestingNeedsNoStack) {
    constexpr int depth = 200'000;
    std::string graph;
    for (int i = 0; i < depth; ++i)
        graph += "<node id='a'>";
    for (int i = 0; i < depth; ++i)
        graph += "</node>";
    const Structure structure(diagram(graph));
    ASSERT_EQ(structure->nodes().size(), std::size_t{depth} + 1);
    EXPECT_EQ(structure->findNode("a"), Index{1});
    EXPECT_EQ(structure->nodes()[depth].replacedBy, std::size_t{depth} - 1);
}

TEST(DocumentStructure, ACancelledTokenEndsTheReading) {
    CancelSource source;
    source.cancel();
    const variant_bag_t bag = bagOf(diagram("<node id='a'/>"));
    const DocumentStructure structure(bag, source.token());
    EXPECT_EQ(structure.nodes().size(), 1U);
}

}  // namespace
}  // namespace tessera_host
