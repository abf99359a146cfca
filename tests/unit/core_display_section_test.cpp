// The display section of a document: names, types, alignings, row sets and data transfers.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "core/viewpointparser.h"
#include "tests/support/assertion_capture.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::DViewpointParser;
using tessera_1::view_model::DataTransferTable;
using tessera_1::view_model::DisplayInfo;
using tessera_1::view_model::Graph;
using tessera_1::view_model::Link;
using tessera_1::view_model::Node;
using Reports = std::vector<std::string>;

Reports alert(const std::string& text) {
    return {"ERROR alert " + text, "INFO " + text};
}

Reports keysOf(const DataTransferTable& table) {
    Reports keys;
    for (const auto& [key, info] : table)
        keys.push_back(key);
    std::sort(keys.begin(), keys.end());
    return keys;
}

Reports queriesOf(const DisplayInfo& info) {
    Reports queries;
    for (const auto& row : info.m_rowSet.rows)
        queries.push_back(row.m_query);
    return queries;
}

struct DisplaySection : testing::Test {
    // Parses this content of "display" after a graph of the nodes a, b and the link l from a to b.
    void parse(const std::string& display) {
        makeHost(display);
        parser.parseViewpoint(host->base->config, host->library, &host->messenger, host->inputData, graph);
    }
    void makeHost(const std::string& display) {
        host = std::make_unique<MemoryHost>(
            R"(<v><diagram><graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b"/></graph><display>)" +
            display + "</display></diagram></v>");
    }
    void parseLabels(const std::string& labels) { parse(R"(<link id="l">)" + labels + "</link>"); }
    const Node& node(const std::string& id = "a") const { return *graph->findNode(id); }
    const Link& link() const { return *graph->findLink("l"); }

    LogCapture log;
    std::unique_ptr<MemoryHost> host;
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
};

TEST_F(DisplaySection, NameOfTheDiagramIsTheGraphsDisplayName) {
    parse(R"(<graph id="ignored" displayName="Name"/>)");
    EXPECT_EQ(graph->m_name, "Name");
    EXPECT_EQ(graph->m_id, "g");
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(DisplaySection, LaterGraphElementWithoutANameTakesTheNameAway) {
    parse(R"(<graph displayName="Name"/><graph/>)");
    EXPECT_EQ(graph->m_name, "");
}

TEST_F(DisplaySection, NodeGetsItsNameAndADisplayInfo) {
    parse(R"(<node id="a" displayName="Node A"/>)");
    EXPECT_EQ(node().m_displayName, "Node A");
    ASSERT_NE(node().m_info, nullptr);
    EXPECT_EQ(node().m_info->m_name, "");
    EXPECT_TRUE(node().m_info->m_rowSet.ds.is_null());
    EXPECT_TRUE(node().m_info->m_rowSet.rows.empty());
    EXPECT_EQ(node("b").m_info, nullptr);
}

TEST_F(DisplaySection, NodeOrLinkThatIsNotInTheGraphIsSkippedWithoutAWord) {
    parse(R"(<node id="z" displayName="Z"><rowSet><queryRef>/q</queryRef></rowSet></node>
             <link id="z"><unknown/></link><node displayName="no id"/><node id="l"/><link id="a"/>)");
    EXPECT_EQ(host->library->built, 0);
    EXPECT_EQ(graph->m_nodes.size(), 2U);
    EXPECT_EQ(graph->m_links.size(), 1U);
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(DisplaySection, EmptyOrMissingTypeAndAligningKeepTheModelsDefaults) {
    parse(R"(<node id="a" type="" aligning=""/><node id="b"/>)");
    for (const char* id : {"a", "b"}) {
        EXPECT_EQ(node(id).m_displayType, "none");
        EXPECT_EQ(node(id).m_aligning, "none");
    }
}

TEST_F(DisplaySection, TypeSetsTheDisplayTypeAndNotTheTypeOfTheNode) {
    parse(R"(<node id="a" type="label" aligning="from"/>)");
    EXPECT_EQ(node().m_displayType, "label");
    EXPECT_EQ(node().m_type, "node");
    EXPECT_EQ(node().m_aligning, "from");
}

TEST_F(DisplaySection, LastElementOfANodeWinsButKeepsTypeAndAligningWhereItHasNone) {
    parse(
        R"(<node id="a" displayName="first" type="t" aligning="to"><rowSet><queryRef>/q</queryRef></rowSet></node>
             <node id="a" displayName="second"/>)");
    EXPECT_EQ(node().m_displayName, "second");
    EXPECT_TRUE(node().m_info->m_rowSet.rows.empty());
    EXPECT_EQ(node().m_displayType, "t");
    EXPECT_EQ(node().m_aligning, "to");
}

TEST_F(DisplaySection, UnknownChildOfDisplayIsReportedUnderDisplayName) {
    parse(R"(<nodes/><node id="a" displayName="A"/>)");
    EXPECT_EQ(log.reports(),
              alert("Unknown element <nodes> found under <displayName>. Expected <graph>, <node>, <link>."));
    EXPECT_EQ(node().m_displayName, "A");
}

TEST_F(DisplaySection, RowSetKeepsNameDefinitionQueryAndRows) {
    parse(R"(<node id="a"><rowSet displayName="Set" extra="kept">
      <queryRef displayName="One">/q1</queryRef><queryRef displayName="Two">/q2</queryRef></rowSet></node>)");
    const auto& rowSet = node().m_info->m_rowSet;
    EXPECT_EQ(rowSet.m_name, "Set");
    EXPECT_FALSE(rowSet.m_flag);
    EXPECT_EQ(jsonOf(rowSet.m_bag),
              R"({"displayName":"Set","extra":"kept","queryRef":[{"displayName":"One","":"/q1"},)"
              R"({"displayName":"Two","":"/q2"}]})");
    ASSERT_FALSE(rowSet.ds.is_null());
    EXPECT_EQ(rowSet.ds->size(), 2U);
    ASSERT_EQ(rowSet.rows.size(), 2U);
    EXPECT_EQ(rowSet.rows[0].m_name, "One");
    EXPECT_EQ(rowSet.rows[0].m_query, "/q1");
    EXPECT_EQ(rowSet.rows[0].m_value, "");
    EXPECT_EQ(rowSet.rows[1].m_name, "Two");
    EXPECT_EQ(rowSet.rows[1].m_query, "/q2");
}

TEST_F(DisplaySection, QueryRefWithoutTextIsARowWithoutQuery) {
    parse(R"(<node id="a"><rowSet><queryRef displayName="Row"/></rowSet></node>)");
    ASSERT_EQ(node().m_info->m_rowSet.rows.size(), 1U);
    EXPECT_EQ(node().m_info->m_rowSet.rows[0].m_name, "Row");
    EXPECT_EQ(node().m_info->m_rowSet.rows[0].m_query, "");
}

TEST_F(DisplaySection, LastOfTwoRowSetsWinsWhole) {
    parse(
        R"(<node id="a"><rowSet displayName="first"><queryRef>/q1</queryRef><queryRef>/q2</queryRef></rowSet>
             <rowSet displayName="second"><queryRef>/q3</queryRef></rowSet></node>)");
    EXPECT_EQ(node().m_info->m_rowSet.m_name, "second");
    EXPECT_EQ(queriesOf(*node().m_info), (Reports{"/q3"}));
    ASSERT_EQ(node().m_info->m_rowSet.ds->size(), 1U);
    EXPECT_EQ(node().m_info->m_rowSet.ds->at(0)->getIdentifier(), "q3");
    EXPECT_EQ(host->library->built, 2);
}

TEST_F(DisplaySection, RejectedLastRowSetWinsAsWell) {
    makeHost(R"(<node id="a"><rowSet displayName="first"><queryRef>/good</queryRef></rowSet>
                <rowSet displayName="second"><queryRef>/bad</queryRef></rowSet></node>)");
    host->library->known = {"good"};
    parser.parseViewpoint(host->base->config, host->library, nullptr, host->inputData, graph);
    EXPECT_EQ(node().m_info->m_rowSet.m_name, "second");
    EXPECT_TRUE(node().m_info->m_rowSet.rows.empty());
    EXPECT_TRUE(node().m_info->m_rowSet.ds.is_null());
}

TEST_F(DisplaySection, RejectedRowSetKeepsNameAndDefinitionAndItsRowsAreNeverRead) {
    makeHost(
        R"(<node id="a" displayName="A"><rowSet displayName="Set"><queryRef>/bad</queryRef><strange/></rowSet></node>
                <node id="b" displayName="B"/>)");
    host->library->known = {"good"};
    parser.parseViewpoint(host->base->config, host->library, &host->messenger, host->inputData, graph);
    EXPECT_EQ(log.reports(), (Reports{"ERROR check rowSet.ds"})) << "and nothing of its children";
    const auto& rowSet = node().m_info->m_rowSet;
    EXPECT_EQ(rowSet.m_name, "Set");
    EXPECT_EQ(jsonOf(rowSet.m_bag), R"({"displayName":"Set","queryRef":{"":"/bad"},"strange":{}})");
    EXPECT_TRUE(rowSet.ds.is_null());
    EXPECT_TRUE(rowSet.rows.empty());
    EXPECT_EQ(node().m_displayName, "A");
    EXPECT_EQ(node("b").m_displayName, "B");
}

TEST_F(DisplaySection, QueryThatIsNotAVectorQueryIsRejected) {
    struct SingleQueries final : ForwardingQueryLibrary {
        using ForwardingQueryLibrary::ForwardingQueryLibrary;
        sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t&, relay2::IMessenger*) override {
            return basekit2::make_counted<MemoryQuery>("single");
        }
    };
    makeHost(R"(<node id="a"><rowSet><queryRef>/q</queryRef></rowSet></node>)");
    parser.parseViewpoint(host->base->config, basekit2::make_counted<SingleQueries>(host->library), nullptr,
                          host->inputData, graph);
    EXPECT_EQ(log.reports(), (Reports{"ERROR check rowSet.ds"}));
    EXPECT_TRUE(node().m_info->m_rowSet.rows.empty());
}

TEST_F(DisplaySection, DefinitionAndMessengerAreHandedToTheQueryLibrary) {
    struct Recording final : ForwardingQueryLibrary {
        using ForwardingQueryLibrary::ForwardingQueryLibrary;
        sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition,
                                          relay2::IMessenger* messenger) override {
            definitions.push_back(jsonOf(definition));
            passed = messenger;
            return target().buildQuery(definition, messenger);
        }
        Reports definitions;
        relay2::IMessenger* passed = nullptr;
    };
    makeHost(R"(<node id="a"><rowSet by="x"><queryRef>/q</queryRef></rowSet></node>)");
    const auto library = basekit2::make_counted<Recording>(host->library);
    parser.parseViewpoint(host->base->config, library, &host->messenger, host->inputData, graph);
    EXPECT_EQ(library->definitions, (Reports{R"({"by":"x","queryRef":{"":"/q"}})"}));
    EXPECT_EQ(library->passed, &host->messenger);
    EXPECT_TRUE(host->messenger.messages.empty()) << "the parser itself tells the messenger nothing";
}

TEST_F(DisplaySection, UnknownChildOfARowSetIsSkipped) {
    parse(R"(<node id="a"><rowSet><queryref/><queryRef>/q</queryRef></rowSet></node>)");
    EXPECT_EQ(log.reports(), alert("Unknown element <queryref> found under <rowSet>. Expected <queryRef>"));
    EXPECT_EQ(queriesOf(*node().m_info), (Reports{"/q"}));
}

TEST_F(DisplaySection, UnknownChildOfADisplayInfoIsReportedUnderTheModesAlsoForANode) {
    parse(R"(<node id="a"><label/><rowSet><queryRef>/q</queryRef></rowSet></node>)");
    EXPECT_EQ(log.reports(),
              alert("Unknown element <label> found under <bandwidth>, <ratio>, <size>, expected <rowSet>"));
    EXPECT_EQ(queriesOf(*node().m_info), (Reports{"/q"}));
}

TEST_F(DisplaySection, ParseDisplayInfoClearsTheFormerQueryFirst) {
    parse("");
    const auto info = std::make_shared<DisplayInfo>();
    info->m_rowSet.ds = qlib_1::IVectorQuery::create({});
    info->m_rowSet.m_name = "former";
    info->m_rowSet.rows.push_back({"n", "v", "/q"});
    parser.parseDisplayInfo(info, variant_bag_t());
    EXPECT_TRUE(info->m_rowSet.ds.is_null());
    EXPECT_EQ(info->m_rowSet.m_name, "former");
    EXPECT_EQ(info->m_rowSet.rows.size(), 1U);
}

TEST_F(DisplaySection, FlagOfTheRowSetIsNotCopied) {
    parse("");
    const auto info = std::make_shared<DisplayInfo>();
    info->m_rowSet.m_flag = true;
    parser.parseDisplayInfo(info, bagOf("<node><rowSet displayName='Set'/></node>"));
    EXPECT_EQ(info->m_rowSet.m_name, "Set");
    EXPECT_TRUE(info->m_rowSet.m_flag);
}

TEST_F(DisplaySection, ParseRowSetResetsTheFlagAndAppendsRows) {
    parse("");
    tessera_1::view_model::RowSet rowSet;
    rowSet.m_flag = true;
    parser.parseRowSet(rowSet, bagOf("<rowSet><queryRef>/q</queryRef></rowSet>"));
    EXPECT_FALSE(rowSet.m_flag);
    EXPECT_EQ(rowSet.rows.size(), 1U);
}

TEST_F(DisplaySection, LinkGetsItsName) {
    parse(R"(<link id="l" displayName="Link"/>)");
    EXPECT_EQ(link().m_displayName, "Link");
    EXPECT_TRUE(link().m_displayInfo.m_totalInfo.empty());
}

TEST_F(DisplaySection, UnknownChildOfALinkIsReportedWithTheSpace) {
    parseLabels(R"(<lable location="to"/><label location="to"><dataTransfer><size/></dataTransfer></label>)");
    EXPECT_EQ(log.reports(), alert("Unknown element <lable> found under <link >. Expected <label>."));
    EXPECT_EQ(keysOf(link().m_displayInfo.m_toInfo), (Reports{"size"}));
}

TEST_F(DisplaySection, LocationDecidesTheTable) {
    parseLabels(R"(<label location="to"><dataTransfer><bandwidth/></dataTransfer></label>
                   <label location="from"><dataTransfer><ratio/></dataTransfer></label>
                   <label location="center"><dataTransfer><size/></dataTransfer></label>)");
    EXPECT_EQ(keysOf(link().m_displayInfo.m_toInfo), (Reports{"bandwidth"}));
    EXPECT_EQ(keysOf(link().m_displayInfo.m_fromInfo), (Reports{"ratio"}));
    EXPECT_EQ(keysOf(link().m_displayInfo.m_totalInfo), (Reports{"size"}));
}

TEST_F(DisplaySection, LabelWithoutLocationOrWithAnyOtherFillsTheTotal) {
    for (const char* location :
         {"", R"(location="")", R"(location="center")", R"(location="To")", R"(location="middle")"}) {
        graph = nullptr;
        parseLabels(std::string("<label ") + location + "><dataTransfer><size/></dataTransfer></label>");
        EXPECT_EQ(keysOf(link().m_displayInfo.m_totalInfo), (Reports{"size"})) << location;
        EXPECT_TRUE(link().m_displayInfo.m_toInfo.empty()) << location;
        EXPECT_TRUE(link().m_displayInfo.m_fromInfo.empty()) << location;
    }
}

TEST_F(DisplaySection, SecondLabelOfALocationReplacesTheTableWhole) {
    parseLabels(
        R"(<label location="to"><dataTransfer displayName="1"><bandwidth/><ratio/></dataTransfer></label>
                   <label location="to"><dataTransfer displayName="2"><size/></dataTransfer></label>)");
    EXPECT_EQ(keysOf(link().m_displayInfo.m_toInfo), (Reports{"size"}));
    EXPECT_EQ(link().m_displayInfo.m_toInfo.at("size")->m_name, "2");
}

TEST_F(DisplaySection, EmptySecondLabelTakesTheTableAway) {
    parseLabels(
        R"(<label location="to"><dataTransfer><bandwidth/></dataTransfer></label><label location="to"/>)");
    EXPECT_TRUE(link().m_displayInfo.m_toInfo.empty());
}

TEST_F(DisplaySection, DataTransferHasAnEntryForEachOfItsModesNamedAfterTheTransfer) {
    parseLabels(R"(<label><dataTransfer displayName="Transfer">
      <bandwidth><rowSet><queryRef>/b</queryRef></rowSet></bandwidth>
      <size><rowSet><queryRef>/s</queryRef></rowSet></size></dataTransfer></label>)");
    const DataTransferTable& table = link().m_displayInfo.m_totalInfo;
    EXPECT_EQ(keysOf(table), (Reports{"bandwidth", "size"}));
    EXPECT_EQ(table.at("bandwidth")->m_name, "Transfer");
    EXPECT_EQ(table.at("size")->m_name, "Transfer");
    EXPECT_EQ(queriesOf(*table.at("bandwidth")), (Reports{"/b"}));
    EXPECT_EQ(queriesOf(*table.at("size")), (Reports{"/s"}));
}

TEST_F(DisplaySection, SeveralDataTransfersFillOneTableAndLaterEntriesReplaceEarlierOnes) {
    parseLabels(R"(<label><dataTransfer displayName="1"><bandwidth/><ratio/></dataTransfer>
                   <dataTransfer displayName="2"><ratio/><size/></dataTransfer></label>)");
    const DataTransferTable& table = link().m_displayInfo.m_totalInfo;
    EXPECT_EQ(keysOf(table), (Reports{"bandwidth", "ratio", "size"}));
    EXPECT_EQ(table.at("bandwidth")->m_name, "1");
    EXPECT_EQ(table.at("ratio")->m_name, "2");
    EXPECT_EQ(table.at("size")->m_name, "2");
}

TEST_F(DisplaySection, UnknownChildOfALabelIsReportedWithoutAParent) {
    parseLabels("<label><transfer/><dataTransfer><size/></dataTransfer></label>");
    EXPECT_EQ(log.reports(), alert("Unknown element <transfer> found . Expected <dataTransfer>"));
    EXPECT_EQ(keysOf(link().m_displayInfo.m_totalInfo), (Reports{"size"}));
}

TEST_F(DisplaySection, UnknownModeOfADataTransferIsReportedAndHasNoEntry) {
    parseLabels("<label><dataTransfer><Size/><ratio/></dataTransfer></label>");
    EXPECT_EQ(
        log.reports(),
        alert("Unknown element <Size> found under <dataTransfer>. Expected <bandwidth>, <ratio>, <size>"));
    EXPECT_EQ(keysOf(link().m_displayInfo.m_totalInfo), (Reports{"ratio"}));
}

TEST_F(DisplaySection, UnknownChildOfAModeIsSkipped) {
    parseLabels("<label><dataTransfer><size><row/><rowSet displayName='Set'/></size></dataTransfer></label>");
    EXPECT_EQ(log.reports(),
              alert("Unknown element <row> found under <bandwidth>, <ratio>, <size>, expected <rowSet>"));
    EXPECT_EQ(link().m_displayInfo.m_totalInfo.at("size")->m_rowSet.m_name, "Set");
}

// Sets a value that is not a string on the element at the end of `path` below "diagram".
void putNumber(variant_bag_t& config, const std::vector<const char*>& path, const char* name) {
    const variant_bag_t* bag = config.get_variant_bag("diagram");
    for (const char* step : path)
        bag = bag->get_variant_bag(step);
    const_cast<variant_bag_t*>(bag)->put(name, basekit2::variant_t(1));
}

TEST_F(DisplaySection, CommonAttributesAreReadBeforeTheElementsNameIsLookedAt) {
    makeHost(R"(<odd/><link id="l"><odd/><label><odd/></label></link>)");
    putNumber(host->base->config, {"display", "odd"}, "displayName");
    putNumber(host->base->config, {"display", "odd"}, "id");
    putNumber(host->base->config, {"display", "link", "odd"}, "location");
    putNumber(host->base->config, {"display", "link", "label", "odd"}, "displayName");
    const AssertionCapture assertions;
    parser.parseViewpoint(host->base->config, host->library, nullptr, host->inputData, graph);
    EXPECT_EQ(assertions.messages(), Reports(4, "can_get<const char*>()"));
    EXPECT_EQ(log.reports().size(), 6U) << "three unknown elements, reported twice each";
}

}  // namespace
}  // namespace tessera_test
