// Host services that fail: after each fault the request returns the defined code, no data is lost, and the
// next request works.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/support/faulty.h"
#include "tests/support/log_capture.h"

namespace tessera_test {
namespace {

using Reports = std::vector<std::string>;
using Values = std::map<std::string, std::string>;

// Three display infos, fetched in the order q1, q2, q3; q3 is shown in the mode "size" only.
const char* const document = R"(<v><diagram>
  <graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b" direction="forward"/></graph>
  <display>
    <graph displayName="Name"/>
    <node id="a" displayName="A"><rowSet displayName="set"><queryRef displayName="row">/q1</queryRef></rowSet></node>
    <node id="b" displayName="B"><rowSet displayName="set"><queryRef displayName="row">/q2</queryRef></rowSet></node>
    <link id="l"><label><dataTransfer displayName="t">
      <size><rowSet displayName="set"><queryRef displayName="row">/q3</queryRef></rowSet></size>
    </dataTransfer></label></link>
  </display>
</diagram></v>)";
constexpr int infoCount = 3;

const Values oldValues{{"q1", "old 1"}, {"q2", "old 2"}, {"q3", "old 3"}};
const Values newValues{{"q1", "new 1"}, {"q2", "new 2"}, {"q3", "new 3"}};

Values without(Values values, int number) {
    values.erase("q" + std::to_string(number));
    return values;
}

// `values`, but for the query of this number those of `instead`.
Values withOne(Values values, int number, const Values& instead) {
    const std::string name = "q" + std::to_string(number);
    values[name] = instead.at(name);
    return values;
}

variant_bag_t requestFor(const std::string& mode) {
    variant_bag_t in;
    in.add_variant_bag("mode").put("", mode);
    return in;
}

// What a host without a fault shows for these values, in the mode "size".
std::string diagramOf(const Values& values) {
    MemoryHost host(document);
    host.result->values = values;
    const auto handler = host.makeHandler();
    variant_bag_t created, out;
    EXPECT_TRUE(handler->handleRequest("create", {}, created, nullptr).is_success());
    EXPECT_TRUE(handler->handleRequest("changeDisplayMode", requestFor("size"), out, nullptr).is_success());
    return jsonOf(out);
}

struct Faults : testing::Test {
    Faults() {
        host.memory.result->values = oldValues;
        host.memory.result->filters = {"selection", "global"};
    }
    error_code_t send(const std::string& name, relay2::IProgress* progress = nullptr) {
        out = variant_bag_t();
        return handler->handleRequest(name, {}, out, progress);
    }
    // The diagram as the handler shows it now, in the mode "size"; nothing is fetched for it.
    std::string shown() {
        variant_bag_t bag;
        EXPECT_TRUE(
            handler->handleRequest("changeDisplayMode", requestFor("size"), bag, nullptr).is_success());
        return jsonOf(bag);
    }
    void expectNextRefreshWorks() {
        host.plan.clear();
        host.memory.result->values = newValues;
        EXPECT_TRUE(send("refresh").is_success());
        EXPECT_EQ(shown(), diagramOf(newValues));
    }

    LogCapture log;
    FaultyHost host{document};
    std::shared_ptr<panelcore_1::IRequestHandler> handler = host.makeHandler();
    variant_bag_t out;
};

// A fault in the fetching of one display info, and how it is reported.
struct FetchFault {
    Fault fault;
    const char* report;
};

void PrintTo(const FetchFault& fault, std::ostream* stream) {
    *stream << "fault " << static_cast<int>(fault.fault) << ", " << fault.report;
}

struct FaultInOneFetch : Faults, testing::WithParamInterface<std::tuple<FetchFault, int>> {
    FetchFault fault = std::get<0>(GetParam());
    int number = std::get<1>(GetParam());  // of the display info that fails
};

TEST_P(FaultInOneFetch, DuringCreateIsReportedAndOnlyItsValueIsMissing) {
    host.plan.set(fault.fault, number);
    EXPECT_TRUE(send("create").is_success());
    EXPECT_TRUE(host.plan.struck());
    EXPECT_EQ(log.reports(), (Reports{fault.report}));
    EXPECT_EQ(shown(), diagramOf(without(oldValues, number)));
    expectNextRefreshWorks();
}

TEST_P(FaultInOneFetch, DuringRefreshIsReportedAndItsOldValueStays) {
    EXPECT_TRUE(send("create").is_success());
    host.memory.result->values = newValues;
    host.plan.set(fault.fault, number);
    EXPECT_TRUE(send("refresh").is_success());
    EXPECT_TRUE(host.plan.struck());
    EXPECT_EQ(log.reports(), (Reports{fault.report}));
    EXPECT_EQ(shown(), diagramOf(withOne(newValues, number, oldValues)));
    expectNextRefreshWorks();
}

INSTANTIATE_TEST_SUITE_P(
    EveryFault, FaultInOneFetch,
    testing::Combine(
        testing::Values(FetchFault{Fault::namedQueryMissing, "ERROR check !rowBy.is_null()"},
                        FetchFault{Fault::engineMissing, "ERROR check err.succeeded() && tree"},
                        FetchFault{Fault::runFails, "ERROR check err.succeeded() && tree"},
                        FetchFault{Fault::runAnswersFalse, "ERROR check err.succeeded() && tree"},
                        FetchFault{Fault::runGivesNoTree, "ERROR check err.succeeded() && tree"},
                        FetchFault{Fault::columnMissing, "ERROR check column"},
                        FetchFault{Fault::columnWithoutQuery, "ERROR check it != rowSet.rows.end()"},
                        FetchFault{Fault::columnOfUnknownQuery, "ERROR check it != rowSet.rows.end()"},
                        FetchFault{Fault::columnOfNoMember, "ERROR check it != rowSet.rows.end()"},
                        FetchFault{Fault::columnBeyondItsVector, "ERROR check it != rowSet.rows.end()"}),
        testing::Range(1, infoCount + 1)));

TEST_F(Faults, DefinitionThatIsRefusedHasNoValueEverAndTheOthersDo) {
    for (const Fault fault : {Fault::definitionRefused, Fault::definitionGivesSingle})
        for (int number = 1; number <= infoCount; ++number) {
            const LogCapture mine;
            host.memory.result->values = oldValues;
            handler = host.makeHandler();
            host.plan.set(fault, number);
            EXPECT_TRUE(send("create").is_success());
            EXPECT_TRUE(host.plan.struck());
            EXPECT_EQ(mine.reports(), (Reports{"ERROR check rowSet.ds"}));
            EXPECT_EQ(shown(), diagramOf(without(oldValues, number)));
            host.plan.clear();
            host.memory.result->values = newValues;
            EXPECT_TRUE(send("refresh").is_success());
            EXPECT_EQ(shown(), diagramOf(without(newValues, number)));
        }
}

TEST_F(Faults, MissingRegistryIsReportedAndThatFilterLeftOut) {
    // Each display info calls it twice, for "selection" and for "global".
    for (int call = 1; call <= 2 * infoCount; ++call) {
        const LogCapture mine;
        handler = host.makeHandler();
        host.memory.result->runs.clear();
        host.plan.set(Fault::registryMissing, call);
        EXPECT_TRUE(send("create").is_success());
        EXPECT_TRUE(host.plan.struck());
        EXPECT_EQ(mine.reports(), (Reports{"ERROR check res"}));
        EXPECT_EQ(shown(), diagramOf(oldValues));
        ASSERT_EQ(host.memory.result->runs.size(), static_cast<std::size_t>(infoCount));
        const auto& filters = host.memory.result->runs[static_cast<std::size_t>(call - 1) / 2].filters;
        EXPECT_EQ(filters, (Reports{call % 2 == 1 ? "global" : "selection"}));
    }
    expectNextRefreshWorks();
}

TEST_F(Faults, FilterThatTheRegistryLosesIsLeftOut) {
    host.plan.set(Fault::filterLost, 1);
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(host.memory.result->runs.at(0).filters, (Reports{"global"}));
    EXPECT_EQ(host.memory.result->runs.at(1).filters, (Reports{"selection", "global"}));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(Faults, CellWithoutTextIsAnEmptyValue) {
    EXPECT_TRUE(send("create").is_success());
    host.plan.set(Fault::cellWithoutText, 2);
    EXPECT_TRUE(send("refresh").is_success());
    EXPECT_EQ(shown(), diagramOf(without(oldValues, 2)));
    EXPECT_EQ(log.reports(), Reports{});
    expectNextRefreshWorks();
}

TEST_F(Faults, BaseHandlerThatFillsInNothingIsTheEmptyConfigurationAndIsCalledAgain) {
    host.plan.set(Fault::configStaysEmpty, 1);
    EXPECT_TRUE(send("create").is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(out.is_empty());
    EXPECT_TRUE(send("refresh").is_false());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check !m_configBag.is_empty()"}));
    EXPECT_TRUE(send("create").is_success());
    expectNextRefreshWorks();
}

TEST_F(Faults, BaseHandlerThatFailsButFillsInTheConfigurationIsGoodEnough) {
    host.plan.set(Fault::configFailsButFills, 1);
    EXPECT_TRUE(send("create").is_success());
    EXPECT_TRUE(host.plan.struck());
    EXPECT_EQ(log.reports(), Reports{});
    expectNextRefreshWorks();
}

TEST_F(Faults, WithoutABaseHandlerThereIsNoConfiguration) {
    handler = tessera_1::createDiagramViewRequestHandler(host.memory.library, host.memory.inputData, nullptr,
                                                         nullptr, nullptr);
    EXPECT_TRUE(send("create").is(bk2::error::IsNot.Valid.Data));
    EXPECT_TRUE(send("refresh").is_false());
}

TEST_F(Faults, WithoutAMessengerRefusedDefinitionsAreReportedTheSame) {
    host.memory.library->known = {"q1", "q2"};
    handler = tessera_1::createDiagramViewRequestHandler(host.memory.library, host.memory.inputData,
                                                         host.memory.base, nullptr, nullptr);
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check rowSet.ds"}));
    EXPECT_EQ(shown(), diagramOf(without(oldValues, 3)));
}

TEST_F(Faults, FilterManagerIsKeptAndNeverCalled) {
    const auto manager = std::make_shared<CountingFilterMgr>(host.memory.filterMgr);
    handler = tessera_1::createDiagramViewRequestHandler(host.memory.library, host.memory.inputData,
                                                         host.memory.base, manager, nullptr);
    EXPECT_EQ(manager.use_count(), 2);
    for (const char* name : {"create", "refresh", "create"})
        EXPECT_TRUE(send(name).is_success());
    EXPECT_EQ(manager->calls, 0);
}

TEST_F(Faults, CataloguesThatVanishOrHaveEmptyTextsLeaveTheKeys) {
    const auto good = std::make_shared<MemoryCatalogSource>();
    good->catalogs["slicer2"] =
        std::make_shared<MemoryCatalog>(Values{{"A", "text of A"}, {"B", "text of B"}});
    const auto nameOf = [&](std::size_t place) {
        auto node = out.get_variant_bag("nodes")->begin();
        for (; place > 0; --place)
            node.next();
        return std::string(node.get_value().get("displayName")->get<std::string_view>());
    };
    for (int failFrom = 1; failFrom < 40; ++failFrom) {
        optstore2::setMessageCatalogSource(std::make_shared<FaultyCatalogSource>(good, failFrom));
        handler = host.makeHandler();
        EXPECT_TRUE(send("create").is_success());
        EXPECT_TRUE(nameOf(0) == "A" || nameOf(0) == "text of A");
        EXPECT_TRUE(nameOf(1) == "B" || (nameOf(0) == "text of A" && nameOf(1) == "text of B"));
        if (failFrom == 1) {
            EXPECT_EQ(nameOf(0), "A");
        }
    }
    EXPECT_EQ(nameOf(1), "text of B") << "the last source fails too late for this document";
    good->catalogs["slicer2"] = std::make_shared<BlankCatalog>();
    optstore2::setMessageCatalogSource(good);
    handler = host.makeHandler();
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(nameOf(0) + nameOf(1), "AB");
    optstore2::setMessageCatalogSource(nullptr);
}

TEST_F(Faults, AnySequenceOfFaultsLeavesAHandlerThatWorks) {
    constexpr Fault all[] = {Fault::definitionRefused,     Fault::namedQueryMissing,
                             Fault::registryMissing,       Fault::filterLost,
                             Fault::engineMissing,         Fault::runFails,
                             Fault::runAnswersFalse,       Fault::runGivesNoTree,
                             Fault::columnMissing,         Fault::columnWithoutQuery,
                             Fault::columnOfUnknownQuery,  Fault::columnOfNoMember,
                             Fault::columnBeyondItsVector, Fault::cellWithoutText};
    EXPECT_TRUE(send("create").is_success());
    std::mt19937 random(7);
    const auto upTo = [&](int most) { return std::uniform_int_distribution(1, most)(random); };
    for (int i = 0; i < 2000; ++i) {
        host.plan.set(all[static_cast<std::size_t>(upTo(static_cast<int>(std::size(all))) - 1)], upTo(6));
        CountingProgress progress(upTo(20));
        const error_code_t code = send(upTo(2) == 1 ? "create" : "refresh", &progress);
        EXPECT_TRUE(code.is_success() || code.is(bk2::error::Cancelled)) << code.name();
    }
    expectNextRefreshWorks();
}

// Cancellation

// Cancels a request when it first checks for cancellation, then a request at its second check, and so on,
// until one is not cancelled. Returns what each of them did.
struct Cancelled {
    error_code_t code;
    bool wroteNothing;
    bool wroteEverything;
};

struct Cancellation : Faults {
    // The written diagrams, in the mode that the request leaves.
    void cancelEverywhere(const std::string& name, const variant_bag_t& in) {
        for (int call = 1; call < 100; ++call) {
            host.memory.result->values = oldValues;
            handler = host.makeHandler();
            if (name != "create") {
                EXPECT_TRUE(send("create").is_success());
            }
            CountingProgress progress(call);
            variant_bag_t written, again;
            const error_code_t code = handler->handleRequest(name, in, written, &progress);
            const bool hasDiagram = handler->handleRequest("create", {}, again, nullptr).is_success();
            EXPECT_TRUE(hasDiagram) << "the next create must work";
            seen.push_back({code, written.is_empty(), written == again});
            expectNextRefreshWorks();
            if (code.is_success()) return;
        }
        FAIL() << "the request never ends";
    }
    std::vector<Cancelled> seen;
};

TEST_F(Cancellation, OfCreateAtAnyPointIsReturnedAndTheNextRequestsWork) {
    cancelEverywhere("create", {});
    ASSERT_GE(seen.size(), 5U);
    // Before the fetch: no provider, the false code.
    EXPECT_TRUE(seen[0].code.is_false());
    EXPECT_TRUE(seen[0].wroteNothing);
    // In a query, between queries, before the writing: a provider, nothing written.
    for (std::size_t i = 1; i + 2 < seen.size(); ++i) {
        EXPECT_TRUE(seen[i].code.is(bk2::error::Cancelled)) << i;
        EXPECT_TRUE(seen[i].wroteNothing) << i;
    }
    // After the writing: all of it stays.
    EXPECT_TRUE(seen[seen.size() - 2].code.is(bk2::error::Cancelled));
    EXPECT_TRUE(seen[seen.size() - 2].wroteEverything);
    EXPECT_TRUE(seen.back().wroteEverything);
    // Only the first is a failed step of the pipeline; a cancelled query is not reported.
    EXPECT_EQ(log.reports(), (Reports{"ERROR check dp->getData(progress).succeeded()"}));
}

TEST_F(Cancellation, OfRefreshAtAnyPointIsReturnedAndTheNextRequestsWork) {
    cancelEverywhere("refresh", {});
    ASSERT_GE(seen.size(), 5U);
    // The fetch's own result is ignored; the writing, which comes next, tests again.
    for (std::size_t i = 0; i + 2 < seen.size(); ++i) {
        EXPECT_TRUE(seen[i].code.is(bk2::error::Cancelled)) << i;
        EXPECT_TRUE(seen[i].wroteNothing) << i;
    }
    EXPECT_TRUE(seen[seen.size() - 2].code.is(bk2::error::Cancelled));
    EXPECT_TRUE(seen[seen.size() - 2].wroteEverything);
    EXPECT_TRUE(seen.back().wroteEverything);
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(Cancellation, OfChangeDisplayModeComesBeforeOrAfterTheWriting) {
    cancelEverywhere("changeDisplayMode", requestFor("size"));
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_TRUE(seen[0].code.is(bk2::error::Cancelled));
    EXPECT_TRUE(seen[0].wroteNothing);
    EXPECT_TRUE(seen[1].code.is(bk2::error::Cancelled));
    EXPECT_TRUE(seen[1].wroteEverything);
    EXPECT_TRUE(seen[2].wroteEverything);
}

TEST_F(Cancellation, BeforeTheFetchOfARefreshLeavesTheOldValues) {
    EXPECT_TRUE(send("create").is_success());
    host.memory.result->values = newValues;
    host.memory.result->runs.clear();
    CountingProgress progress(1);
    EXPECT_TRUE(send("refresh", &progress).is(bk2::error::Cancelled));
    EXPECT_TRUE(host.memory.result->runs.empty());
    EXPECT_EQ(shown(), diagramOf(oldValues));
}

TEST_F(Cancellation, InTheMiddleOfARefreshKeepsTheValuesThatArrived) {
    EXPECT_TRUE(send("create").is_success());
    host.memory.result->values = newValues;
    // One check before the fetch and two for each query, in the engine and after it: cancels the second query.
    CountingProgress progress(4);
    EXPECT_TRUE(send("refresh", &progress).is(bk2::error::Cancelled));
    EXPECT_TRUE(out.is_empty());
    EXPECT_EQ(shown(), diagramOf(withOne(oldValues, 1, newValues)));
}

TEST_F(Cancellation, OfAModeChangeKeepsTheNewMode) {
    EXPECT_TRUE(send("create").is_success());
    CountingProgress progress(1);
    variant_bag_t written;
    EXPECT_TRUE(handler->handleRequest("changeDisplayMode", requestFor("size"), written, &progress)
                    .is(bk2::error::Cancelled));
    EXPECT_TRUE(send("create").is_success());
    EXPECT_EQ(out.get_variant_bag("diagram")->get("displayMode")->get<std::string_view>(), "size");
}

}  // namespace
}  // namespace tessera_test
