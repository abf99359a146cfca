// The values that a node or a link shows, and the queries that bring them.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/export.h"
#include "platform/basekit2/error_code.h"
#include "platform/basekit2/sptr.h"
#include "platform/basekit2/variant_bag.h"
#include "platform/qlib_1/input_data.h"
#include "platform/qlib_1/query.h"
#include "platform/qlib_1/query_library.h"
#include "platform/qlib_1/table_tree.h"
#include "platform/relay2/progress.h"
#include "platform/slicekit_1_0/table_tree_query.h"

namespace tessera_1::view_model {

using basekit2::sptr_t;

// One labelled value.
struct TESSERA_EXPORT Row {
    // Adds a child bag "row" with "name" and "value" to `rows`; nothing when there is no value.
    void dump(basekit2::variant_bag_t& rows) const;

    std::string m_name;
    std::string m_value;  // of the last query run; empty until then
    // Compared byte by byte with the columns of a result. Of several rows with one reference the first gets
    // the value.
    std::string m_query;  // "/" and the identifier of the query that brings the value
};

// The rows of one display info and the query that fetches them all.
struct TESSERA_EXPORT RowSet {
    RowSet();

    // True when no row has a value, however many rows there are.
    [[nodiscard]] bool empty() const;

    // Adds a child bag "rows" to `bag`; nothing when empty().
    void dump(basekit2::variant_bag_t& bag) const;

    std::string m_name;
    // A reference to a query that "ds" does not have leaves its row without value.
    std::vector<Row> rows;  // in the document's order
    // Part of the layout of the class; the library sets it false and never reads it.
    bool m_flag = false;
    sptr_t<qlib_1::IVectorQuery> ds;  // one member a column; without it the row set is never queried
    basekit2::variant_bag_t m_bag;    // the definition that `ds` was built from
};

// A named set of rows: the unit of data that is shown. Used by one thread at a time.
class TESSERA_EXPORT DisplayInfo {
  public:
    DisplayInfo();

    // Fetches the values of all rows from `inputData`, under its filters "selection" and "global" where it
    // has them. A failure is reported, returned as the false code, and leaves the rows that were not
    // reached as they were. `progress` may be null.
    basekit2::error_code_t setDataFromResult(sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                             sptr_t<qlib_1::IInputData> inputData,
                                             relay2::IProgress* progress);

    // Writes "name" and "rows" into `bag` itself; nothing when the row set is empty.
    void dump(basekit2::variant_bag_t& bag) const;

    std::string m_name;
    RowSet m_rowSet;
};

// Display infos by the name of the display mode that shows them ("bandwidth", "ratio" or "size"). An entry
// may be null: there is nothing to show in that mode.
using DataTransferTable = std::unordered_map<std::string, std::shared_ptr<DisplayInfo>>;

// Whether `table` has a value to show under `key`. LinkDisplayInfo::emptyDataTransfer, negated and without
// its copies.
[[nodiscard]] bool showsValues(const DataTransferTable& table, const std::string& key);

// The data of one link.
struct TESSERA_EXPORT LinkDisplayInfo {
    // True when `table` has nothing to show under `key`: no entry, a null one, or one without values.
    [[nodiscard]] static bool emptyDataTransfer(DataTransferTable table, std::string key);

    // True when none of the three tables has anything to show under `key`.
    [[nodiscard]] bool empty(std::string key) const;

    // Not used by the library; empty until a host sets it.
    std::string m_extraText;
    // What is shown at the from end, at the to end and in the centre.
    DataTransferTable m_fromInfo;
    DataTransferTable m_toInfo;
    DataTransferTable m_totalInfo;
};

// Adds the filter `name` to `query` if the input data's filter registry has one of that name; the false code,
// reported, when there is no registry.
TESSERA_EXPORT basekit2::error_code_t addFilter(sptr_t<qlib_1::IInputData> inputData,
                                                sptr_t<slicekit_1_0::ITableTreeQuery> query,
                                                std::string name);

// The single query whose values are in `column`.
[[nodiscard]] TESSERA_EXPORT sptr_t<qlib_1::IQuery> getColumnQuery(sptr_t<qlib_1::IColumnInfo> column);

}  // namespace tessera_1::view_model
