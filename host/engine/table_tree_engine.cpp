#include "host/engine/table_tree_engine.h"

#include <string>
#include <utility>
#include <vector>

#include "host/document/text.h"
#include "host/engine/query_library.h"
#include "host/engine/query_runner.h"
#include "host/engine/token_progress.h"
#include "host/engine/total_tree.h"
#include "platform/basekit2/object_registry.h"

namespace tessera_host {
namespace {

using basekit2::error_code_t;
using basekit2::sptr_t;

// `line` is the caller's: it is a part of the error's origin.
error_code_t raise(const bk2::error::entry_t& error, const std::string& text, int line) {
    return error_code_t::raise(error(_U(text)), "run", "host/engine/table_tree_engine", line);
}

class TableTreeEngine final : public basekit2::ref_counted_t<slicekit_1_0::ITableTreeEngine> {
  public:
    TableTreeEngine(std::shared_ptr<SnapshotSource> source, std::shared_ptr<const Declarations> declarations,
                    sptr_t<FilterRegistry> filters, relay2::IMessenger* messenger, const QueryLimits& limits,
                    std::shared_ptr<CellRecord> record)
        : m_source(std::move(source)),
          m_filters(std::move(filters)),
          m_messenger(messenger),
          m_limits(limits),
          m_budget(limits.memory),
          m_runner(std::move(declarations)),
          m_record(std::move(record)) {}

    sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override {
        if (id == slicekit_1_0::ITableTreeEngine::typeId) return sptr_t<basekit2::IObject>::share(this);
        return nullptr;
    }

    error_code_t run(const slicekit_1_0::table_tree_request_t& request, relay2::IProgress* progress,
                     bool wait, sptr_t<qlib_1::ITableTree>& tree) override;

  private:
    [[nodiscard]] Expected<void> accept(const slicekit_1_0::table_tree_request_t& request);
    [[nodiscard]] error_code_t fillCells(const slicekit_1_0::table_tree_request_t& request,
                                         const RunPlace& place, std::vector<std::string>& cells);
    [[nodiscard]] error_code_t fail(const std::string& text, basekit2::source_position_t position,
                                    bool isNew);
    [[nodiscard]] error_code_t failSnapshot(const Error& error);
    [[nodiscard]] error_code_t failQuery(const QueryDeclaration& declaration, DeclaredQuery& query,
                                         const Error& error);

    const std::shared_ptr<SnapshotSource> m_source;
    const sptr_t<FilterRegistry> m_filters;
    relay2::IMessenger* const m_messenger;
    const QueryLimits m_limits;
    ValueBudget m_budget;
    QueryRunner m_runner;
    const std::shared_ptr<CellRecord> m_record;  // may be null
    std::uint64_t m_reportedSnapshot = 0;
};

error_code_t TableTreeEngine::run(const slicekit_1_0::table_tree_request_t& request,
                                  relay2::IProgress* progress, bool, sptr_t<qlib_1::ITableTree>& tree) {
    if (progress && progress->isCancelled())
        return raise(bk2::error::Cancelled, "the request was cancelled", __LINE__);
    if (const auto accepted = accept(request); !accepted) return fail(accepted.error().text, {}, true);

    const RunOptions options{tokenOf(progress), m_limits};
    // All columns are read from one snapshot, so they fit together.
    const SnapshotUse use(*m_source, options);
    if (const auto state = use.state(); !state) return failSnapshot(state.error());
    std::vector<std::string> cells;
    m_budget.startSnapshot(m_source->number());
    const RunPlace place{use.snapshot(), m_source->number(), options, m_budget};
    const error_code_t error = fillCells(request, place, cells);
    if (!error.is_success()) return error;
    tree = makeTotalTree(request.columns, std::move(cells));
    return {};
}

// Takes over the filters of the request. An error says why this engine cannot run it.
Expected<void> TableTreeEngine::accept(const slicekit_1_0::table_tree_request_t& request) {
    const auto refused = [](std::string text) { return Error{ErrorKind::failed, std::move(text)}; };
    if (request.columns.is_null()) return refused("the query has no columns");
    if (request.rowGrouping.is_null() || request.rowGrouping->size() != 1 ||
        !isRootGrouping(request.rowGrouping->at(0)))
        return refused("the rows of a query can only be grouped by the single \"RootGrouping\"");
    FilterList filters;
    for (const std::string& name : request.filters) {
        auto predicate = m_filters->predicateOf(name);
        if (!predicate) return refused("there is no filter " + quoted(name));
        filters.push_back({name, std::move(*predicate)});
    }
    m_runner.setFilters(std::move(filters));
    return {};
}

// Stops at the first column that fails: a table is complete or is not made.
error_code_t TableTreeEngine::fillCells(const slicekit_1_0::table_tree_request_t& request,
                                        const RunPlace& place, std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < request.columns->size(); ++i) {
        const auto member = request.columns->at(i);
        const auto reference = basekit2::object_registry_t::process().query<ReferenceQuery>(member);
        if (reference.is_null() || !m_runner.knows(*reference))
            return fail("the query " + quoted(member->getIdentifier()) + " is not one of this document", {},
                        true);
        DeclaredQuery& query = m_runner.queryFor(*reference);
        const Cell& cell = query.value(*reference, place);
        if (!cell.text) return failQuery(reference->declaration(), query, cell.text.error());
        if (!m_budget.takeCell(cell.text->size()))
            return failQuery(reference->declaration(), query, tooManyValues(m_budget));
        cells.push_back(m_record ? m_record->tagged(reference, *cell.text, cell.number) : *cell.text);
    }
    return {};
}

// A cancelled request is not a mistake of the document, so no message is posted for it.
error_code_t TableTreeEngine::failQuery(const QueryDeclaration& declaration, DeclaredQuery& query,
                                        const Error& error) {
    if (error.isCancelled()) return raise(bk2::error::Cancelled, error.text, __LINE__);
    return fail("query " + quoted(declaration.id) + ": " + error.text, declaration.position,
                query.claimReport(m_source->number()));
}

error_code_t TableTreeEngine::failSnapshot(const Error& error) {
    if (error.isCancelled()) return raise(bk2::error::Cancelled, error.text, __LINE__);
    // One message per snapshot: every table of a request fails for the same reason.
    const bool isNew = std::exchange(m_reportedSnapshot, m_source->number()) != m_source->number();
    return fail(error.text, {}, isNew);
}

// Posts the text if it is new; the error is returned to the caller each time.
error_code_t TableTreeEngine::fail(const std::string& text, basekit2::source_position_t position,
                                   bool isNew) {
    if (isNew && m_messenger) m_messenger->post(relay2::severity_t::error, text, position);
    return raise(bk2::error::FailedTo, text, __LINE__);
}

}  // namespace

InputData::InputData(std::shared_ptr<SnapshotSource> source, std::shared_ptr<const Declarations> declarations,
                     Filters filters, relay2::IMessenger* messenger, const QueryLimits& limits,
                     std::shared_ptr<CellRecord> record)
    : m_filters(basekit2::make_counted<FilterRegistry>(std::move(filters))),
      m_engine(basekit2::make_counted<TableTreeEngine>(std::move(source), std::move(declarations), m_filters,
                                                       messenger, limits, std::move(record))) {}

sptr_t<basekit2::IObject> InputData::queryInterface(basekit2::type_id_t id) {
    if (id == qlib_1::IInputData::typeId) return sptr_t<basekit2::IObject>::share(this);
    if (id == qlib_1::IFilterRegistry::typeId) return m_filters;
    if (id == slicekit_1_0::ITableTreeEngine::typeId) return m_engine;
    return nullptr;
}

}  // namespace tessera_host
