// What the run of a query may return while values are fetched.
#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "tests/support/binding_fixture.h"
#include "tests/support/faulty.h"

namespace tessera_test {
namespace {

// Input data whose engine does what the test says.
class ScriptedInputData final : public ForwardingInputData {
  public:
    using Script =
        std::function<error_code_t(ForwardingEngine& engine, const slicekit_1_0::table_tree_request_t&,
                                   relay2::IProgress*, bool wait, sptr_t<qlib_1::ITableTree>&)>;
    ScriptedInputData(sptr_t<IInputData> target, Script script)
        : ForwardingInputData(std::move(target)), m_script(std::move(script)) {}
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override {
        auto found = ForwardingInputData::queryInterface(id);
        if (!(id == slicekit_1_0::ITableTreeEngine::typeId)) return found;
        return basekit2::make_counted<Engine>(
            sptr_t<slicekit_1_0::ITableTreeEngine>::adopt(
                static_cast<slicekit_1_0::ITableTreeEngine*>(found.detach())),
            m_script);
    }

  private:
    struct Engine final : ForwardingEngine {
        Engine(sptr_t<ITableTreeEngine> target, Script play)
            : ForwardingEngine(std::move(target)), script(std::move(play)) {}
        error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress* progress,
                         bool wait, sptr_t<qlib_1::ITableTree>& tree) override {
            ForwardingEngine real(sptr_t<ITableTreeEngine>::share(&target()));
            return script(real, request, progress, wait, tree);
        }
        Script script;
    };
    Script m_script;
};

struct Run : ThreeRows {
    void engine(ScriptedInputData::Script script) {
        inputData = basekit2::make_counted<ScriptedInputData>(inputData, std::move(script));
    }
};

TEST_F(Run, ReceivesTheProgressSinkAndWaits) {
    const relay2::IProgress* passed = nullptr;
    bool waited = false;
    engine([&](auto& real, const auto& request, auto* progress, bool wait, auto& tree) {
        passed = progress;
        waited = wait;
        return real.run(request, progress, wait, tree);
    });
    CountingProgress progress;
    EXPECT_TRUE(fetch(&progress).is_success());
    EXPECT_EQ(passed, &progress);
    EXPECT_TRUE(waited);
}

TEST_F(Run, ThatFailsIsReportedAndLeavesTheOldValues) {
    engine([](auto&, const auto&, auto*, bool, auto&) {
        return error_code_t::raise(bk2::error::FailedTo(_U("run")), "", "", 0);
    });
    expectFailure("err.succeeded() && tree");
}

TEST_F(Run, ThatFailsIsReportedEvenWhenItGivesATree) {
    engine([](auto& real, const auto& request, auto* progress, bool wait, auto& tree) {
        (void)real.run(request, progress, wait, tree);
        return error_code_t::raise(bk2::error::FailedTo(_U("run")), "", "", 0);
    });
    expectFailure("err.succeeded() && tree");
}

TEST_F(Run, WithoutATreeIsReported) {
    engine([](auto&, const auto&, auto*, bool, auto&) { return error_code_t(); });
    expectFailure("err.succeeded() && tree");
}

TEST_F(Run, ThatReturnsFalseWithATreeIsAccepted) {
    engine([](auto& real, const auto& request, auto* progress, bool wait, auto& tree) {
        (void)real.run(request, progress, wait, tree);
        return error_code_t::false_code();
    });
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"1", "2", "3"}));
}

TEST_F(ThreeRows, InputDataWithoutAnEngineIsReported) {
    result->hasEngine = false;
    expectFailure("err.succeeded() && tree");
}

TEST_F(Run, CancelledMeanwhileIsTheFalseCodeWithoutAReportEvenWithATree) {
    CountingProgress progress(2);  // the engine tests once and delivers
    EXPECT_TRUE(fetch(&progress).is_false());
    EXPECT_EQ(result->runs.size(), 1U);
    EXPECT_EQ(values(), (Reports{"old", "old", "old"}));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(Run, CancelledByTheEngineIsTheFalseCodeWithoutAReport) {
    CountingProgress progress(1);
    EXPECT_TRUE(fetch(&progress).is_false());
    EXPECT_EQ(values(), (Reports{"old", "old", "old"}));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(Run, CancellationErrorWithoutACancelledProgressIsAFailureLikeAnyOther) {
    engine([](auto&, const auto&, auto*, bool, auto&) {
        return error_code_t::raise(bk2::error::Cancelled(_U("of itself")), "", "", 0);
    });
    expectFailure("err.succeeded() && tree");
}

TEST_F(ThreeRows, MissingColumnIsReportedAndKeepsWhatIsWritten) {
    FaultPlan plan;
    plan.set(Fault::columnMissing, 2);
    inputData = basekit2::make_counted<FaultyInputData>(inputData, plan);
    EXPECT_TRUE(fetch().is_false());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check column"}));
    EXPECT_EQ(values(), (Reports{"1", "old", "old"}));
}

}  // namespace
}  // namespace tessera_test
