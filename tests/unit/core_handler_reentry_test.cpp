// Requests that come while the handler fetches its configuration, and limits of what it locks.
#include <gtest/gtest.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <string>
#include <thread>

#include "core/diagram_request_handler.h"
#include "core/factory.h"
#include "tests/support/assertion_capture.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using panelcore_1::IRequestHandler;

const char* const oneNode = "<v><diagram><graph id='g'><node id='a'/></graph><display/></diagram></v>";

// Calls `onConfig` before it serves "config".
class CallingBaseHandler final : public IRequestHandler {
  public:
    explicit CallingBaseHandler(variant_bag_t configuration) : config(std::move(configuration)) {}
    std::string getDomainName() const override { return "base"; }
    error_code_t handleRequest(const std::string&, const variant_bag_t&, variant_bag_t& out,
                               relay2::IProgress*) override {
        if (onConfig) onConfig(++calls);
        out = config;
        return {};
    }

    variant_bag_t config;
    std::function<void(int call)> onConfig;
    std::atomic<int> calls{0};
};

struct HandlerReentry : testing::Test {
    explicit HandlerReentry(const char* document = oneNode)
        : host(document), base(std::make_shared<CallingBaseHandler>(bagOf(document))) {
        handler = tessera_1::createDiagramViewRequestHandler(host.library, host.inputData, base,
                                                             host.filterMgr, &host.messenger);
    }
    error_code_t send(const std::string& name, variant_bag_t& out) {
        return handler->handleRequest(name, {}, out, nullptr);
    }

    LogCapture log;
    MemoryHost host;
    std::shared_ptr<CallingBaseHandler> base;
    std::shared_ptr<IRequestHandler> handler;
};

TEST_F(HandlerReentry, ACreateFromInsideConfigIsServed) {
    variant_bag_t inner, outer;
    base->onConfig = [&](int call) {
        if (call != 1) return;
        EXPECT_TRUE(send("create", inner).is_success());
    };
    EXPECT_TRUE(send("create", outer).is_success());
    EXPECT_EQ(jsonOf(inner), jsonOf(outer));
    EXPECT_EQ(base->calls, 2);
    EXPECT_EQ(log.reports(), std::vector<std::string>{});
}

TEST_F(HandlerReentry, OtherRequestsFromInsideConfigAreServedAsWell) {
    variant_bag_t inner, outer;
    base->onConfig = [&](int) {
        EXPECT_TRUE(send("refresh", inner).is_false()) << "there is no diagram yet";
    };
    EXPECT_TRUE(send("create", outer).is_success());
}

TEST_F(HandlerReentry, AThreadDoesNotWaitForAnothersConfig) {
    std::promise<void> isCalled, mayReturn;
    base->onConfig = [&](int call) {
        if (call != 1) return;
        isCalled.set_value();
        mayReturn.get_future().wait();
    };
    variant_bag_t first, second;
    std::thread slow([&] { EXPECT_TRUE(send("create", first).is_success()); });
    isCalled.get_future().wait();
    EXPECT_TRUE(send("create", second).is_success()) << "while the first still waits for its configuration";
    mayReturn.set_value();
    slow.join();
    EXPECT_EQ(jsonOf(first), jsonOf(second));
}

TEST_F(HandlerReentry, TheFirstConfigurationOfTwoThreadsIsKept) {
    std::promise<void> isCalled, mayReturn;
    base->onConfig = [&](int call) {
        if (call != 1) return;
        isCalled.set_value();
        mayReturn.get_future().wait();
        base->config = bagOf("<v><diagram><graph id='late'/></diagram></v>");
    };
    variant_bag_t first, second;
    std::thread slow([&] { EXPECT_TRUE(send("create", first).is_success()); });
    isCalled.get_future().wait();
    EXPECT_TRUE(send("create", second).is_success());
    mayReturn.set_value();
    slow.join();
    EXPECT_EQ(jsonOf(first), jsonOf(second)) << "the late configuration is not used";
}

// While a "create" is inside a query library that does not return, whatever it waits for.
TEST(HandlerConfiguration, IsReadWhileACreateIsInsideACallback) {
    class HoldingLibrary final : public ForwardingQueryLibrary {
      public:
        using ForwardingQueryLibrary::ForwardingQueryLibrary;
        sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition,
                                          relay2::IMessenger* messenger) override {
            isInside.set_value();
            mayReturn.get_future().wait();
            return ForwardingQueryLibrary::buildQuery(definition, messenger);
        }

        std::promise<void> isInside, mayReturn;
    };
    const LogCapture log;
    MemoryHost host(
        "<v><diagram><graph id='g'><node id='a'/></graph>"
        "<display><node id='a'><rowSet><queryRef>/q</queryRef></rowSet></node></display></diagram></v>");
    const auto library = basekit2::make_counted<HoldingLibrary>(host.library);
    tessera_1::DiagramViewRequestHandler handler(library, host.inputData, host.base, host.filterMgr, nullptr);
    const variant_bag_t& before =
        tessera_1::DiagramViewRequestHandler(library, host.inputData, nullptr, host.filterMgr, nullptr)
            .getConfig({}, nullptr);
    EXPECT_TRUE(before.is_empty()) << "without a base handler there is no configuration";
    std::thread creates([&] {
        variant_bag_t out;
        EXPECT_TRUE(handler.create({}, out, nullptr).is_success());
    });
    library->isInside.get_future().wait();
    auto config = std::async(std::launch::async, [&] { return jsonOf(handler.getConfig({}, nullptr)); });
    const bool isThere = config.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    library->mayReturn.set_value();
    creates.join();
    EXPECT_TRUE(isThere) << "the question waited for the request";
    EXPECT_EQ(config.get(), jsonOf(host.base->config));
}

// For the thread sanitizer as well: the bag that a call returned is read while another fills the handler's.
TEST_F(HandlerReentry, AnEmptyConfigurationThatWasReturnedStaysEmpty) {
    base->config = {};
    tessera_1::DiagramViewRequestHandler alone(host.library, host.inputData, base, host.filterMgr, nullptr);
    const variant_bag_t& none = alone.getConfig({}, nullptr);
    base->config = bagOf(oneNode);
    std::thread fetches([&] { EXPECT_FALSE(alone.getConfig({}, nullptr).is_empty()); });
    for (int i = 0; i < 1'000; ++i)
        EXPECT_TRUE(none.is_empty());
    fetches.join();
    EXPECT_EQ(jsonOf(alone.getConfig({}, nullptr)), jsonOf(base->config));
}

// The assertion switch is read once in a process, so this runs in one of its own. A handler that holds a lock
// over its report would wait for itself here, until the alarm ends it.
struct HandlerReentryDeathTest : testing::Test {
    HandlerReentryDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static inline IRequestHandler* asserting = nullptr;
    static inline int depth = 0;

    static void createAgain(const char*, const char*, const char*, int) {
        variant_bag_t out;
        if (++depth == 1 && !asserting->handleRequest("create", {}, out, nullptr).succeeded()) ++depth;
    }
};

TEST_F(HandlerReentryDeathTest, ACreateFromTheAssertionOfAnEmptyConfigurationIsServed) {
    EXPECT_EXIT(
        {
            alarm(30);
            setenv("tessera_ERROR_HANDLING", "assert", 1);
            const LogCapture log;
            MemoryHost host("<v/>");
            const auto handler = host.makeHandler();
            asserting = handler.get();
            RTBASE_2_18::set_assertion_handler(createAgain);
            variant_bag_t out;
            const bool isRefused =
                handler->handleRequest("create", {}, out, nullptr).is(bk2::error::IsNot.Valid.Data);
            std::_Exit(isRefused && depth == 3 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace tessera_test
