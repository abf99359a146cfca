// Reports carry the signature of the operation that made the check, also when a helper tested it.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/data_provider.h"
#include "core/view_model/passes/layout_run.h"
#include "tests/support/layout_building.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

// The operation's name in the report of that condition or message, for example "DataProvider::create".
std::string operationOf(const LogCapture& log, const std::string& what) {
    for (const LogLine& line : log.lines()) {
        const std::size_t in = line.text.find(what + " in ");
        if (line.level != "ERROR" || in == std::string::npos) continue;
        const std::size_t end = line.text.find('(', in + what.size());
        const std::string signature = line.text.substr(0, end);
        const std::size_t name = signature.rfind("::", signature.rfind("::") - 1);
        return signature.substr(name + 2);
    }
    return "no report of " + what;
}

struct Signatures : testing::Test {
    void create(const std::string& document) {
        MemoryHost host(document);
        change(*host.library, *host.result);
        variant_bag_t out;
        (void)host.makeHandler()->handleRequest("create", {}, out, nullptr);
    }

    std::function<void(MemoryQueryLibrary&, MemoryResult&)> change = [](auto&, auto&) {};
    LogCapture log;
};

const std::string oneValue =
    "<v><diagram><graph id='g'><node id='a'/></graph><display><node id='a'>"
    "<rowSet><queryRef>/q</queryRef></rowSet></node></display></diagram></v>";
const std::string fetching = "DisplayInfo::setDataFromResult";

TEST_F(Signatures, MissingRootGrouping) {
    change = [](auto& library, auto&) { library.hasRootGrouping = false; };
    create(oneValue);
    EXPECT_EQ(operationOf(log, "!rowBy.is_null()"), fetching);
}

TEST_F(Signatures, ColumnWithoutARow) {
    change = [](auto&, auto& result) { result.extraColumns = {"other"}; };
    create(oneValue);
    EXPECT_EQ(operationOf(log, "it != rowSet.rows.end()"), fetching);
}

TEST_F(Signatures, FailedRun) {
    change = [](auto&, auto& result) { result.failing = {"q"}; };
    create(oneValue);
    EXPECT_EQ(operationOf(log, "err.succeeded() && tree"), fetching);
}

TEST_F(Signatures, MissingRegistry) {
    change = [](auto&, auto& result) { result.hasRegistry = false; };
    create(oneValue);
    EXPECT_EQ(operationOf(log, "res"), "view_model::addFilter");
}

TEST_F(Signatures, UnknownElements) {
    create(
        "<v><diagram><a/><graph id='g'><b/><node id='n'><c/></node><link id='l' from='n' to='n'/></graph>"
        "<display><d/><node id='n'><e/><rowSet><f/></rowSet></node><link id='l'><h/><label><i/>"
        "<dataTransfer><j/></dataTransfer></label></link></display></diagram></v>");
    const std::vector<std::pair<std::string, std::string>> expected{
        {"a> found under <diagram>. Expected <graph>, <display>.", "parseViewpoint"},
        {"b> found under <graph>. Expected <node>, <link>.", "parseGraph"},
        {"c> found under <node>. Expected <node>", "parseNode"},
        {"d> found under <displayName>. Expected <graph>, <node>, <link>.", "parseDisplaySection"},
        {"e> found under <bandwidth>, <ratio>, <size>, expected <rowSet>", "parseDisplayInfo"},
        {"f> found under <rowSet>. Expected <queryRef>", "parseRowSet"},
        {"h> found under <link >. Expected <label>.", "parseDisplaySection"},
        {"i> found . Expected <dataTransfer>", "parseDataTransfer"},
        {"j> found under <dataTransfer>. Expected <bandwidth>, <ratio>, <size>", "parseDataTransfer"}};
    for (const auto& [message, operation] : expected)
        EXPECT_EQ(operationOf(log, "Unknown element <" + message), "DViewpointParser::" + operation);
}

TEST_F(Signatures, UnknownEnds) {
    create("<v><diagram><graph id='g'><link id='l' from='n' to='n'/></graph></diagram></v>");
    EXPECT_EQ(operationOf(log, "Diagram: Unknown node id in link found <n>"), "DViewpointParser::parseLink");
}

TEST_F(Signatures, CycleInAGroup) {
    create(
        "<v><diagram><graph id='g'><node id='r'/><node id='a'/><node id='b'/><link id='1' from='r' to='a'/>"
        "<link id='2' from='a' to='b'/><link id='3' from='b' to='a'/></graph></diagram></v>");
    EXPECT_EQ(operationOf(log, "nextLevel <= m_nodes.size()"), "Graph::calculateHierarchicalLevelsForGroup");
    EXPECT_EQ(operationOf(log, "err.succeeded()"), "Graph::calculateHierarchicalLevels");
}

TEST_F(Signatures, RaisedErrorOfACycleNamesTheOperationToo) {
    Diagram diagram;
    const NodePtr r = diagram.node("r"), a = diagram.node("a");
    diagram.link(r, a);
    diagram.link(a, a);
    diagram.graph.setChildrenAndParents();
    const error_code_t code = diagram.graph.calculateHierarchicalLevelsForGroup(nullptr);
    EXPECT_NE(code.function().find("Graph::calculateHierarchicalLevelsForGroup("), std::string::npos)
        << code.function();
}

TEST_F(Signatures, FailedStageOfCreate) {
    MemoryHost host(oneValue);
    variant_bag_t config = host.base->config, out;
    CountingProgress progress(1);
    EXPECT_EQ(tessera_1::DataProvider::create(config, out, host.library, nullptr, host.inputData, &progress),
              nullptr);
    EXPECT_EQ(operationOf(log, "dp->getData(progress).succeeded()"), "DataProvider::create");
}

TEST_F(Signatures, LimitOnDummies) {
    Diagram diagram;
    const NodePtr a = diagram.node("a"), b = diagram.node("b"), c = diagram.node("c");
    diagram.chain({a, b, c});
    diagram.link(a, c);
    ASSERT_TRUE(diagram.graph.calculateHierarchicalLevels().is_success());
    tessera_1::view_model::LayoutRun run;
    run.limits.maxElements = 1;
    EXPECT_TRUE(tessera_1::view_model::addDummyNodesForLabels(diagram.graph, run).is_false());
    EXPECT_EQ(operationOf(log, "the limit is 1 nodes and links"), "Graph::addDummyNodesForLabels");
}

}  // namespace
}  // namespace tessera_test
