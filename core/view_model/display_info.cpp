#include "core/view_model/display_info.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "core/check.h"
#include "core/vocabulary.h"
#include "platform/basekit2/object_registry.h"
#include "platform/qlibhelpers_1_x/table_tree_helper.h"

namespace tessera_1::view_model {

TESSERA_SOURCE_UNIT("core/view_model/display_info");

using basekit2::error_code_t;

namespace {

// Finds a row set's first row by query reference, however many rows there are.
class RowFinder {
  public:
    explicit RowFinder(std::vector<Row>& rows) : m_rows(rows) {
        if (rows.size() <= maxUnindexedRows) return;
        m_index.reserve(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i)
            m_index.try_emplace(rows[i].m_query, i);
    }

    std::vector<Row>::iterator find(const std::string& reference) const {
        if (m_rows.size() <= maxUnindexedRows)
            return std::find_if(m_rows.begin(), m_rows.end(),
                                [&](const Row& row) { return row.m_query == reference; });
        const auto it = m_index.find(reference);
        return it == m_index.end() ? m_rows.end() : m_rows.begin() + static_cast<std::ptrdiff_t>(it->second);
    }

  private:
    static constexpr std::size_t maxUnindexedRows = 16;

    std::vector<Row>& m_rows;
    std::unordered_map<std::string_view, std::size_t> m_index;
};

// Writes the value columns of `tree` into the rows that refer to their queries. Checks are reported as those
// of `signature`.
error_code_t bindColumns(RowSet& rowSet, sptr_t<qlib_1::ITableTree> tree, const char* signature) {
    const RowFinder rows(rowSet.rows);
    auto helper = qlibhelpers_1_x::createTableTreeHelper(std::move(tree));
    for (helper.reset_columns(); !helper.columns_at_end(); helper.next_column()) {
        const sptr_t<qlib_1::IColumnInfo> column = helper.column();
        TESSERA_CHECK_IN(signature, column, error_code_t::false_code());
        if ((column->getFlags() & qlib_1::columnIsValue) == 0) continue;
        const sptr_t<qlib_1::IQuery> columnQuery = getColumnQuery(column);
        const auto it = rows.find("/" + (columnQuery ? columnQuery->getIdentifier() : std::string()));
        TESSERA_CHECK_IN(signature, it != rowSet.rows.end(), error_code_t::false_code());
        for (helper.reset_rows(); !helper.rows_at_end(); helper.next_row())
            it->m_value = helper.cell_text();
    }
    return {};
}

// Prepares `query` for the total of `columns`. Checks are reported as those of `signature`.
error_code_t prepareTotal(slicekit_1_0::ITableTreeQuery& query,
                          const sptr_t<qlib_1::IQueryLibrary>& queryLibrary,
                          const sptr_t<qlib_1::IVectorQuery>& columns, const char* signature) {
    const sptr_t<qlib_1::IQuery> rowBy = queryLibrary->getQuery("RootGrouping");
    TESSERA_CHECK_IN(signature, !rowBy.is_null(), error_code_t::false_code());
    const sptr_t<qlib_1::IVectorQuery> groupingQuery = qlib_1::IVectorQuery::pushBack(nullptr, rowBy);
    TESSERA_CHECK_IN(signature, groupingQuery, error_code_t::false_code());
    error_code_t err = query.setRowGrouping(groupingQuery);
    TESSERA_CHECK_IN(signature, err.succeeded(), error_code_t::false_code());
    err = query.setColumns(columns);
    TESSERA_CHECK_IN(signature, err.succeeded(), error_code_t::false_code());
    query.endColumns();
    return {};
}

}  // namespace

RowSet::RowSet() = default;

bool RowSet::empty() const {
    return std::all_of(rows.begin(), rows.end(), [](const Row& row) { return row.m_value.empty(); });
}

DisplayInfo::DisplayInfo() = default;

error_code_t DisplayInfo::setDataFromResult(sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                            sptr_t<qlib_1::IInputData> inputData,
                                            relay2::IProgress* progress) {
    if (m_rowSet.ds.is_null()) return {};
    const auto query = slicekit_1_0::ITableTreeQuery::create();
    query->setInputData(inputData);
    if (!prepareTotal(*query, queryLibrary, m_rowSet.ds, TESSERA_SIGNATURE).is_success())
        return error_code_t::false_code();
    for (const std::string_view filter : filterNames) {
        const error_code_t err = addFilter(inputData, query, std::string(filter));
        TESSERA_CHECK(err.succeeded(), error_code_t::false_code());
    }
    sptr_t<qlib_1::ITableTree> tree;
    const error_code_t err = query->run(progress, true, tree);
    if (progress && progress->isCancelled()) return error_code_t::false_code();
    TESSERA_CHECK(err.succeeded() && tree, error_code_t::false_code());
    return bindColumns(m_rowSet, std::move(tree), TESSERA_SIGNATURE);
}

bool showsValues(const DataTransferTable& table, const std::string& key) {
    const auto entry = table.find(key);
    return entry != table.end() && entry->second && !entry->second->m_rowSet.empty();
}

// NOLINTBEGIN(performance-unnecessary-value-param): the interface passes copies
bool LinkDisplayInfo::emptyDataTransfer(DataTransferTable table, std::string key) {
    return !showsValues(table, key);
}

bool LinkDisplayInfo::empty(std::string key) const {
    return !showsValues(m_fromInfo, key) && !showsValues(m_toInfo, key) && !showsValues(m_totalInfo, key);
}
// NOLINTEND(performance-unnecessary-value-param)

error_code_t addFilter(sptr_t<qlib_1::IInputData> inputData, sptr_t<slicekit_1_0::ITableTreeQuery> query,
                       std::string name) {
    const auto res = basekit2::object_registry_t::process().query<qlib_1::IFilterRegistry>(inputData);
    TESSERA_CHECK(res, error_code_t::false_code());
    if (res->hasFilter(name)) (void)query->addFilter(name);
    return {};
}

sptr_t<qlib_1::IQuery> getColumnQuery(sptr_t<qlib_1::IColumnInfo> column) {
    if (const auto vector = qlib_1::IVectorQuery::cast(column->getQuery()))
        return column->getMemberIndex() < vector->size() ? vector->at(column->getMemberIndex()) : nullptr;
    return column->getQuery();
}

}  // namespace tessera_1::view_model
