// Questions that are answered by a table of rows and columns.
#pragma once

#include <string>
#include <vector>

#include "platform/basekit2/error_code.h"
#include "platform/export.h"
#include "platform/qlib_1/input_data.h"
#include "platform/qlib_1/query.h"
#include "platform/qlib_1/table_tree.h"
#include "platform/relay2/progress.h"

namespace slicekit_1_0 {

using basekit2::error_code_t;
using basekit2::sptr_t;

// What a table-tree query asks, as handed to the engine that answers it.
struct table_tree_request_t {
    sptr_t<qlib_1::IVectorQuery> rowGrouping;
    sptr_t<qlib_1::IVectorQuery> columns;
    std::vector<std::string> filters;  // names, in the order in which they were added
};

// Answers table-tree queries over one result. An interface of the input data, implemented by the host; called
// under the lock of the handler that asks.
class ITableTreeEngine : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"slicekit_1_0::ITableTreeEngine"};

    // Runs `request` and puts the answer into `tree`, which is left alone on failure. A failure has been told
    // to the host's user already. `progress` may be null; once it reports cancellation the run ends within
    // 100 ms with the cancellation error. `wait` false allows an engine to answer with what it has at once.
    virtual error_code_t run(const table_tree_request_t& request, relay2::IProgress* progress, bool wait,
                             sptr_t<qlib_1::ITableTree>& tree) = 0;

  protected:
    ~ITableTreeEngine() override = default;
};

// A table-tree query under construction. Set up and run by one thread at a time, in this order: input data,
// row grouping, columns, endColumns(), filters, run().
class TESSERA_PLATFORM_EXPORT ITableTreeQuery : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"slicekit_1_0::ITableTreeQuery"};

    // A new query that asks nothing yet; never empty.
    [[nodiscard]] static sptr_t<ITableTreeQuery> create();

    virtual void setInputData(sptr_t<qlib_1::IInputData> inputData) = 0;
    // Both answer the not-valid-data error for an empty query.
    virtual error_code_t setRowGrouping(sptr_t<qlib_1::IVectorQuery> grouping) = 0;
    virtual error_code_t setColumns(sptr_t<qlib_1::IVectorQuery> columns) = 0;
    // Says that the columns are complete; filters come after it.
    virtual void endColumns() = 0;
    virtual error_code_t addFilter(const std::string& name) = 0;

    // Asks the input data's engine. `tree` receives the answer on success and is left alone otherwise. The
    // error is the engine's, or not-valid-data when the input data is missing or has no engine.
    virtual error_code_t run(relay2::IProgress* progress, bool wait, sptr_t<qlib_1::ITableTree>& tree) = 0;

  protected:
    ~ITableTreeQuery() override = default;
};

}  // namespace slicekit_1_0
