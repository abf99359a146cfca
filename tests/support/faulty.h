// Forms of the host's interfaces that fail at the n-th call. A plan says what fails and when; all forms of one
// host share it.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "core/factory.h"
#include "tests/support/memory_host.h"

namespace tessera_test {

enum class Fault {
    configStaysEmpty,       // the base handler fails and fills in nothing
    configFailsButFills,    // it returns an error, and the configuration as well
    definitionRefused,      // the library builds no query
    definitionGivesSingle,  // it builds a query that is not a vector query
    namedQueryMissing,      // it does not know the requested query
    registryMissing,        // the input data has no filter registry
    filterLost,             // the registry does not know a filter that it has
    engineMissing,          // the input data runs no queries
    runFails,
    runAnswersFalse,  // with the false code and without a tree
    runGivesNoTree,   // with success and without a tree
    columnMissing,
    columnWithoutQuery,
    columnOfUnknownQuery,
    columnOfNoMember,       // its query is a vector that hands out nothing
    columnBeyondItsVector,  // its member index is too large
    cellWithoutText,
};

// What fails, and at which of the calls that could.
class FaultPlan {
  public:
    // From now on, of the calls that can have this fault, the one with the number `call` (from 1) fails.
    void set(Fault fault, int call) {
        m_fault = fault;
        m_left = call;
        m_struck = false;
    }
    void clear() { m_left = 0; }
    // Whether the planned call was reached.
    bool struck() const { return m_struck; }

    // The forms call this once per call.
    bool strikes(Fault fault) {
        if (fault != m_fault || m_left == 0 || --m_left != 0) return false;
        m_struck = true;
        return true;
    }

  private:
    Fault m_fault{};
    int m_left = 0;
    bool m_struck = false;
};

class FaultyQueryLibrary final : public ForwardingQueryLibrary {
  public:
    FaultyQueryLibrary(sptr_t<IQueryLibrary> target, FaultPlan& plan)
        : ForwardingQueryLibrary(std::move(target)), m_plan(plan) {}
    sptr_t<qlib_1::IQuery> buildQuery(const variant_bag_t& definition,
                                      relay2::IMessenger* messenger) override {
        if (m_plan.strikes(Fault::definitionRefused)) return nullptr;
        if (m_plan.strikes(Fault::definitionGivesSingle))
            return basekit2::make_counted<MemoryQuery>("single");
        return target().buildQuery(definition, messenger);
    }
    sptr_t<qlib_1::IQuery> getQuery(const std::string& name) override {
        return m_plan.strikes(Fault::namedQueryMissing) ? nullptr : target().getQuery(name);
    }

  private:
    FaultPlan& m_plan;
};

class FaultyRegistry final : public ForwardingFilterRegistry {
  public:
    FaultyRegistry(sptr_t<IFilterRegistry> target, FaultPlan& plan)
        : ForwardingFilterRegistry(std::move(target)), m_plan(plan) {}
    bool hasFilter(const std::string& name) const override {
        return !m_plan.strikes(Fault::filterLost) && target().hasFilter(name);
    }

  private:
    FaultPlan& m_plan;
};

// A column that returns the wrong query.
class MisleadingColumn final : public ForwardingColumnInfo {
  public:
    MisleadingColumn(sptr_t<IColumnInfo> target, sptr_t<qlib_1::IQuery> query, std::size_t member)
        : ForwardingColumnInfo(std::move(target)), m_query(std::move(query)), m_member(member) {}
    sptr_t<qlib_1::IQuery> getQuery() const override { return m_query; }
    std::size_t getMemberIndex() const noexcept override { return m_member; }

  private:
    sptr_t<qlib_1::IQuery> m_query;
    std::size_t m_member;
};

// A vector with one member, which it does not return.
class HollowVectorQuery final : public ForwardingVectorQuery {
  public:
    HollowVectorQuery() : ForwardingVectorQuery(qlib_1::IVectorQuery::create({})) {}
    std::size_t size() const noexcept override { return 1; }
    sptr_t<qlib_1::IQuery> at(std::size_t) const override { return nullptr; }
};

class FaultyRow final : public ForwardingTableRow {
  public:
    FaultyRow(sptr_t<ITableRow> target, FaultPlan& plan)
        : ForwardingTableRow(std::move(target)), m_plan(plan) {}
    std::string getCellText(std::size_t column) const override {
        return m_plan.strikes(Fault::cellWithoutText) ? std::string() : target().getCellText(column);
    }

  private:
    FaultPlan& m_plan;
};

class FaultyTree final : public ForwardingTableTree {
  public:
    FaultyTree(sptr_t<ITableTree> target, FaultPlan& plan)
        : ForwardingTableTree(std::move(target)), m_plan(plan) {}
    sptr_t<qlib_1::IColumnInfo> getColumn(std::size_t index) const override {
        if (m_plan.strikes(Fault::columnMissing)) return nullptr;
        const auto column = target().getColumn(index);
        const auto mislead = [&](sptr_t<qlib_1::IQuery> query, std::size_t member) {
            return basekit2::make_counted<MisleadingColumn>(column, std::move(query), member);
        };
        if (m_plan.strikes(Fault::columnWithoutQuery)) return mislead(nullptr, 0);
        if (m_plan.strikes(Fault::columnOfUnknownQuery))
            return mislead(basekit2::make_counted<MemoryQuery>("unknown"), 0);
        if (m_plan.strikes(Fault::columnOfNoMember))
            return mislead(basekit2::make_counted<HollowVectorQuery>(), 0);
        if (m_plan.strikes(Fault::columnBeyondItsVector)) return mislead(column->getQuery(), 1'000'000);
        return column;
    }
    sptr_t<qlib_1::ITableRow> getRow(std::size_t index) const override {
        return basekit2::make_counted<FaultyRow>(target().getRow(index), m_plan);
    }

  private:
    FaultPlan& m_plan;
};

class FaultyEngine final : public ForwardingEngine {
  public:
    FaultyEngine(sptr_t<ITableTreeEngine> target, FaultPlan& plan)
        : ForwardingEngine(std::move(target)), m_plan(plan) {}
    error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress* progress,
                     bool wait, sptr_t<qlib_1::ITableTree>& tree) override {
        if (m_plan.strikes(Fault::runFails))
            return error_code_t::raise(bk2::error::FailedTo(_U("run the query")), __func__, __FILE__,
                                       __LINE__);
        if (m_plan.strikes(Fault::runAnswersFalse)) return error_code_t::false_code();
        if (m_plan.strikes(Fault::runGivesNoTree)) return {};
        sptr_t<qlib_1::ITableTree> answer;
        const error_code_t code = target().run(request, progress, wait, answer);
        if (answer) tree = basekit2::make_counted<FaultyTree>(std::move(answer), m_plan);
        return code;
    }

  private:
    FaultPlan& m_plan;
};

class FaultyInputData final : public ForwardingInputData {
  public:
    FaultyInputData(sptr_t<IInputData> target, FaultPlan& plan)
        : ForwardingInputData(std::move(target)), m_plan(plan) {}
    sptr_t<basekit2::IObject> queryInterface(type_id_t id) override {
        if (id == qlib_1::IFilterRegistry::typeId)
            return wrap<FaultyRegistry, qlib_1::IFilterRegistry>(Fault::registryMissing);
        if (id == slicekit_1_0::ITableTreeEngine::typeId)
            return wrap<FaultyEngine, slicekit_1_0::ITableTreeEngine>(Fault::engineMissing);
        return ForwardingInputData::queryInterface(id);
    }

  private:
    template <class Form, class Interface>
    sptr_t<basekit2::IObject> wrap(Fault missing) {
        if (m_plan.strikes(missing)) return nullptr;
        auto found = target().queryInterface(Interface::typeId);
        if (found.is_null()) return nullptr;
        return basekit2::make_counted<Form>(sptr_t<Interface>::adopt(static_cast<Interface*>(found.detach())),
                                            m_plan);
    }

    FaultPlan& m_plan;
};

class FaultyBaseHandler final : public ForwardingRequestHandler {
  public:
    FaultyBaseHandler(std::shared_ptr<IRequestHandler> target, FaultPlan& plan)
        : ForwardingRequestHandler(std::move(target)), m_plan(plan) {}
    error_code_t handleRequest(const std::string& name, const variant_bag_t& in, variant_bag_t& out,
                               relay2::IProgress* progress) override {
        const auto failure = [&](int line) {
            return error_code_t::raise(bk2::error::FailedTo(_U("answer")), "handleRequest", __FILE__, line);
        };
        if (m_plan.strikes(Fault::configStaysEmpty)) return failure(__LINE__);
        const error_code_t code = ForwardingRequestHandler::handleRequest(name, in, out, progress);
        return m_plan.strikes(Fault::configFailsButFills) ? failure(__LINE__) : code;
    }

  private:
    FaultPlan& m_plan;
};

// Catalogues that vanish: from the given call on the source has none, and no text of theirs can be rendered.
class FaultyCatalogSource final : public ForwardingCatalogSource {
  public:
    FaultyCatalogSource(std::shared_ptr<const IMessageCatalogSource> target, int failFrom)
        : ForwardingCatalogSource(std::move(target)), m_failFrom(failFrom) {}
    std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(const std::string& name) const override {
        return ++m_calls >= m_failFrom ? nullptr : ForwardingCatalogSource::getCatalog(name);
    }

  private:
    int m_failFrom;
    mutable int m_calls = 0;
};

// A catalogue that claims to have every message and renders none.
class BlankCatalog final : public RTBASE_2_18::i18n::catalog_t {
  public:
    bool has_message(const std::string&) const override { return true; }
    RTBASE_2_18::i18n::message_t message(const std::string&) const override {
        return RTBASE_2_18::i18n::message_t("");
    }
};

// Counts how often it is called.
class CountingFilterMgr final : public ForwardingFilterMgr {
  public:
    using ForwardingFilterMgr::ForwardingFilterMgr;
    std::vector<std::string> getFilterNames() const override {
        ++calls;
        return ForwardingFilterMgr::getFilterNames();
    }
    mutable int calls = 0;
};

// A memory host wrapped in faulty forms that share one plan.
struct FaultyHost {
    explicit FaultyHost(const std::string& viewpointXml) : memory(viewpointXml) {}

    std::shared_ptr<panelcore_1::IRequestHandler> makeHandler() {
        return tessera_1::createDiagramViewRequestHandler(
            basekit2::make_counted<FaultyQueryLibrary>(memory.library, plan),
            basekit2::make_counted<FaultyInputData>(memory.inputData, plan),
            std::make_shared<FaultyBaseHandler>(memory.base, plan), memory.filterMgr, &memory.messenger);
    }

    FaultPlan plan;
    MemoryHost memory;
};

}  // namespace tessera_test
