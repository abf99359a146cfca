// How the library reports broken expectations: the log lines, the second evaluation, the assertion switch.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "core/data_provider.h"
#include "tests/support/assertion_capture.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::DataProvider;
using tessera_1::DViewpointParser;
using tessera_1::view_model::Graph;
using tessera_1::view_model::Node;
using Reports = std::vector<std::string>;

// One failing check of the unit "core/viewpointparser".
void failInParser() {
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
    parser.parseViewpoint({}, nullptr, nullptr, nullptr, graph);
}

// One failing check of the unit "core/view_model/node".
void failInNode() {
    const auto node = std::make_shared<Node>();
    (void)node->addToGroup(std::make_shared<Node>());
}

// Raises one alert of the unit "core/viewpointparser"; returns the id of the graph that is read after it.
std::string alertInParser() {
    MemoryHost host("<v><diagram><what/><graph id='after'/></diagram></v>");
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
    parser.parseViewpoint(host.base->config, host.library, nullptr, host.inputData, graph);
    return graph->m_id;
}
const char* const alertText = "Unknown element <what> found under <diagram>. Expected <graph>, <display>.";

std::shared_ptr<panelcore_1::IRequestHandler> handlerWithoutConfig() {
    return MemoryHost("<v/>").makeHandler();
}

// The parts of a report: condition or message, signature, unit, line. Fewer when it has another form.
std::vector<std::string> partsOf(const LogLine& line) {
    const std::string file = ", at file: ";
    const std::size_t in = line.text.find(" in "), at = line.text.rfind(file), colon = line.text.rfind(':');
    if (in == std::string::npos || at == std::string::npos || colon < at + file.size()) return {line.text};
    const std::string number = line.text.substr(colon + 1);
    if (number.empty() || number.find_first_not_of("0123456789") != std::string::npos) return {line.text};
    const std::size_t signature = in + 4, unit = at + file.size();
    return {line.text.substr(0, in), line.text.substr(signature, at - signature),
            line.text.substr(unit, colon - unit), number};
}

TEST(CheckFacility, FailedCheckIsOneLineOfConditionSignatureUnitAndLine) {
    struct Case {
        std::function<void()> fail;
        std::string condition, unit, function;
    };
    const auto cancelledCreate = [] {
        MemoryHost host("<v/>");
        CountingProgress progress(1);
        variant_bag_t out;
        (void)DataProvider::create(host.base->config, out, host.library, nullptr, host.inputData, &progress);
    };
    const auto filterWithoutRegistry = [] {
        (void)tessera_1::view_model::addFilter(nullptr, slicekit_1_0::ITableTreeQuery::create(), "f");
    };
    const Case cases[] = {
        {failInParser, "library && result", "core/viewpointparser",
         "void tessera_1::DViewpointParser::parseViewpoint("},
        {failInNode, "group->isGroup()", "core/view_model/node", " tessera_1::view_model::Node::addToGroup("},
        {filterWithoutRegistry, "res", "core/view_model/display_info", " tessera_1::view_model::addFilter("},
        {cancelledCreate, "dp->getData(progress).succeeded()", "core/data_provider",
         " tessera_1::DataProvider::create("},
    };
    for (const Case& each : cases) {
        const LogCapture log;
        each.fail();
        ASSERT_EQ(log.lines().size(), 1U) << each.condition;
        const LogLine line = log.lines()[0];
        EXPECT_EQ(line.level, "ERROR");
        EXPECT_EQ(line.logger, "tessera");
        const auto parts = partsOf(line);
        ASSERT_EQ(parts.size(), 4U) << line.text;
        EXPECT_EQ(parts[0], "Check failed: " + each.condition);
        EXPECT_NE(parts[1].find(each.function), std::string::npos) << line.text;
        EXPECT_EQ(parts[1].back(), ')') << "the full signature ends with its arguments";
        EXPECT_EQ(parts[2], each.unit);
        EXPECT_GT(std::stoi(parts[3]), 0);
    }
}

TEST(CheckFacility, LevelsAreErrorAndInfoOfTheLoggingLibrary) {
    static_assert(log4cplus::ERROR_LOG_LEVEL == 40000);
    static_assert(log4cplus::INFO_LOG_LEVEL == 20000);
}

TEST(CheckFacility, AlertIsTheMessageWithItsPlaceAndThenTheBareMessage) {
    const LogCapture log;
    EXPECT_EQ(alertInParser(), "after") << "reading continues after what is unknown";
    ASSERT_EQ(log.lines().size(), 2U);
    const LogLine first = log.lines()[0], second = log.lines()[1];
    EXPECT_EQ(first.level, "ERROR");
    const auto parts = partsOf(first);
    ASSERT_EQ(parts.size(), 4U) << first.text;
    EXPECT_EQ(parts[0], alertText);
    EXPECT_NE(parts[1].find("tessera_1::DViewpointParser::parseViewpoint("), std::string::npos) << parts[1];
    EXPECT_EQ(parts[2], "core/viewpointparser");
    EXPECT_EQ(second.level, "INFO");
    EXPECT_EQ(second.text, alertText);
    EXPECT_EQ(second.logger, "tessera");
}

TEST(CheckFacility, EverySourceFileOfAUnitNamesTheUnit) {
    const LogCapture log;
    MemoryHost host(R"(<v><diagram><graph><a/><node id="n"/></graph><display><b/></display></diagram></v>)");
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
    parser.parseViewpoint(host.base->config, host.library, nullptr, host.inputData, graph);
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 4U);
    for (const std::size_t i : {0U, 2U})
        EXPECT_EQ(partsOf(lines[i]).at(2), "core/viewpointparser") << lines[i].text;
}

TEST(CheckFacility, LoggersLevelDecidesWhatIsLogged) {
    const LogCapture log;
    auto logger = log4cplus::Logger::getInstance("tessera");
    logger.setLogLevel(log4cplus::WARN_LOG_LEVEL);
    alertInParser();
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(log.lines()[0].level, "ERROR");
    logger.setLogLevel(log4cplus::OFF_LOG_LEVEL);
    alertInParser();
    failInNode();
    EXPECT_EQ(log.lines().size(), 1U);
}

TEST(CheckFacility, LoggerIsKnownFromTheBeginning) {
    EXPECT_TRUE(log4cplus::Logger::exists("tessera"));
}

// Cancelled at the first test, and not any more.
class OnceCancelled final : public relay2::IProgress {
  public:
    bool isCancelled() const override { return ++calls == 1; }
    mutable int calls = 0;
};

TEST(CheckFacility, FailedConditionIsEvaluatedOnceMoreForItsReportAndStaysFailed) {
    const LogCapture log;
    MemoryHost host(R"(<v><diagram><graph><node id="a"/></graph>
      <display><node id="a"><rowSet><queryRef>/q</queryRef></rowSet></node></display></diagram></v>)");
    host.result->failing = {"q"};
    OnceCancelled progress;
    variant_bag_t out;
    EXPECT_EQ(DataProvider::create(host.base->config, out, host.library, nullptr, host.inputData, &progress),
              nullptr);
    EXPECT_EQ(host.result->runs.size(), 1U) << "the second run of the step is a real one";
    // The second evaluation runs while the message is made: what it reports itself comes first.
    EXPECT_EQ(log.reports(), (Reports{"ERROR check err.succeeded() && tree",
                                      "ERROR check dp->getData(progress).succeeded()"}));
}

TEST(CheckFacility, ConditionThatHoldsIsEvaluatedOnce) {
    const LogCapture log;
    MemoryHost host("<v/>");
    CountingProgress progress;
    variant_bag_t out;
    EXPECT_NE(DataProvider::create(host.base->config, out, host.library, nullptr, host.inputData, &progress),
              nullptr);
    EXPECT_EQ(progress.calls(), 1);
    EXPECT_EQ(log.reports(), Reports{});
}

// The assertion switch is read once in a process, so each of these runs in a process of its own.
struct AssertionSwitchDeathTest : testing::Test {
    AssertionSwitchDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    static void set(const char* value) { setenv("tessera_ERROR_HANDLING", value, 1); }
    static void unset() { unsetenv("tessera_ERROR_HANDLING"); }
    // Ends the process; the message must be true.
    [[noreturn]] static void endWith(bool passed, const std::string& otherwise = "") {
        if (!passed) std::fprintf(stderr, "not as expected: %s\n", otherwise.c_str());
        std::_Exit(passed ? 0 : 1);
    }
    [[noreturn]] static void expectAssertions(const AssertionCapture& assertions, std::size_t count) {
        endWith(assertions.all().size() == count, std::to_string(assertions.all().size()) + " assertions");
    }
    static constexpr auto passes = [](int status) { return testing::ExitedWithCode(0)(status); };
};

TEST_F(AssertionSwitchDeathTest, FailedCheckRaisesTheHostsAssertionWhichEndsTheProgramByDefault) {
    EXPECT_EXIT(
        {
            set("assert");
            const LogCapture log;
            failInParser();
        },
        testing::KilledBySignal(SIGABRT),
        "core/viewpointparser:[0-9]+: .*DViewpointParser::parseViewpoint.*assertion failed: .*library && "
        "result");
}

TEST_F(AssertionSwitchDeathTest, AlertRaisesItAsWell) {
    EXPECT_EXIT(
        {
            set("assert");
            const LogCapture log;
            alertInParser();
        },
        testing::KilledBySignal(SIGABRT), "assertion failed: Unknown element <what> found under <diagram>");
}

TEST_F(AssertionSwitchDeathTest, IsOnWhenItsValueContainsAssert) {
    for (const char* value : {"assert", "xxassertyy", "log,assert", "assertion"})
        EXPECT_EXIT(
            {
                set(value);
                const LogCapture log;
                const AssertionCapture assertions;
                failInParser();
                alertInParser();
                expectAssertions(assertions, 2);
            },
            passes, "")
            << value;
}

TEST_F(AssertionSwitchDeathTest, IsOffOtherwise) {
    for (const char* value : {"", "asser", "ASSERT", "Assert", "as sert", "1", "on"})
        EXPECT_EXIT(
            {
                set(value);
                const LogCapture log;
                const AssertionCapture assertions;
                failInParser();
                alertInParser();
                failInNode();
                expectAssertions(assertions, 0);
            },
            passes, "")
            << value;
}

TEST_F(AssertionSwitchDeathTest, IsOffWhenTheVariableIsNotSet) {
    EXPECT_EXIT(
        {
            unset();
            const LogCapture log;
            const AssertionCapture assertions;
            failInParser();
            alertInParser();
            expectAssertions(assertions, 0);
        },
        passes, "");
}

TEST_F(AssertionSwitchDeathTest, OtherVariablesDoNotSwitchIt) {
    EXPECT_EXIT(
        {
            unset();
            setenv("TESSERA_ERROR_HANDLING", "assert", 1);
            setenv("ERROR_HANDLING", "assert", 1);
            const LogCapture log;
            const AssertionCapture assertions;
            failInParser();
            expectAssertions(assertions, 0);
        },
        passes, "");
}

TEST_F(AssertionSwitchDeathTest, IsReadOnFirstUseAndKeptWhenItWasOn) {
    EXPECT_EXIT(
        {
            set("assert");
            const LogCapture log;
            const AssertionCapture assertions;
            failInParser();
            unset();
            failInParser();
            expectAssertions(assertions, 2);
        },
        passes, "");
}

TEST_F(AssertionSwitchDeathTest, IsReadOnFirstUseAndKeptWhenItWasOff) {
    EXPECT_EXIT(
        {
            unset();
            const LogCapture log;
            const AssertionCapture assertions;
            failInParser();
            set("assert");
            failInParser();
            expectAssertions(assertions, 0);
        },
        passes, "");
}

TEST_F(AssertionSwitchDeathTest, IsReadByEachSourceFileForItself) {
    EXPECT_EXIT(
        {
            unset();
            const LogCapture log;
            const AssertionCapture assertions;
            failInParser();
            set("assert");
            failInParser();  // has read it already
            failInNode();    // reads it now
            expectAssertions(assertions, 1);
        },
        passes, "");
}

TEST_F(AssertionSwitchDeathTest, AssertionNamesThePlaceAndTheFunctionReturnsAfterIt) {
    EXPECT_EXIT(
        {
            set("assert");
            const LogCapture log;
            const AssertionCapture assertions;
            variant_bag_t out;
            const error_code_t code = handlerWithoutConfig()->handleRequest("create", {}, out, nullptr);
            const auto raised = assertions.all();
            endWith(raised.size() == 1 && raised[0].file == "core/diagram_request_handler" &&
                        raised[0].line == code.line() && raised[0].function == code.function() &&
                        raised[0].message.find("!m_configBag.is_empty()") != std::string::npos &&
                        code.is(bk2::error::IsNot.Valid.Data) && out.is_empty(),
                    raised.empty() ? "no assertion" : raised[0].message);
        },
        passes, "");
}

const LogCapture* logOfTheProcess = nullptr;
std::size_t linesAtTheAssertion = 0;

TEST_F(AssertionSwitchDeathTest, AssertionComesAfterTheErrorLineAndBeforeTheBareMessage) {
    EXPECT_EXIT(
        {
            set("assert");
            const LogCapture log;
            logOfTheProcess = &log;
            RTBASE_2_18::set_assertion_handler([](const char*, const char*, const char*, int) {
                linesAtTheAssertion = logOfTheProcess->lines().size();
            });
            alertInParser();
            endWith(linesAtTheAssertion == 1 && log.lines().size() == 2, std::to_string(linesAtTheAssertion));
        },
        passes, "");
}

TEST_F(AssertionSwitchDeathTest, AssertionDoesNotDependOnTheLoggersLevel) {
    EXPECT_EXIT(
        {
            set("assert");
            const LogCapture log;
            log4cplus::Logger::getInstance("tessera").setLogLevel(log4cplus::OFF_LOG_LEVEL);
            const AssertionCapture assertions;
            failInParser();
            alertInParser();
            expectAssertions(assertions, 2);
        },
        passes, "");
}

}  // namespace
}  // namespace tessera_test
