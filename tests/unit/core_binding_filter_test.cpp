// The filters under which values are fetched.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "platform/basekit2/object_registry.h"
#include "tests/support/binding_fixture.h"

namespace tessera_test {
namespace {

TEST_F(ThreeRows, FiltersOfTheRegistryAreSelectionThenGlobalAndNoOthers) {
    struct Case {
        std::set<std::string> registry;
        Reports expected;
    };
    for (const auto& [registry, expected] :
         {Case{{}, {}}, Case{{"selection"}, {"selection"}}, Case{{"global"}, {"global"}},
          Case{{"global", "selection", "other"}, {"selection", "global"}},
          Case{{"Selection", "other"}, {}}}) {
        result->filters = registry;
        EXPECT_TRUE(fetch().is_success());
        EXPECT_EQ(result->runs.back().filters, expected);
    }
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ThreeRows, WithoutASelectionTheValuesAreStillFilteredByGlobal) {
    result->filters = {"global"};
    result->filteredValues = {{"selection:q1", "selected"}, {"global:q1", "global"}};
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"global", "2", "3"}));
    result->filters = {"global", "selection"};
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(values(), (Reports{"selected", "2", "3"}));
}

TEST_F(ThreeRows, WithoutARegistryEachFilterIsReportedAndTheQueryRunsWithoutIt) {
    result->hasRegistry = false;
    // The false code says that the failure has been reported; the caller continues.
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check res", "ERROR check res"}));
    EXPECT_EQ(values(), (Reports{"1", "2", "3"}));
    EXPECT_TRUE(result->runs.at(0).filters.empty());
}

// Input data whose filter registry lives elsewhere.
class RemoteRegistryHandle final : public basekit2::ref_counted_t<basekit2::IRemoteObject> {
  public:
    type_id_t remoteType() const noexcept override { return qlib_1::IFilterRegistry::typeId; }
};
class RemoteInputData final : public ForwardingInputData {
  public:
    using ForwardingInputData::ForwardingInputData;
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override {
        if (id == qlib_1::IFilterRegistry::typeId) return basekit2::make_counted<RemoteRegistryHandle>();
        return ForwardingInputData::queryInterface(id);
    }
};
class RegistryProxy final : public basekit2::ref_counted_t<qlib_1::IFilterRegistry> {
  public:
    bool hasFilter(const std::string& name) const override { return name == "global"; }
};

TEST_F(ThreeRows, RemoteRegistryIsCalledThroughItsProxy) {
    auto& registry = basekit2::object_registry_t::process();
    registry.register_proxy(qlib_1::IFilterRegistry::typeId, [](sptr_t<basekit2::IObject>) {
        return sptr_t<basekit2::IObject>(basekit2::make_counted<RegistryProxy>());
    });
    inputData = basekit2::make_counted<RemoteInputData>(inputData);
    EXPECT_TRUE(fetch().is_success());
    registry.register_proxy(qlib_1::IFilterRegistry::typeId, nullptr);
    EXPECT_EQ(result->runs.at(0).filters, (Reports{"global"}));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ThreeRows, RemoteRegistryWithoutAProxyIsNone) {
    inputData = basekit2::make_counted<RemoteInputData>(inputData);
    EXPECT_TRUE(fetch().is_success());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check res", "ERROR check res"}));
}

TEST_F(Binding, AddFilterIsASuccessWhetherTheFilterExistsOrNot) {
    result->filters = {"f"};
    for (const char* name : {"f", "g"}) {
        const auto tableTree = slicekit_1_0::ITableTreeQuery::create();
        tableTree->setInputData(inputData);
        EXPECT_TRUE(tableTree->setColumns(vectorOf({})).is_success());
        EXPECT_TRUE(tessera_1::view_model::addFilter(inputData, tableTree, name).is_success());
        sptr_t<qlib_1::ITableTree> tree;
        EXPECT_TRUE(tableTree->run(nullptr, true, tree).is_success());
        EXPECT_EQ(result->runs.back().filters, name == std::string("f") ? Reports{"f"} : Reports{});
    }
}

TEST_F(Binding, AddFilterWithoutARegistryIsReportedAndTheFalseCode) {
    result->hasRegistry = false;
    const auto tableTree = slicekit_1_0::ITableTreeQuery::create();
    EXPECT_TRUE(tessera_1::view_model::addFilter(inputData, tableTree, "f").is_false());
    EXPECT_TRUE(tessera_1::view_model::addFilter(nullptr, tableTree, "f").is_false());
    EXPECT_EQ(log.reports(), (Reports{"ERROR check res", "ERROR check res"}));
}

}  // namespace
}  // namespace tessera_test
