// What a request handler inherits, and the order of its members.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/panelcore_1/request_handler.h"

namespace tessera_test {
namespace {

using basekit2::error_code_t;
using basekit2::variant_bag_t;
using panelcore_1::IRequestHandler;
using panelcore_1::ITaskDisplacementStrategy;

// Overrides only what it has to.
class PlainHandler : public IRequestHandler {
  public:
    std::string getDomainName() const override { return "plain"; }
    error_code_t handleRequest(const std::string&, const variant_bag_t&, variant_bag_t&,
                               relay2::IProgress*) override {
        return {};
    }
};

// Builds names from the request and the value "who" of its bag, or declines. Writes something in both cases,
// before it does so.
class NamingStrategy final : public ITaskDisplacementStrategy {
  public:
    explicit NamingStrategy(bool builds) : m_builds(builds) {}
    bool buildTaskName(const std::string& request, const variant_bag_t& in,
                       std::string& name) const override {
        name = request + " for " + std::string(in.get("who")->get<std::string_view>());
        return m_builds;
    }
    bool isMine(const std::string&) const override { return true; }
    bool isExclusive(const std::string&) const override { return true; }
    bool isDisplacedBy(const std::string&, const std::string&) const override { return true; }
    bool isDisplacedOnFilterChange(const std::string&) const override { return true; }
    bool isDisplacedOnKnobChange(const std::string&) const override { return true; }

  private:
    bool m_builds;
};

class HandlerWithStrategy final : public PlainHandler {
  public:
    explicit HandlerWithStrategy(std::shared_ptr<ITaskDisplacementStrategy> strategy)
        : m_strategy(std::move(strategy)) {}
    std::shared_ptr<ITaskDisplacementStrategy> getTaskDisplacementStrategy() override { return m_strategy; }

  private:
    std::shared_ptr<ITaskDisplacementStrategy> m_strategy;
};

std::string taskName(IRequestHandler& handler) {
    variant_bag_t in;
    in.put("who", "pane 1");
    std::string name = "not touched";
    handler.buildTaskName("create", in, name);
    return name;
}

TEST(RequestHandler, TaskNameIsTheRequestNameWithTheDefaultStrategy) {
    PlainHandler handler;
    EXPECT_EQ(taskName(handler), "create");
}

TEST(RequestHandler, TaskNameIsWhatTheStrategyBuilds) {
    HandlerWithStrategy handler(std::make_shared<NamingStrategy>(true));
    EXPECT_EQ(taskName(handler), "create for pane 1");
}

TEST(RequestHandler, TaskNameIsTheRequestNameWhenTheStrategyDeclines) {
    HandlerWithStrategy handler(std::make_shared<NamingStrategy>(false));
    EXPECT_EQ(taskName(handler), "create");
}

TEST(RequestHandler, TaskNameIsTheRequestNameWithoutAStrategy) {
    HandlerWithStrategy handler(nullptr);
    EXPECT_EQ(taskName(handler), "create");
}

TEST(RequestHandler, StrategyIsTheOneDefaultOfTheProcess) {
    PlainHandler a, b;
    const auto strategy = a.getTaskDisplacementStrategy();
    ASSERT_NE(strategy, nullptr);
    EXPECT_EQ(strategy, a.getTaskDisplacementStrategy());
    EXPECT_EQ(strategy, b.getTaskDisplacementStrategy());
    EXPECT_EQ(strategy, ITaskDisplacementStrategy::getDefault());
}

TEST(RequestHandler, ThreadsThatAskFirstGetTheSameStrategy) {
    std::vector<std::shared_ptr<ITaskDisplacementStrategy>> results(8);
    {
        std::vector<std::jthread> threads;
        for (auto& mine : results)
            threads.emplace_back([&mine] { mine = PlainHandler().getTaskDisplacementStrategy(); });
    }
    for (const auto& result : results)
        EXPECT_EQ(result, ITaskDisplacementStrategy::getDefault());
}

TEST(RequestHandler, DefaultStrategyReturnsFalseFromEveryMember) {
    const auto strategy = ITaskDisplacementStrategy::getDefault();
    std::string name = "not touched";
    EXPECT_FALSE(strategy->buildTaskName("create", {}, name));
    for (const char* task : {"create", "refresh", ""}) {
        EXPECT_FALSE(strategy->isMine(task));
        EXPECT_FALSE(strategy->isExclusive(task));
        EXPECT_FALSE(strategy->isDisplacedBy(task, "create"));
        EXPECT_FALSE(strategy->isDisplacedBy(task, task));
        EXPECT_FALSE(strategy->isDisplacedOnFilterChange(task));
        EXPECT_FALSE(strategy->isDisplacedOnKnobChange(task));
    }
}

TEST(RequestHandler, CloseDoesNothing) {
    PlainHandler handler;
    handler.close();
    EXPECT_EQ(handler.getDomainName(), "plain");
    EXPECT_EQ(taskName(handler), "create");
}

TEST(RequestHandler, DestructorIsVirtual) {
    struct Noting final : PlainHandler {
        explicit Noting(bool& ended) : destroyed(ended) {}
        ~Noting() override { destroyed = true; }
        bool& destroyed;
    };
    bool destroyed = false;
    IRequestHandler* handler = new Noting(destroyed);
    delete handler;
    EXPECT_TRUE(destroyed);
}

// The place of a virtual member in its class's table: in the Itanium C++ ABI a pointer to such a member holds
// the byte offset of its slot plus one.
template <class Member>
std::ptrdiff_t slotOf(Member member) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof member >= sizeof offset);
    std::memcpy(&offset, &member, sizeof offset);
    EXPECT_EQ(offset & 1, 1) << "no virtual member";
    return (offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(RequestHandler, MembersStandInTheOrderOfTheInterface) {
    // The first virtual member of a class that derives follows all that it inherits.
    struct Extended : PlainHandler {
        virtual void next() {}
    };
    EXPECT_EQ(slotOf(&IRequestHandler::getDomainName), 0);
    EXPECT_EQ(slotOf(&IRequestHandler::buildTaskName), 1);
    EXPECT_EQ(slotOf(&IRequestHandler::handleRequest), 2);
    EXPECT_EQ(slotOf(&IRequestHandler::getTaskDisplacementStrategy), 3);
    EXPECT_EQ(slotOf(&IRequestHandler::close), 4);
    // Only two slots remain after them: the destructors, complete and deleting.
    EXPECT_EQ(slotOf(&Extended::next), 7);
}

}  // namespace
}  // namespace tessera_test
