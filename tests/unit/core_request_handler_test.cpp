// The request handler: dispatch by name, the configuration it keeps, the states with and without a diagram.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/factory.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using Reports = std::vector<std::string>;

const char* const twoNodes = R"(<v><diagram>
  <graph id="g"><node id="a"/><node id="b"/></graph>
  <display><node id="a"><rowSet><queryRef>/q</queryRef></rowSet></node></display>
</diagram></v>)";

struct DiagramRequestHandler : testing::Test {
    void useHost(const std::string& viewpointXml) {
        host = std::make_unique<MemoryHost>(viewpointXml);
        host->result->values = {{"q", "7"}};
        handler = host->makeHandler();
    }
    error_code_t send(const std::string& name) {
        out = variant_bag_t();
        return handler->handleRequest(name, in, out, nullptr);
    }

    LogCapture log;
    std::unique_ptr<MemoryHost> host;
    std::shared_ptr<panelcore_1::IRequestHandler> handler;
    variant_bag_t in;
    variant_bag_t out;
};

TEST_F(DiagramRequestHandler, DomainNameIsDiagramViewInEveryState) {
    useHost(twoNodes);
    EXPECT_EQ(handler->getDomainName(), "diagramView");
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(handler->getDomainName(), "diagramView");
    useHost("<v/>");
    EXPECT_FALSE(send("create").succeeded());
    EXPECT_EQ(handler->getDomainName(), "diagramView");
}

TEST_F(DiagramRequestHandler, CreateWritesTheDiagram) {
    useHost(twoNodes);
    EXPECT_TRUE(send("create").is_success());
    EXPECT_NE(out.get_variant_bag("diagram"), nullptr);
    EXPECT_NE(out.get_variant_bag("nodes"), nullptr);
    EXPECT_NE(out.get_variant_bag("links"), nullptr);
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(DiagramRequestHandler, CreateAddsToWhatTheOutputBagHolds) {
    useHost(twoNodes);
    out.put("mine", "1");
    out.add_variant_bag("mine too");
    EXPECT_TRUE(handler->handleRequest("create", in, out, nullptr).is_success());
    EXPECT_NE(out.get("mine"), nullptr);
    EXPECT_EQ(out.begin().get_name(), "mine too");
    EXPECT_NE(out.get_variant_bag("diagram"), nullptr);
}

TEST_F(DiagramRequestHandler, EmptyConfigurationIsThePaneConfigIsEmptyError) {
    useHost("<v/>");
    const error_code_t code = send("create");
    EXPECT_TRUE(code.is(bk2::error::IsNot.Valid.Data));
    EXPECT_FALSE(code.succeeded());
    EXPECT_EQ(code.message(), "Pane config is empty");
    EXPECT_EQ(code.file(), "core/diagram_request_handler");
    EXPECT_NE(code.function().find("DiagramViewRequestHandler::create("), std::string::npos)
        << code.function();
    EXPECT_GT(code.line(), 0);
    EXPECT_TRUE(out.is_empty());
}

TEST_F(DiagramRequestHandler, EmptyConfigurationIsLoggedWithTheErrorsExpressionAndMessage) {
    useHost("<v/>");
    const error_code_t code = send("create");
    ASSERT_EQ(log.lines().size(), 1U);
    const LogLine line = log.lines()[0];
    EXPECT_EQ(line.level, "ERROR");
    EXPECT_TRUE(line.text.starts_with("Check failed: !m_configBag.is_empty() in ")) << line.text;
    EXPECT_TRUE(line.text.ends_with(
        R"( 'bk2::error::IsNot.Valid.Data(_U("Pane config is empty")):Pane config is empty')"
        ", at file: core/diagram_request_handler:" +
        std::to_string(code.line())))
        << line.text;
}

TEST_F(DiagramRequestHandler, EmptyConfigurationLeavesTheHandlerWithoutDiagram) {
    useHost("<v/>");
    EXPECT_FALSE(send("create").succeeded());
    for (const char* name : {"refresh", "changeDisplayMode"}) {
        EXPECT_TRUE(send(name).is_false()) << name;
        EXPECT_TRUE(out.is_empty()) << name;
    }
    EXPECT_EQ(host->result->runs.size(), 0U);
    EXPECT_EQ(log.lines().size(), 1U) << "only the create may have been reported";
}

TEST_F(DiagramRequestHandler, EmptyConfigurationIsFetchedAgain) {
    useHost("<v/>");
    EXPECT_FALSE(send("create").succeeded());
    host->base->config = bagOf(twoNodes);
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(host->base->calls, 2);
    EXPECT_TRUE(send("refresh").is_success());
}

TEST_F(DiagramRequestHandler, SecondCreateReadsNoConfigurationAndReturnsTheSameDiagram) {
    useHost(twoNodes);
    EXPECT_TRUE(send("create").is_success());
    const std::string first = jsonOf(out);
    host->base->config = bagOf("<v><diagram><graph id='other'><node id='z'/></graph></diagram></v>");
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(jsonOf(out), first);
    EXPECT_EQ(host->base->calls, 1);
}

TEST_F(DiagramRequestHandler, SecondCreateRunsNoQueryAndParsesNothing) {
    useHost(twoNodes);
    EXPECT_TRUE(send("create").is_success());
    const std::string first = jsonOf(out);
    const auto runs = host->result->runs.size();
    EXPECT_EQ(runs, 1U);
    EXPECT_EQ(host->library->built, 1);
    host->result->values["q"] = "8";
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(host->result->runs.size(), runs);
    EXPECT_EQ(host->library->built, 1);
    EXPECT_EQ(jsonOf(out), first);
}

TEST_F(DiagramRequestHandler, EveryOtherNameIsUnknownAndReturnsAnErrorThatCarriesIt) {
    useHost(twoNodes);
    for (const bool withDiagram : {false, true}) {
        if (withDiagram) {
            EXPECT_TRUE(send("create").is_success());
        }
        for (const char* name : {"Create", "CREATE", "create ", " create", "creat", "Refresh", "refresh\n",
                                 "changedisplaymode", "changeDisplayMode ", "config", "close", ""}) {
            const error_code_t code = send(name);
            EXPECT_TRUE(code.is(bk2::error::FailedTo)) << name;
            EXPECT_FALSE(code.succeeded()) << name;
            EXPECT_EQ(code.message(), name);
            EXPECT_TRUE(out.is_empty()) << name;
        }
    }
    EXPECT_EQ(log.reports(), Reports{}) << "an unknown name is not logged";
    EXPECT_EQ(host->base->calls, 1) << "only \"create\" may request the configuration";
}

TEST_F(DiagramRequestHandler, NameWithAZeroByteAfterItIsUnknown) {
    using namespace std::string_literals;
    useHost(twoNodes);
    EXPECT_TRUE(send("create\0"s).is(bk2::error::FailedTo));
}

TEST_F(DiagramRequestHandler, RefreshAndChangeDisplayModeWithoutDiagramAreTheFalseCode) {
    useHost(twoNodes);
    for (const char* name : {"refresh", "changeDisplayMode"}) {
        EXPECT_TRUE(send(name).is_false()) << name;
        EXPECT_TRUE(out.is_empty()) << name;
    }
    EXPECT_EQ(host->base->calls, 0);
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(DiagramRequestHandler, InheritsTaskNameStrategyAndClose) {
    useHost(twoNodes);
    std::string taskName = "not touched";
    handler->buildTaskName("refresh", in, taskName);
    EXPECT_EQ(taskName, "refresh");
    EXPECT_EQ(handler->getTaskDisplacementStrategy(), panelcore_1::ITaskDisplacementStrategy::getDefault());
    EXPECT_TRUE(send("create").is_success());
    const std::string before = jsonOf(out);
    handler->close();
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(jsonOf(out), before);
}

// A base handler whose result of each request is the test's.
class ScriptedBase final : public ForwardingRequestHandler {
  public:
    using Script = std::function<error_code_t(const std::string&, const variant_bag_t&, variant_bag_t&,
                                              relay2::IProgress*)>;
    explicit ScriptedBase(Script script) : ForwardingRequestHandler(nullptr), m_script(std::move(script)) {}
    error_code_t handleRequest(const std::string& name, const variant_bag_t& in, variant_bag_t& out,
                               relay2::IProgress* progress) override {
        return m_script(name, in, out, progress);
    }

  private:
    Script m_script;
};

TEST_F(DiagramRequestHandler, BaseHandlerIsSentConfigWithTheRequestsBagAndProgress) {
    useHost(twoNodes);
    in.put("who", "pane");
    const CountingProgress progress;
    Reports requests;
    const relay2::IProgress* passed = nullptr;
    const auto base = std::make_shared<ScriptedBase>([&](const std::string& name, const variant_bag_t& bag,
                                                         variant_bag_t& config, relay2::IProgress* sink) {
        requests.push_back(name + jsonOf(bag) + (config.is_empty() ? " into an empty bag" : ""));
        passed = sink;
        config = host->base->config;
        return error_code_t::success();
    });
    handler =
        tessera_1::createDiagramViewRequestHandler(host->library, host->inputData, base, nullptr, nullptr);
    EXPECT_TRUE(
        handler->handleRequest("create", in, out, const_cast<CountingProgress*>(&progress)).is_success());
    EXPECT_EQ(requests, (Reports{R"(config{"who":"pane"} into an empty bag)"}));
    EXPECT_EQ(passed, &progress);
}

TEST_F(DiagramRequestHandler, BaseHandlersResultCodeIsIgnored) {
    useHost(twoNodes);
    const auto failingButFilling = std::make_shared<ScriptedBase>(
        [&](const std::string&, const variant_bag_t&, variant_bag_t& config, relay2::IProgress*) {
            config = host->base->config;
            return error_code_t::raise(bk2::error::FailedTo(_U("config")), "", "", 0);
        });
    handler = tessera_1::createDiagramViewRequestHandler(host->library, host->inputData, failingButFilling,
                                                         nullptr, nullptr);
    EXPECT_TRUE(send("create").is_success());
    const auto succeedingButEmpty =
        std::make_shared<ScriptedBase>([](const std::string&, const variant_bag_t&, variant_bag_t&,
                                          relay2::IProgress*) { return error_code_t(); });
    handler = tessera_1::createDiagramViewRequestHandler(host->library, host->inputData, succeedingButEmpty,
                                                         nullptr, nullptr);
    EXPECT_TRUE(send("create").is(bk2::error::IsNot.Valid.Data));
}

TEST_F(DiagramRequestHandler, CreateWithoutQueryLibraryOrInputDataIsTheFalseCodeAndCanBeTriedAgain) {
    useHost(twoNodes);
    for (const bool withLibrary : {false, true}) {
        sptr_t<qlib_1::IQueryLibrary> library;
        sptr_t<qlib_1::IInputData> inputData;
        if (withLibrary)
            library = host->library;
        else
            inputData = host->inputData;
        handler =
            tessera_1::createDiagramViewRequestHandler(library, inputData, host->base, nullptr, nullptr);
        EXPECT_TRUE(send("create").is_false());
        EXPECT_TRUE(out.is_empty());
        EXPECT_TRUE(send("refresh").is_false());
        EXPECT_TRUE(send("create").is_false());
    }
    // Four creates, each of them reported by the parser and by the pipeline that has no graph then.
    Reports expected;
    for (int i = 0; i < 4; ++i) {
        expected.emplace_back("ERROR check library && result");
        expected.emplace_back("ERROR check dp->m_graph");
    }
    EXPECT_EQ(log.reports(), expected);
}

TEST_F(DiagramRequestHandler, HandlersOfSeveralPanesAreIndependent) {
    useHost(twoNodes);
    const auto other = host->makeHandler();
    EXPECT_TRUE(send("create").is_success());
    variant_bag_t otherOut;
    EXPECT_TRUE(other->handleRequest("refresh", in, otherOut, nullptr).is_false());
    EXPECT_EQ(host->base->calls, 1);
}

TEST_F(DiagramRequestHandler, MessengerIsHandedToTheQueryLibraryAndMayBeNull) {
    useHost(twoNodes);
    host->library->known = {"other"};
    EXPECT_TRUE(send("create").succeeded());
    EXPECT_EQ(host->messenger.messages.size(), 1U);
    handler = tessera_1::createDiagramViewRequestHandler(host->library, host->inputData, host->base, nullptr,
                                                         nullptr);
    EXPECT_TRUE(send("create").succeeded());
}

// Notes when it ends.
template <class Form>
class Noting final : public Form {
  public:
    template <class... Args>
    Noting(Reports& ended, std::string name, Args&&... args)
        : Form(std::forward<Args>(args)...), m_ended(ended), m_name(std::move(name)) {}
    ~Noting() override { m_ended.push_back(m_name); }

  private:
    Reports& m_ended;
    std::string m_name;
};

// Builds a vector query that notes when it ends.
class NotingLibrary final : public ForwardingQueryLibrary {
  public:
    NotingLibrary(Reports& ended, sptr_t<IQueryLibrary> target)
        : ForwardingQueryLibrary(std::move(target)), m_ended(ended) {}
    ~NotingLibrary() override { m_ended.emplace_back("query library"); }
    sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition,
                                      relay2::IMessenger* messenger) override {
        auto vector = qlib_1::IVectorQuery::cast(target().buildQuery(definition, messenger));
        return basekit2::make_counted<Noting<ForwardingVectorQuery>>(m_ended, "diagram", vector);
    }

  private:
    Reports& m_ended;
};

TEST_F(DiagramRequestHandler, KeepsItsServicesForItsLifeAndReleasesThemInReverseOrder) {
    useHost(twoNodes);
    Reports ended;
    {
        sptr_t<qlib_1::IQueryLibrary> library = basekit2::make_counted<NotingLibrary>(ended, host->library);
        sptr_t<qlib_1::IInputData> inputData =
            basekit2::make_counted<Noting<ForwardingInputData>>(ended, "input data", host->inputData);
        auto base = std::make_shared<Noting<ForwardingRequestHandler>>(ended, "base handler", host->base);
        auto filterMgr =
            std::make_shared<Noting<ForwardingFilterMgr>>(ended, "filter manager", host->filterMgr);
        handler = tessera_1::createDiagramViewRequestHandler(std::move(library), std::move(inputData),
                                                             std::move(base), std::move(filterMgr), nullptr);
    }
    EXPECT_TRUE(send("create").is_success());
    host->result->runs.clear();  // it keeps the queries that it ran
    EXPECT_EQ(ended, Reports{});
    handler = nullptr;
    EXPECT_EQ(ended, (Reports{"filter manager", "base handler", "diagram", "input data", "query library"}));
}

TEST_F(DiagramRequestHandler, FactoryMovesTheSharedPointersIn) {
    useHost(twoNodes);
    handler = nullptr;
    const auto uses = host->base.use_count();
    auto base = std::static_pointer_cast<panelcore_1::IRequestHandler>(host->base);
    const auto made = tessera_1::createDiagramViewRequestHandler(host->library, host->inputData,
                                                                 std::move(base), host->filterMgr, nullptr);
    EXPECT_EQ(host->base.use_count(), uses + 1);
    EXPECT_EQ(host->filterMgr.use_count(), 2);
}

}  // namespace
}  // namespace tessera_test
