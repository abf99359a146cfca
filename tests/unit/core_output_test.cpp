// The finished diagram as a property bag.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/view_model/graph.h"
#include "tests/support/bag_reading.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::DisplayInfo;
using tessera_1::view_model::Graph;
using tessera_1::view_model::Link;
using tessera_1::view_model::Node;

// A display info whose row set "set" has rows of these values, named 1, 2, ...
std::shared_ptr<DisplayInfo> infoOf(const std::string& name, const Names& values) {
    auto info = std::make_shared<DisplayInfo>();
    info->m_name = name;
    info->m_rowSet.m_name = "set";
    for (const std::string& value : values)
        info->m_rowSet.rows.push_back(
            {std::to_string(info->m_rowSet.rows.size() + 1), value, "/not written"});
    return info;
}

struct Output : testing::Test {
    std::shared_ptr<Node> addNode(const std::string& id, const std::string& type = "node") {
        auto node = std::make_shared<Node>(type);
        node->m_id = id;
        graph.addNode(node);
        return node;
    }
    std::shared_ptr<Link> addLink(const std::string& id, const std::string& type = "link") {
        auto link = std::make_shared<Link>(id, type);
        graph.addLink(link);
        return link;
    }
    variant_bag_t dump() {
        variant_bag_t out;
        graph.dumpTotalInfo(out);
        graph.dumpNodes(out);
        graph.dumpLinks(out);
        return out;
    }
    // The ids of the elements of an array of the output.
    Names idsIn(const char* array) {
        Names ids;
        const variant_bag_t out = dump();
        for (auto it = out.get_variant_bag(array)->begin(); !it.at_end(); it.next())
            ids.push_back(textOf(it.get_value(), "id"));
        return ids;
    }
    variant_bag_t firstNode() { return *dump().get_variant_bag("nodes")->get_variant_bag("node"); }
    variant_bag_t firstLink() { return *dump().get_variant_bag("links")->get_variant_bag("link"); }

    Graph graph;
};

TEST_F(Output, GraphWithoutNodesAndLinksIsThreeTextsAndTwoEmptyArrays) {
    const variant_bag_t out = dump();
    EXPECT_EQ(childNames(out), (Names{"diagram", "nodes", "links"}));
    EXPECT_EQ(out.value_count(), 0U);
    const variant_bag_t& diagram = *out.get_variant_bag("diagram");
    EXPECT_EQ(valueNames(diagram), (Names{"id", "name", "displayMode"}));
    EXPECT_EQ(textOf(diagram, "id") + textOf(diagram, "name"), "");
    EXPECT_EQ(textOf(diagram, "displayMode"), "bandwidth");
    EXPECT_TRUE(diagram.begin().at_end());
    for (const auto& [array, element] : {std::pair{"nodes", "node"}, std::pair{"links", "link"}}) {
        const variant_bag_t& bag = *out.get_variant_bag(array);
        EXPECT_EQ(valueNames(bag), (Names{"arrayOf"}));
        EXPECT_EQ(textOf(bag, "arrayOf"), element);
        EXPECT_TRUE(bag.begin().at_end());
    }
}

TEST_F(Output, DiagramHasIdNameAndMode) {
    graph.m_id = "g";
    graph.m_name = "Name";
    graph.m_displayMode = "ratio";
    variant_bag_t out;
    graph.dumpTotalInfo(out);
    EXPECT_EQ(jsonOf(out), R"({"diagram":{"id":"g","name":"Name","displayMode":"ratio"}})");
}

TEST_F(Output, NodeHasItsAttributesInOrderAndTheirTypes) {
    const auto node = addNode("n", "dummy");
    node->m_displayName = "Node";
    node->m_hierarchicalLevel = 3;
    node->m_groupLevel = 2;
    node->m_aligning = "to";
    node->m_displayType = "box";
    node->m_location = "from";  // not a label: not written
    EXPECT_EQ(
        jsonOf(firstNode()),
        R"({"id":"n","displayName":"Node","group":"","isGroup":false,"type":"dummy","hierarchicalLevel":3,)"
        R"("groupLevel":2,"aligning":"to","displayType":"box","info":{}})");
}

TEST_F(Output, NewNodeWritesItsDefaultsAndNegativeLevelsStayNegative) {
    addNode("");
    EXPECT_EQ(jsonOf(firstNode()),
              R"({"id":"","displayName":"","group":"","isGroup":false,"type":"node","hierarchicalLevel":-1,)"
              R"("groupLevel":0,"aligning":"none","displayType":"none","info":{}})");
    EXPECT_EQ(firstNode().get("hierarchicalLevel")->get<std::int64_t>(), -1);
}

TEST_F(Output, GroupIsWrittenAsOneWhateverItsOwnType) {
    const auto group = addNode("g"), label = addNode("lg", "label"), plain = addNode("p");
    for (const auto& holder : {group, label}) {
        const auto member = addNode("in " + holder->m_id);
        member->m_group = holder;
        holder->m_groupChildren.push_back(member);
    }
    const variant_bag_t out = dump();
    Names seen;
    for (auto it = out.get_variant_bag("nodes")->begin(); !it.at_end(); it.next()) {
        const variant_bag_t& node = it.get_value();
        seen.push_back(textOf(node, "id") + ": " + textOf(node, "type") +
                       (node.get("isGroup")->get<bool>() ? " group" : "") + " of '" + textOf(node, "group") +
                       "'");
    }
    EXPECT_EQ(seen, (Names{"g: group group of ''", "lg: group group of ''", "p: node of ''",
                           "in g: node of 'g'", "in lg: node of 'lg'"}));
}

TEST_F(Output, GroupThatIsALabelByItsOwnTypeStillHasLocationAndTransfer) {
    const auto label = addNode("l", "label");
    label->m_location = "to";
    label->m_dataTransfers["bandwidth"] = infoOf("transfer", {"1"});
    const auto member = addNode("m");
    label->m_groupChildren.push_back(member);
    EXPECT_EQ(textOf(firstNode(), "type"), "group");
    EXPECT_EQ(textOf(firstNode(), "location"), "to");
    EXPECT_EQ(textOf(*firstNode().get_variant_bag("info"), "name"), "transfer");
}

TEST_F(Output, NodesComeInOrderOfAdditionAndGroupInfosAfterAllOthers) {
    addNode("info 2", "groupInfo");
    addNode("z");
    addNode("info 1", "groupInfo");
    addNode("a", "label");
    EXPECT_EQ(idsIn("nodes"), (Names{"z", "a", "info 2", "info 1"}));
}

TEST_F(Output, BothNodesOfOneIdAreWritten) {
    addNode("x", "node");
    addNode("x", "dummy");
    EXPECT_EQ(idsIn("nodes"), (Names{"x", "x"}));
}

TEST_F(Output, LinksComeInOrderOfAdditionAndDummyLinksNever) {
    addLink("z");
    addLink("d", "dummy");
    addLink("a", "of a pass");
    EXPECT_EQ(idsIn("links"), (Names{"z", "a"}));
}

TEST_F(Output, LinkHasItsAttributesInOrderAndThreeInfosAlways) {
    const auto link = addLink("l");
    link->m_displayName = "Link";
    link->m_from = addNode("a");
    link->m_to = addNode("b");
    link->m_direction = "sideways";
    EXPECT_EQ(jsonOf(firstLink()),
              R"({"id":"l","displayName":"Link","from":"a","to":"b","direction":"sideways",)"
              R"("fromInfo":{},"toInfo":{},"totalInfo":{}})");
}

TEST_F(Output, MissingEndOfALinkIsWrittenAsNoText) {
    addLink("l");
    EXPECT_EQ(textOf(firstLink(), "from"), "");
    EXPECT_EQ(textOf(firstLink(), "to"), "");
    EXPECT_EQ(textOf(firstLink(), "direction"), "none");
}

TEST_F(Output, EndsOfALinkShowTheirTransfersOfTheCurrentMode) {
    const auto link = addLink("l");
    link->m_displayInfo.m_fromInfo = {{"bandwidth", infoOf("from b", {"1"})},
                                      {"size", infoOf("from s", {"2"})}};
    link->m_displayInfo.m_toInfo = {{"size", infoOf("to s", {"3"})}};
    link->m_displayInfo.m_totalInfo = {{"bandwidth", infoOf("total b", {""})},
                                       {"size", infoOf("total s", {"4"})}};
    const auto infos = [&] {
        const variant_bag_t out = firstLink();
        return Names{textOf(*out.get_variant_bag("fromInfo"), "name"),
                     textOf(*out.get_variant_bag("toInfo"), "name"),
                     textOf(*out.get_variant_bag("totalInfo"), "name")};
    };
    EXPECT_EQ(infos(), (Names{"from b", "(none)", "(none)"}));
    graph.m_displayMode = "size";
    EXPECT_EQ(infos(), (Names{"from s", "to s", "total s"}));
}

TEST_F(Output, InfoIsNameAndRowsOfThoseRowsThatHaveValues) {
    addNode("n")->m_info = infoOf("Info", {"10", "", "0", " "});
    EXPECT_EQ(jsonOf(*firstNode().get_variant_bag("info")),
              R"({"name":"Info","rows":{"name":"set","arrayOf":"row","row":[{"name":"1","value":"10"},)"
              R"({"name":"3","value":"0"},{"name":"4","value":" "}]}})");
}

TEST_F(Output, InfoWithoutValuesIsAnEmptyBag) {
    addNode("n")->m_info = infoOf("Info", {"", ""});
    const variant_bag_t node = firstNode();
    ASSERT_NE(node.get_variant_bag("info"), nullptr);
    EXPECT_TRUE(node.get_variant_bag("info")->is_empty());
}

TEST_F(Output, EmptyNamesOfInfosAndRowsAreWritten) {
    auto info = infoOf("", {"1"});
    info->m_rowSet.m_name = "";
    info->m_rowSet.rows[0].m_name = "";
    addNode("n")->m_info = info;
    EXPECT_EQ(jsonOf(*firstNode().get_variant_bag("info")),
              R"({"name":"","rows":{"name":"","arrayOf":"row","row":[{"name":"","value":"1"}]}})");
}

TEST_F(Output, LabelWithNothingToShowHasItsLocationAndAnEmptyInfo) {
    const auto label = addNode("l", "label");
    label->m_dataTransfers["size"] = infoOf("other mode", {"1"});
    for (const char* location : {"", "center"}) {
        label->m_location = location;
        const variant_bag_t out = firstNode();
        EXPECT_EQ(valueNames(out).back(), "location");
        EXPECT_EQ(textOf(out, "location"), location);
        EXPECT_TRUE(out.get_variant_bag("info")->is_empty());
    }
}

TEST_F(Output, LabelShowsItsTransferOfTheCurrentModeAndOtherNodesNever) {
    const auto label = addNode("l", "label"), plain = addNode("n");
    label->m_dataTransfers["bandwidth"] = plain->m_dataTransfers["bandwidth"] = infoOf("transfer", {"1"});
    const variant_bag_t out = dump();
    auto node = out.get_variant_bag("nodes")->begin();
    EXPECT_EQ(textOf(*node.get_value().get_variant_bag("info"), "name"), "transfer");
    node.next();
    EXPECT_TRUE(node.get_value().get_variant_bag("info")->is_empty());
}

TEST_F(Output, LabelWithBothWritesItsDisplayInfoBeforeTheTransfer) {
    const auto label = addNode("l", "label");
    label->m_info = infoOf("own", {"1"});
    label->m_dataTransfers["bandwidth"] = infoOf("transfer", {"2"});
    // The name is put twice, the rows are two children.
    EXPECT_EQ(jsonOf(*firstNode().get_variant_bag("info")),
              R"({"name":"transfer","rows":[{"name":"set","arrayOf":"row","row":[{"name":"1","value":"1"}]},)"
              R"({"name":"set","arrayOf":"row","row":[{"name":"1","value":"2"}]}]})");
}

TEST_F(Output, LabelWhoseTransferIsEmptyKeepsTheNameOfItsDisplayInfo) {
    const auto label = addNode("l", "label");
    label->m_info = infoOf("own", {"1"});
    label->m_dataTransfers["bandwidth"] = infoOf("transfer", {""});
    EXPECT_EQ(textOf(*firstNode().get_variant_bag("info"), "name"), "own");
}

TEST_F(Output, GroupLevelsAreCopiedIntoTheNodesTheyAreFiledFor) {
    const auto node = addNode("n"), other = addNode("o");
    other->m_groupLevel = 7;
    graph.m_groupLevelManager.setGroupLevel("n", 4);
    EXPECT_EQ(firstNode().get("groupLevel")->get<std::int64_t>(), 4);
    EXPECT_EQ(node->m_groupLevel, 4);
    EXPECT_EQ(other->m_groupLevel, 7);
}

TEST_F(Output, GroupLevelOfAnUnknownNodeLeavesAnEmptyEntryAndIsNotWritten) {
    addNode("n");
    graph.m_groupLevelManager.setGroupLevel("gone", 4);
    EXPECT_EQ(idsIn("nodes"), (Names{"n"}));
    EXPECT_TRUE(graph.m_nodes.contains("gone"));
    EXPECT_EQ(graph.findNode("gone"), nullptr);
    EXPECT_EQ(graph.m_nodes.size(), 2U);
    EXPECT_EQ(idsIn("nodes"), (Names{"n"}));
}

TEST_F(Output, LookUpLeavesAnEmptyEntryForAModeThatATableLacks) {
    const auto link = addLink("l");
    const auto label = addNode("n", "label");
    dump();
    for (const DataTransferTable* table : {&link->m_displayInfo.m_fromInfo, &link->m_displayInfo.m_toInfo,
                                           &link->m_displayInfo.m_totalInfo, &label->m_dataTransfers}) {
        ASSERT_TRUE(table->contains("bandwidth"));
        EXPECT_EQ(table->at("bandwidth"), nullptr);
    }
}

TEST_F(Output, TypeIsWrittenWholeWhateverItsBytes) {
    const std::string type("a\0b", 3);
    addNode("n", type);
    const variant_bag_t out = dump();
    EXPECT_EQ(out.get_variant_bag("nodes")->get_variant_bag("node")->get_text("type"), type);
}

TEST_F(Output, SecondDumpWritesTheSame) {
    const auto label = addNode("l", "label");
    label->m_info = infoOf("own", {"1"});
    graph.m_groupLevelManager.setGroupLevel("l", 4);
    graph.m_groupLevelManager.setGroupLevel("gone", 1);
    addLink("k")->m_displayInfo.m_toInfo["bandwidth"] = infoOf("to", {"2"});
    const variant_bag_t first = dump();
    EXPECT_EQ(dump(), first);
}

TEST_F(Output, ElementsAreAddedAfterWhatTheBagHolds) {
    variant_bag_t out;
    out.put("v", "1");
    out.add_variant_bag("nodes").put("mine", "1");
    graph.dumpNodes(out);
    EXPECT_EQ(childNames(out), (Names{"nodes", "nodes"}));
    EXPECT_EQ(textOf(*out.get_variant_bag("nodes"), "mine"), "1");
}

TEST_F(Output, PiecesWriteIntoTheBagTheyAreGiven) {
    variant_bag_t bag;
    infoOf("Info", {"1"})->dump(bag);
    EXPECT_EQ(valueNames(bag), (Names{"name"}));
    EXPECT_EQ(childNames(bag), (Names{"rows"}));
    variant_bag_t empty;
    infoOf("Info", {""})->dump(empty);
    infoOf("Info", {""})->m_rowSet.dump(empty);
    tessera_1::view_model::Row{"name", "", "/q"}.dump(empty);
    EXPECT_TRUE(empty.is_empty());
    tessera_1::view_model::Row{"name", "value", "/q"}.dump(empty);
    EXPECT_EQ(jsonOf(empty), R"({"row":{"name":"name","value":"value"}})");
}

TEST_F(Output, ReadsTheNodeListAsItIsAndChangesNoLevel) {
    const auto node = addNode("n");
    node->m_hierarchicalLevel = 5;
    dump();
    EXPECT_EQ(node->m_hierarchicalLevel, 5);
    EXPECT_EQ(graph.m_nodeList.size(), 1U);
    EXPECT_EQ(graph.m_nodes.size(), 1U);
}

}  // namespace
}  // namespace tessera_test
