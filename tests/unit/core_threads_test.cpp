// Requests on several threads at once: each of them gets a whole and valid diagram.
#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "core/factory.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

constexpr int threadCount = 8;
constexpr int requestsPerThread = 60;
const std::vector<std::string> modes{"bandwidth", "ratio", "size", "other"};

// Nodes whose values change with every fetch, a group, and a link that shows values in each mode except
// "other".
const char* const document = R"(<v><diagram>
  <graph id="g">
    <node id="first"/><node id="box"><node id="inner"/></node><node id="last"/>
    <link id="l" from="first" to="last" direction="both"/><link id="m" from="inner" to="last"/>
  </graph>
  <display>
    <node id="first"><rowSet><queryRef>/first</queryRef></rowSet></node>
    <node id="inner"><rowSet><queryRef>/second</queryRef></rowSet></node>
    <node id="last"><rowSet><queryRef>/third</queryRef></rowSet></node>
    <link id="l"><label location="from"><dataTransfer displayName="t">
      <bandwidth><rowSet><queryRef>/b</queryRef></rowSet></bandwidth>
      <ratio><rowSet><queryRef>/r</queryRef></rowSet></ratio>
      <size><rowSet><queryRef>/s</queryRef></rowSet></size>
    </dataTransfer></label></link>
    <link id="m"><label><dataTransfer displayName="u"><size><rowSet><queryRef>/s</queryRef></rowSet></size>
    </dataTransfer></label></link>
  </display>
</diagram></v>)";

// An engine that counts the fetches and notices when two threads are in it. A fetch begins with the query
// "first" (those of nodes come first, in the order of the nodes); the nodes' values name the fetch, those of
// links are always the same.
class CountingInputData final : public ForwardingInputData {
  public:
    explicit CountingInputData(sptr_t<IInputData> target) : ForwardingInputData(std::move(target)) {}
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override {
        if (id == slicekit_1_0::ITableTreeEngine::typeId) return basekit2::make_counted<Engine>(*this);
        return ForwardingInputData::queryInterface(id);
    }

    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    int fetches = 0;  // not atomic on purpose: the handler's lock has to guard it

  private:
    class Engine final : public basekit2::ref_counted_t<slicekit_1_0::ITableTreeEngine> {
      public:
        explicit Engine(CountingInputData& owner) : m_owner(owner) {}
        error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress* progress,
                         bool wait, sptr_t<qlib_1::ITableTree>& tree) override {
            if (m_owner.inside.fetch_add(1) != 0) m_owner.overlapped = true;
            const std::string identifier = request.columns->at(0)->getIdentifier();
            if (identifier == "first") ++m_owner.fetches;
            MemoryResult answer;
            answer.values[identifier] =
                identifier.size() == 1 ? identifier : "fetch" + std::to_string(m_owner.fetches);
            std::this_thread::yield();
            const error_code_t code = runOn(answer, request, progress, wait, tree);
            m_owner.inside.fetch_sub(1);
            return code;
        }

      private:
        static error_code_t runOn(const MemoryResult& answer,
                                  const slicekit_1_0::table_tree_request_t& request,
                                  relay2::IProgress* progress, bool wait, sptr_t<qlib_1::ITableTree>& tree) {
            const auto data = basekit2::make_counted<MemoryInputData>(std::make_shared<MemoryResult>(answer));
            auto engine = data->queryInterface(slicekit_1_0::ITableTreeEngine::typeId);
            return static_cast<slicekit_1_0::ITableTreeEngine*>(engine.get())
                ->run(request, progress, wait, tree);
        }
        CountingInputData& m_owner;
    };
};

// The diagram without the number of its fetch. Begins with "mixed" when the values are from several fetches.
std::string normalised(const std::string& json) {
    const std::string word = "fetch";
    std::set<std::string> numbers;
    std::string text;
    std::size_t from = 0;
    for (std::size_t at; (at = json.find(word, from)) != std::string::npos;) {
        const std::size_t number = at + word.size(), end = json.find_first_not_of("0123456789", number);
        numbers.insert(json.substr(number, end - number));
        text += json.substr(from, number - from);
        from = end;
    }
    return (numbers.size() == 1 ? "" : "mixed ") + text + json.substr(from);
}

struct Threads : testing::Test {
    std::shared_ptr<panelcore_1::IRequestHandler> makeHandler() {
        return tessera_1::createDiagramViewRequestHandler(host.library, inputData, host.base, host.filterMgr,
                                                          &host.messenger);
    }
    static variant_bag_t modeRequest(const std::string& mode) {
        variant_bag_t in;
        in.add_variant_bag("mode").put("", mode);
        return in;
    }
    // What a single thread sees, in every mode.
    std::set<std::string> allowed() {
        std::set<std::string> diagrams;
        const auto alone = makeHandler();
        variant_bag_t out;
        EXPECT_TRUE(alone->handleRequest("create", {}, out, nullptr).is_success());
        for (const std::string& mode : modes) {
            variant_bag_t changed;
            EXPECT_TRUE(
                alone->handleRequest("changeDisplayMode", modeRequest(mode), changed, nullptr).is_success());
            diagrams.insert(normalised(jsonOf(changed)));
        }
        EXPECT_EQ(diagrams.size(), modes.size());
        EXPECT_TRUE(diagrams.contains(normalised(jsonOf(out))));
        return diagrams;
    }
    // Sends requests on all threads at once and passes each result to `judge`.
    template <class Judge>
    void sendOnAllThreads(panelcore_1::IRequestHandler& handler, const std::vector<std::string>& names,
                          Judge judge) {
        std::latch start(threadCount);
        std::vector<std::jthread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([&, t] {
                start.arrive_and_wait();
                for (int i = 0; i < requestsPerThread; ++i) {
                    const auto turn = static_cast<std::size_t>(t + i);
                    const std::string& name = names[turn % names.size()];
                    variant_bag_t out;
                    const error_code_t code = handler.handleRequest(
                        name, modeRequest(modes[turn / names.size() % modes.size()]), out, nullptr);
                    const std::scoped_lock lock(mutex);
                    judge(name, code, out);
                }
            });
    }

    LogCapture log;
    MemoryHost host{document};
    sptr_t<CountingInputData> inputData = basekit2::make_counted<CountingInputData>(host.inputData);
    std::mutex mutex;
};

TEST_F(Threads, EveryResultIsOneOfTheDiagramsThatASingleThreadSees) {
    const std::set<std::string> diagrams = allowed();
    const auto handler = makeHandler();
    variant_bag_t first;
    EXPECT_TRUE(handler->handleRequest("create", {}, first, nullptr).is_success());
    int strange = 0, refused = 0;
    std::set<std::string> seen;
    sendOnAllThreads(*handler, {"create", "refresh", "changeDisplayMode"},
                     [&](const std::string&, error_code_t code, const variant_bag_t& out) {
                         refused += !code.is_success();
                         const std::string diagram = normalised(jsonOf(out));
                         strange += !diagrams.contains(diagram);
                         seen.insert(diagram);
                     });
    EXPECT_EQ(refused, 0);
    EXPECT_EQ(strange, 0);
    EXPECT_EQ(seen, diagrams) << "every mode must have been seen";
    EXPECT_FALSE(inputData->overlapped) << "two requests fetched at once";
    EXPECT_EQ(log.reports(), std::vector<std::string>{});
}

TEST_F(Threads, ChangeOfModeWritesInTheModeThatItSets) {
    const auto handler = makeHandler();
    variant_bag_t first;
    EXPECT_TRUE(handler->handleRequest("create", {}, first, nullptr).is_success());
    std::atomic<int> wrong{0};
    std::vector<std::jthread> threads;
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back([&, mode = modes[static_cast<std::size_t>(t) % modes.size()]] {
            for (int i = 0; i < requestsPerThread; ++i) {
                variant_bag_t out;
                (void)handler->handleRequest("changeDisplayMode", modeRequest(mode), out, nullptr);
                if (out.get_variant_bag("diagram")->get("displayMode")->get<std::string_view>() != mode)
                    ++wrong;
            }
        });
    threads.clear();
    EXPECT_EQ(wrong, 0);
}

TEST_F(Threads, FirstCreatesRaceAndOneOfThemBuildsTheDiagram) {
    const std::set<std::string> diagrams = allowed();
    inputData->fetches = 0;
    host.base->calls = 0;
    host.library->built = 0;
    const auto handler = makeHandler();
    int strange = 0;
    sendOnAllThreads(*handler, {"create"},
                     [&](const std::string&, error_code_t code, const variant_bag_t& out) {
                         strange += !(code.is_success() && diagrams.contains(normalised(jsonOf(out))));
                     });
    EXPECT_EQ(strange, 0);
    EXPECT_EQ(inputData->fetches, 1);
    EXPECT_GE(host.base->calls, 1)
        << "threads that find no configuration may each fetch it; the first one counts";
    EXPECT_EQ(host.library->built, 7) << "each row set's query is built once";
}

TEST_F(Threads, BeforeTheFirstCreateTheOthersReturnFalseAndWriteNothing) {
    const std::set<std::string> diagrams = allowed();
    const auto handler = makeHandler();
    int strange = 0;
    sendOnAllThreads(*handler, {"refresh", "changeDisplayMode", "create"},
                     [&](const std::string& name, error_code_t code, const variant_bag_t& out) {
                         const bool whole = code.is_success() && diagrams.contains(normalised(jsonOf(out)));
                         const bool tooEarly = name != "create" && code.is_false() && out.is_empty();
                         strange += !(whole || tooEarly);
                     });
    EXPECT_EQ(strange, 0);
}

TEST_F(Threads, UnknownNamesAndTheDomainNameDoNotWait) {
    const auto handler = makeHandler();
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < requestsPerThread; ++i) {
                    variant_bag_t out;
                    const error_code_t code =
                        handler->handleRequest(t % 2 == 0 ? "unknown" : "create", {}, out, nullptr);
                    if (t % 2 == 0 ? !code.is(bk2::error::FailedTo) || !out.is_empty() : !code.is_success())
                        ++wrong;
                    if (handler->getDomainName() != "diagramView") ++wrong;
                }
            });
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(Threads, CancelledRequestsDoNotDisturbTheOthers) {
    const std::set<std::string> diagrams = allowed();
    const auto handler = makeHandler();
    variant_bag_t first;
    EXPECT_TRUE(handler->handleRequest("create", {}, first, nullptr).is_success());
    std::atomic<int> strange{0};
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < requestsPerThread; ++i) {
                    // Before the fetch, so that it changes no value.
                    CountingProgress cancelled(1);
                    variant_bag_t out;
                    const error_code_t code =
                        handler->handleRequest("refresh", {}, out, t % 2 == 0 ? &cancelled : nullptr);
                    if (t % 2 == 0 ? !code.is(bk2::error::Cancelled) || !out.is_empty()
                                   : !code.is_success() || !diagrams.contains(normalised(jsonOf(out))))
                        ++strange;
                }
            });
    }
    EXPECT_EQ(strange, 0);
}

}  // namespace
}  // namespace tessera_test
