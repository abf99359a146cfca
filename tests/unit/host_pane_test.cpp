// Panes on an engine in memory: many on one viewpoint and one result, filters, messages, cancellation.
#include "host/pane/pane.h"

#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "host/engine/declaration_check.h"
#include "host/pane/message_list.h"
#include "tests/support/json_text.h"
#include "tests/support/memory_engine.h"

namespace tessera_test {
namespace {

using namespace tessera_host;
using basekit2::variant_bag_t;

constexpr const char* document = R"xml(<viewpoint>
  <queries>
    <query id="Count" from="flows">COUNT</query>
    <query id="Bytes" from="flows" key="src">SUM bytes</query>
    <query id="Wrong" from="nowhere">COUNT</query>
    <query id="Endless" from="flows">LOOP</query>
  </queries>
  <filters><filter name="selection">dst = 1</filter></filters>
  <diagram>
    <graph><node id="a"/><node id="b"/><node id="c"/></graph>
    <display>
      <node id="a"><rowSet><queryRef displayName="all">/Count</queryRef><queryRef>/Bytes/1</queryRef></rowSet></node>
      <node id="b"><rowSet><queryRef>/Bytes/2</queryRef></rowSet></node>
      LAST
    </display>
  </diagram>
</viewpoint>)xml";

std::string withLast(const std::string& row) {
    std::string text = document;
    return text.replace(text.find("LAST"), 4, row);
}

class PaneTest : public testing::Test {
  protected:
    static Viewpoint::Pointer read(const std::string& lastRow = {}) {
        auto viewpoint = Viewpoint::readText(withLast(lastRow), "flows.xml", {});
        EXPECT_TRUE(viewpoint);
        return *viewpoint;
    }

    // The values of "a" and "b" after this request.
    static std::string valuesAfter(Pane& pane, const char* request, const RequestOptions& options = {}) {
        variant_bag_t out;
        const auto code = pane.request(request, {}, out, options);
        EXPECT_TRUE(code.is_success()) << code.message();
        return textOf(out);
    }

    static bool has(const std::string& text, const std::string& value) {
        return text.find('"' + value + '"') != std::string::npos;
    }

    std::shared_ptr<MemoryResultStore> store = std::make_shared<MemoryResultStore>(MemoryTables{
        {"flows", {{"src", "dst", "bytes"}, {{1, 1, 100}, {1, 2, 23}, {2, 1, 4000}, {2, 1, 1}, {3, 3, 7}}}}});
};

TEST_F(PaneTest, ShowsValuesOfAnyEngine) {
    const auto viewpoint = read();
    Pane pane(viewpoint, store, {});
    const std::string all = valuesAfter(pane, "create");
    EXPECT_TRUE(has(all, "5"));
    EXPECT_TRUE(has(all, "123"));
    EXPECT_TRUE(has(all, "4001"));
    EXPECT_EQ(store->snapshots, 1);
}

TEST_F(PaneTest, ChangedFiltersApplyFromTheNextRequestOn) {
    const auto viewpoint = read();
    Pane pane(viewpoint, store, viewpoint->filters());
    const std::string own = valuesAfter(pane, "create");
    EXPECT_TRUE(has(own, "3"));
    EXPECT_TRUE(has(own, "100"));
    pane.setFilters({{"selection", {"dst = 2", {}}}});
    EXPECT_TRUE(has(valuesAfter(pane, "refresh"), "23"));
    pane.setFilters({});
    EXPECT_TRUE(has(valuesAfter(pane, "refresh"), "123"));
}

TEST_F(PaneTest, AnUpdateSeesOneStateAndTheNextTheNewest) {
    Pane pane(read(), store, {});
    EXPECT_TRUE(has(valuesAfter(pane, "create"), "123"));
    store->replace({{"flows", {{"src", "dst", "bytes"}, {{1, 1, 77}}}}});
    const std::string next = valuesAfter(pane, "refresh");
    EXPECT_TRUE(has(next, "77"));
    EXPECT_TRUE(has(next, "1"));
    EXPECT_EQ(store->snapshots, 2);
}

TEST_F(PaneTest, MessagesBelongToTheirRequest) {
    Pane pane(read(R"(<node id="c"><rowSet><queryRef>/Wrong</queryRef></rowSet></node>)"), store, {});
    MessageList first;
    (void)valuesAfter(pane, "create", {{}, &first});
    ASSERT_EQ(first.messages().size(), 1U);
    EXPECT_EQ(first.messages()[0].text, "query \"Wrong\": there is no table nowhere");
    EXPECT_EQ(first.messages()[0].severity, relay2::severity_t::error);
    EXPECT_EQ(first.messages()[0].position.line, 5U);
    (void)valuesAfter(pane, "refresh");  // its messages are dropped
    MessageList third;
    (void)valuesAfter(pane, "refresh", {{}, &third});
    EXPECT_EQ(third.messages(), first.messages());
    EXPECT_EQ(first.take().size(), 1U);
    EXPECT_TRUE(first.messages().empty());
}

TEST_F(PaneTest, ALockedResultFailsTheRequestOnceAndForAllItsQueries) {
    Pane pane(read(), store, {});
    EXPECT_TRUE(has(valuesAfter(pane, "create"), "123"));
    store->isLocked = true;
    MessageList messages;
    EXPECT_TRUE(has(valuesAfter(pane, "refresh", {{}, &messages}), "123"));  // the last good values stay
    ASSERT_EQ(messages.messages().size(), 1U);
    EXPECT_EQ(messages.messages()[0].text, "the tables are locked");
    store->isLocked = false;
    EXPECT_TRUE(has(valuesAfter(pane, "refresh"), "123"));
}

TEST_F(PaneTest, ARequestIsCancelledByItsToken) {
    Pane pane(read(R"(<node id="c"><rowSet><queryRef>/Endless</queryRef></rowSet></node>)"), store, {});
    CancelSource source;
    MessageList messages;
    variant_bag_t out;
    std::thread canceller([&] {
        while (store->single < 4)
            std::this_thread::yield();
        source.cancel();
    });
    const auto code = pane.request("create", {}, out, {source.token(), &messages});
    canceller.join();
    EXPECT_TRUE(code.is(bk2::error::Cancelled)) << code.name();
    EXPECT_TRUE(messages.messages().empty());
    CancelSource before;
    before.cancel();
    EXPECT_TRUE(pane.request("create", {}, out, {before.token(), nullptr}).is(bk2::error::Cancelled));
}

TEST_F(PaneTest, ARequestThatIsCancelledBeforeItBeginsHasDoneNothing) {
    Pane pane(read(), store, {});
    CancelSource source;
    source.cancel();
    variant_bag_t out;
    EXPECT_TRUE(pane.request("create", {}, out, {source.token(), nullptr}).is(bk2::error::Cancelled));
    EXPECT_TRUE(out.is_empty());
    EXPECT_EQ(store->snapshots, 0);
    EXPECT_TRUE(has(valuesAfter(pane, "create"), "4001"));
}

// The first request runs until the test cancels it, so only its own token can end the second one.
TEST_F(PaneTest, ARequestThatWaitsForAnotherIsCancelledByItsToken) {
    using namespace std::chrono_literals;
    Pane pane(read(R"(<node id="c"><rowSet><queryRef>/Endless</queryRef></rowSet></node>)"), store, {});
    CancelSource firstSource;
    CancelSource secondSource;
    std::thread first([&] {
        variant_bag_t out;
        EXPECT_TRUE(
            pane.request("create", {}, out, {firstSource.token(), nullptr}).is(bk2::error::Cancelled));
    });
    while (store->single < 4)
        std::this_thread::yield();
    auto second = std::async(std::launch::async, [&] {
        variant_bag_t out;
        const auto code = pane.request("refresh", {}, out, {secondSource.token(), nullptr});
        return code.is(bk2::error::Cancelled) && out.is_empty();
    });
    EXPECT_EQ(second.wait_for(50ms), std::future_status::timeout);
    secondSource.cancel();
    EXPECT_EQ(second.wait_for(30s), std::future_status::ready);
    firstSource.cancel();
    first.join();
    EXPECT_TRUE(second.get());
}

TEST_F(PaneTest, ManyPanesShareAViewpointAndAResultOnSeveralThreads) {
    const auto viewpoint = read();
    constexpr int threadCount = 4;
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    std::vector<std::string> texts(threadCount);
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&, i] {
            const std::string filter = "dst = " + std::to_string(i % 2 + 1);
            for (int round = 0; round < 5; ++round) {
                Pane pane(viewpoint, store, {{"selection", {filter, {}}}});
                MessageList messages;
                variant_bag_t out;
                EXPECT_TRUE(pane.request("create", {}, out, {{}, &messages}).is_success());
                EXPECT_TRUE(messages.messages().empty());
                texts[static_cast<std::size_t>(i)] = textOf(out);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(has(texts[0], "100"));
    EXPECT_TRUE(has(texts[1], "23"));
    EXPECT_EQ(texts[0], texts[2]);
    EXPECT_EQ(texts[1], texts[3]);
    EXPECT_EQ(store->snapshots, threadCount * 5);
}

TEST_F(PaneTest, OneThreadMayChangeFiltersWhileAnotherSendsRequests) {
    Pane pane(read(), store, {});
    std::thread changer([&] {
        for (int i = 0; i < 1000; ++i)
            pane.setFilters({{"selection", {"dst = " + std::to_string(i % 3), {}}}});
    });
    variant_bag_t out;
    EXPECT_TRUE(pane.request("create", {}, out, {}).is_success());
    for (int i = 0; i < 20; ++i) {
        out = {};
        EXPECT_TRUE(pane.request("refresh", {}, out, {}).is_success());
    }
    changer.join();
}

// Two rows with the same reference: one question.
TEST_F(PaneTest, EqualReferencesAreQueriedOnceARequest) {
    Pane pane(read(R"(<node id="c"><rowSet><queryRef>/Bytes/2</queryRef></rowSet></node>)"), store, {});
    (void)valuesAfter(pane, "create");
    EXPECT_EQ(store->single, 3);  // Count, Bytes/1 and Bytes/2
    EXPECT_EQ(store->together, 0);
}

TEST_F(PaneTest, ManyCostlyReferencesAreQueriedTogether) {
    std::string rows;
    for (int i = 10; i < 60; ++i)
        rows += "<queryRef>/Bytes/" + std::to_string(i) + "</queryRef>";
    store->work = 1'000'000;
    Pane pane(read("<node id=\"c\"><rowSet>" + rows + "</rowSet></node>"), store, {});
    (void)valuesAfter(pane, "create");
    EXPECT_EQ(store->single, 2);  // Count, and the first of Bytes, which showed what it costs
    EXPECT_EQ(store->together, 1);
}

TEST_F(PaneTest, UnknownRequestsAreTheHandlersToRefuse) {
    Pane pane(read(), store, {});
    variant_bag_t out;
    EXPECT_TRUE(pane.request("config", {}, out, {}).is(bk2::error::FailedTo));
    EXPECT_TRUE(out.is_empty());
    EXPECT_EQ(store->snapshots, 0);  // a request without queries begins no snapshot
}

TEST_F(PaneTest, DeclarationsAreCheckedAgainstAnyEngine) {
    const auto viewpoint = read();
    const auto problems =
        checkAgainstResult(*store, *viewpoint->declarations(), {{"global", {"nonsense", {}}}});
    ASSERT_EQ(problems.size(), 2U);
    EXPECT_EQ(problems[0].text, "filter \"global\" is not \"COLUMN = NUMBER\"");
    EXPECT_EQ(problems[1].text, "query \"Wrong\": there is no table nowhere");
}

}  // namespace
}  // namespace tessera_test
