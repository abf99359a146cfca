// The pipeline's frame: fetching, writing, refreshing, changing the mode, and what cancellation does to each.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "core/data_provider.h"
#include "tests/support/assertion_capture.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::DataProvider;
using Reports = std::vector<std::string>;

// Two nodes with a value each: "first" shows query q1, "second" query q2.
const char* const twoValues = R"(<v><diagram>
  <graph id="g"><node id="first"/><node id="second"/></graph>
  <display>
    <node id="first"><rowSet displayName="set 1"><queryRef displayName="row 1">/q1</queryRef></rowSet></node>
    <node id="second"><rowSet displayName="set 2"><queryRef displayName="row 2">/q2</queryRef></rowSet></node>
  </display>
</diagram></v>)";

// A link whose total has a table for each mode; the one of "bandwidth" has no value.
const char* const modes = R"(<v><diagram>
  <graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b" direction="forward"/></graph>
  <display><link id="l"><label location="center"><dataTransfer displayName="transfer">
    <bandwidth><rowSet><queryRef>/bandwidth</queryRef></rowSet></bandwidth>
    <ratio><rowSet><queryRef>/ratio</queryRef></rowSet></ratio>
    <size><rowSet><queryRef>/size</queryRef></rowSet></size>
  </dataTransfer></label></link></display>
</diagram></v>)";

struct Provider : testing::Test {
    void useHost(const std::string& viewpointXml) {
        host = std::make_unique<MemoryHost>(viewpointXml);
        host->result->values = {{"q1", "11"}, {"q2", "22"}, {"ratio", "0.5"}, {"size", "3 kB"}};
    }
    DataProvider* create(relay2::IProgress* progress = nullptr) {
        provider = DataProvider::create(host->base->config, createOut, host->library, &host->messenger,
                                        host->inputData, progress);
        return provider.get();
    }
    // What getMetadata writes now.
    variant_bag_t written() {
        variant_bag_t out;
        EXPECT_TRUE(provider->getMetadata(out, nullptr).is_success());
        return out;
    }
    static variant_bag_t modeRequest(const std::string& mode) {
        variant_bag_t in;
        in.add_variant_bag("mode").put("", mode);
        return in;
    }
    // The value of the first row of the node or link at this place of the output; "" when it shows none.
    static std::string valueIn(const variant_bag_t& info) {
        const variant_bag_t* rows = info.get_variant_bag("rows");
        if (rows == nullptr) return "";
        return std::string(rows->get_variant_bag("row")->get("value")->get<std::string_view>());
    }
    static Reports nodeValues(const variant_bag_t& out) {
        Reports values;
        for (auto node = out.get_variant_bag("nodes")->begin(); !node.at_end(); node.next())
            values.push_back(valueIn(*node.get_value().get_variant_bag("info")));
        return values;
    }
    static std::string totalOf(const variant_bag_t& out) {
        return valueIn(*out.get_variant_bag("links")->get_variant_bag("link")->get_variant_bag("totalInfo"));
    }
    static std::string textAt(const variant_bag_t& out, const char* child, const char* name) {
        return std::string(out.get_variant_bag(child)->get(name)->get<std::string_view>());
    }

    LogCapture log;
    std::unique_ptr<MemoryHost> host;
    std::unique_ptr<DataProvider> provider;
    variant_bag_t createOut;
};

TEST_F(Provider, WithoutDisplayInfosNoQueryRunsAndTheDataIsASuccess) {
    useHost("<v><diagram><graph id='g'><node id='a'/><node id='b'/></graph></diagram></v>");
    EXPECT_TRUE(create()->getData(nullptr).is_success());
    EXPECT_TRUE(host->result->runs.empty());
    EXPECT_EQ(nodeValues(written()), (Reports{"", ""}));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(Provider, CreateLeavesConfigurationAndOutputAlone) {
    useHost(twoValues);
    const variant_bag_t config = host->base->config;
    create();
    EXPECT_EQ(host->base->config, config);
    EXPECT_TRUE(createOut.is_empty());
}

TEST_F(Provider, FirstDisplayInfoThatFailsStopsNeitherTheSecondNorThePipeline) {
    useHost(twoValues);
    host->result->failing = {"q1"};
    ASSERT_NE(create(), nullptr);
    EXPECT_EQ(log.reports(), (Reports{"ERROR check err.succeeded() && tree"}));
    EXPECT_TRUE(provider->getData(nullptr).is_false());
    EXPECT_EQ(nodeValues(written()), (Reports{"", "22"}));
}

TEST_F(Provider, LaterDisplayInfoThatSucceedsDoesNotHideAnEarlierFailure) {
    useHost(twoValues);
    create();
    host->result->failing = {"q2"};
    EXPECT_TRUE(provider->getData(nullptr).is_false());
    host->result->failing = {"q1"};
    EXPECT_TRUE(provider->getData(nullptr).is_false());
    host->result->failing.clear();
    EXPECT_TRUE(provider->getData(nullptr).is_success());
}

TEST_F(Provider, EachDisplayInfoIsOneQueryNodesFirstThenLinks) {
    useHost(R"(<v><diagram>
      <graph><node id="z"/><node id="a"/><link id="l" from="z" to="a"/></graph>
      <display>
        <link id="l">
          <label location="center"><dataTransfer><size><rowSet><queryRef>/total</queryRef></rowSet></size></dataTransfer></label>
          <label location="to"><dataTransfer><size><rowSet><queryRef>/to</queryRef></rowSet></size></dataTransfer></label>
          <label location="from"><dataTransfer><size><rowSet><queryRef>/from</queryRef></rowSet></size></dataTransfer></label>
        </link>
        <node id="a"><rowSet><queryRef>/a</queryRef></rowSet></node>
        <node id="z"><rowSet><queryRef>/z</queryRef></rowSet></node>
      </display></diagram></v>)");
    create();
    Reports fetched;
    for (const auto& run : host->result->runs)
        fetched.push_back(run.columns->at(0)->getIdentifier());
    EXPECT_EQ(fetched, (Reports{"z", "a", "from", "to", "total"}));
}

TEST_F(Provider, MetadataIsDiagramNodesAndLinksAndNothingElse) {
    useHost(twoValues);
    create();
    const variant_bag_t out = written();
    EXPECT_EQ(out.value_count(), 0U);
    Reports names;
    for (auto it = out.begin(); !it.at_end(); it.next())
        names.emplace_back(it.get_name());
    EXPECT_EQ(names, (Reports{"diagram", "nodes", "links"}));
}

TEST_F(Provider, RefreshAfterTheResultChangedWritesTheSameDiagramWithNewValues) {
    useHost(twoValues);
    create();
    const std::string before = jsonOf(written());
    EXPECT_EQ(nodeValues(written()), (Reports{"11", "22"}));
    host->result->values = {{"q1", "33"}, {"q2", "44"}};
    variant_bag_t out;
    EXPECT_TRUE(provider->refresh(out, nullptr).is_success());
    EXPECT_EQ(nodeValues(out), (Reports{"33", "44"}));
    // With the old values put back, not a byte differs.
    std::string after = jsonOf(out);
    for (const auto& [now, then] :
         {std::pair{R"("value":"33")", R"("value":"11")"}, std::pair{R"("value":"44")", R"("value":"22")"}}) {
        const std::size_t at = after.find(now);
        ASSERT_NE(at, std::string::npos);
        after.replace(at, std::string(now).size(), then);
    }
    EXPECT_EQ(after, before);
}

TEST_F(Provider, RefreshThatFailsShowsTheOldValuesAndIsASuccess) {
    useHost(twoValues);
    create();
    const std::string before = jsonOf(written());
    host->result->values = {{"q1", "33"}, {"q2", "44"}};
    host->result->failing = {"q1", "q2"};
    variant_bag_t out;
    EXPECT_TRUE(provider->refresh(out, nullptr).is_success()) << "the result of getData is ignored";
    EXPECT_EQ(jsonOf(out), before);
}

TEST_F(Provider, DisplayModeIsBandwidthAtFirst) {
    useHost(modes);
    create();
    EXPECT_EQ(textAt(written(), "diagram", "displayMode"), "bandwidth");
    EXPECT_EQ(totalOf(written()), "");
}

TEST_F(Provider, ChangeDisplayModeShowsTheValuesOfThatModeAndRunsNoQuery) {
    useHost(modes);
    create();
    const auto runs = host->result->runs.size();
    for (const auto& [mode, value] :
         {std::pair{"ratio", "0.5"}, std::pair{"size", "3 kB"}, std::pair{"bandwidth", ""}}) {
        variant_bag_t out;
        EXPECT_TRUE(provider->changeDisplayMode(modeRequest(mode), out, nullptr).is_success());
        EXPECT_EQ(textAt(out, "diagram", "displayMode"), mode);
        EXPECT_EQ(totalOf(out), value) << mode;
    }
    EXPECT_EQ(host->result->runs.size(), runs);
}

TEST_F(Provider, ChangeDisplayModeToNoTextSetsNoText) {
    useHost(modes);
    create();
    variant_bag_t out;
    EXPECT_TRUE(provider->changeDisplayMode(modeRequest(""), out, nullptr).is_success());
    EXPECT_EQ(provider->m_graph->m_displayMode, "");
    EXPECT_EQ(textAt(out, "diagram", "displayMode"), "");
    EXPECT_EQ(totalOf(out), "");
}

TEST_F(Provider, ModeBagWithoutAnOwnValueReadsAsNoText) {
    useHost(modes);
    create();
    variant_bag_t in, out;
    in.add_variant_bag("mode").put("name", "ratio");
    EXPECT_TRUE(provider->changeDisplayMode(in, out, nullptr).is_success());
    EXPECT_EQ(provider->m_graph->m_displayMode, "");
}

TEST_F(Provider, UnknownDisplayModeIsTakenAsItIsAndCanBeLeftAgain) {
    useHost(modes);
    create();
    variant_bag_t unknown, again;
    EXPECT_TRUE(provider->changeDisplayMode(modeRequest("Ratio"), unknown, nullptr).is_success());
    EXPECT_EQ(textAt(unknown, "diagram", "displayMode"), "Ratio");
    EXPECT_EQ(totalOf(unknown), "");
    // The look-up has left nothing behind.
    for (const auto& node : provider->m_graph->m_nodeList)
        EXPECT_FALSE(node->m_dataTransfers.contains("Ratio")) << node->m_id;
    for (const auto& link : provider->m_graph->m_linkList)
        for (const auto* table : {&link->m_displayInfo.m_fromInfo, &link->m_displayInfo.m_toInfo,
                                  &link->m_displayInfo.m_totalInfo})
            EXPECT_FALSE(table->contains("Ratio")) << link->m_id;
    EXPECT_TRUE(provider->getData(nullptr).is_success());
    EXPECT_TRUE(provider->changeDisplayMode(modeRequest("ratio"), again, nullptr).is_success());
    EXPECT_EQ(totalOf(again), "0.5");
}

TEST_F(Provider, DisplayModeIsNotLocalised) {
    useHost(modes);
    create();
    const auto catalogs = std::make_shared<MemoryCatalogSource>();
    catalogs->catalogs["slicer2"] =
        std::make_shared<MemoryCatalog>(std::map<std::string, std::string>{{"ratio", "Anteil"}});
    optstore2::setMessageCatalogSource(catalogs);
    variant_bag_t out;
    EXPECT_TRUE(provider->changeDisplayMode(modeRequest("ratio"), out, nullptr).is_success());
    optstore2::setMessageCatalogSource(nullptr);
    EXPECT_EQ(textAt(out, "diagram", "displayMode"), "ratio");
}

TEST_F(Provider, ChangeDisplayModeWithoutAModeBagIsNotValidDataAndChangesNothing) {
    useHost(modes);
    create();
    variant_bag_t in, out;
    in.put("mode", "ratio");
    const error_code_t code = provider->changeDisplayMode(in, out, nullptr);
    EXPECT_TRUE(code.is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(out.is_empty());
    EXPECT_EQ(provider->m_graph->m_displayMode, "bandwidth");
    EXPECT_EQ(log.reports(), Reports{});
}

// A request comes from outside: unlike a document's attribute, what it holds must not end the host.
TEST_F(Provider, DisplayModeThatIsNotAStringIsNotValidDataAndChangesNothing) {
    useHost(modes);
    create();
    const AssertionCapture assertions;
    variant_bag_t in, out;
    in.add_variant_bag("mode").put("", basekit2::variant_t(5));
    EXPECT_TRUE(provider->changeDisplayMode(in, out, nullptr).is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(out.is_empty());
    EXPECT_EQ(provider->m_graph->m_displayMode, "bandwidth");
    EXPECT_EQ(assertions.messages(), Reports{});
}

TEST_F(Provider, FirstOfSeveralModeBagsCounts) {
    useHost(modes);
    create();
    variant_bag_t in = modeRequest("size"), out;
    in.add_variant_bag("mode").put("", "ratio");
    EXPECT_TRUE(provider->changeDisplayMode(in, out, nullptr).is_success());
    EXPECT_EQ(provider->m_graph->m_displayMode, "size");
}

TEST_F(Provider, CancelledBeforeTheFetchIsTheCancellationErrorAndNoQueryRuns) {
    useHost(twoValues);
    create();
    host->result->runs.clear();
    CountingProgress progress(1);
    const error_code_t code = provider->getData(&progress);
    EXPECT_TRUE(code.is(bk2::error::Cancelled));
    EXPECT_FALSE(code.succeeded());
    EXPECT_TRUE(host->result->runs.empty());
}

TEST_F(Provider, CancelledInAQueryIsTheFalseCode) {
    useHost(twoValues);
    create();
    CountingProgress progress(2);  // after the test at the start
    EXPECT_TRUE(provider->getData(&progress).is_false());
    EXPECT_EQ(log.reports(), Reports{}) << "cancellation is nothing to report";
}

TEST_F(Provider, CancelledBeforeWritingLeavesTheOutputUntouched) {
    useHost(twoValues);
    create();
    CountingProgress progress(1);
    variant_bag_t out;
    EXPECT_TRUE(provider->getMetadata(out, &progress).is(bk2::error::Cancelled));
    EXPECT_TRUE(out.is_empty());
}

TEST_F(Provider, CancelledAfterWritingLeavesWhatWasWritten) {
    useHost(twoValues);
    create();
    CountingProgress progress(2);
    variant_bag_t out;
    EXPECT_TRUE(provider->getMetadata(out, &progress).is(bk2::error::Cancelled));
    EXPECT_EQ(jsonOf(out), jsonOf(written()));
}

TEST_F(Provider, ProgressThatIsNeverCancelledChangesNothing) {
    useHost(twoValues);
    CountingProgress progress;
    create(&progress);
    variant_bag_t out;
    EXPECT_TRUE(provider->refresh(out, &progress).is_success());
    EXPECT_EQ(jsonOf(out), jsonOf(written()));
}

TEST_F(Provider, CreateCancelledBeforeTheFetchIsReportedRunTwiceAndGivesNoProvider) {
    useHost(twoValues);
    CountingProgress progress(1);
    EXPECT_EQ(create(&progress), nullptr);
    EXPECT_EQ(log.reports(), (Reports{"ERROR check dp->getData(progress).succeeded()"}));
    EXPECT_EQ(progress.calls(), 2) << "the failed step is run once more for its report, and only once";
    EXPECT_TRUE(host->result->runs.empty());
}

TEST_F(Provider, CreateContinuesAfterAFetchThatWasCancelledInAQuery) {
    useHost(twoValues);
    CountingProgress progress(2);
    ASSERT_NE(create(&progress), nullptr) << "the false code passes the test of the step";
    EXPECT_EQ(log.reports(), Reports{});
    EXPECT_EQ(nodeValues(written()), (Reports{"", ""}));
    EXPECT_TRUE(provider->getData(nullptr).is_success());
    EXPECT_EQ(nodeValues(written()), (Reports{"11", "22"}));
}

TEST_F(Provider, CreateWithoutAGraphGivesNoProvider) {
    useHost(twoValues);
    variant_bag_t out;
    EXPECT_EQ(DataProvider::create(host->base->config, out, nullptr, nullptr, host->inputData, nullptr),
              nullptr);
    EXPECT_EQ(log.reports(), (Reports{"ERROR check library && result", "ERROR check dp->m_graph"}));
}

TEST_F(Provider, KeepsLibraryAndInputDataAndReleasesEverythingWithItself) {
    useHost(twoValues);
    const std::shared_ptr<MemoryResult> result = host->result;
    create();
    const std::weak_ptr<tessera_1::view_model::Graph> graph = provider->m_graph;
    const std::weak_ptr<tessera_1::view_model::Node> node = provider->m_graph->m_nodeList[0];
    EXPECT_EQ(provider->m_queryLibrary, host->library);
    EXPECT_EQ(provider->m_inputData, host->inputData);
    host.reset();  // the provider keeps references of its own
    EXPECT_TRUE(provider->getData(nullptr).is_success());
    EXPECT_EQ(nodeValues(written()), (Reports{"11", "22"}));
    provider.reset();
    EXPECT_TRUE(graph.expired());
    EXPECT_TRUE(node.expired());
    EXPECT_EQ(result.use_count(), 1) << "the input data is still held";
}

}  // namespace
}  // namespace tessera_test
