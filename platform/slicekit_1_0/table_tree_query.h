// Questions whose result is a table of rows and columns.
//
// The diagram library builds an ITableTreeQuery for each display info; the query finds the host's
// ITableTreeEngine at the input data and hands it a table_tree_request_t.
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

// What a table-tree query is about, as handed to the engine that runs it.
struct table_tree_request_t {
    // One level of rows for each member. Empty when setRowGrouping() was not called; an engine rejects that.
    sptr_t<qlib_1::IVectorQuery> rowGrouping;
    // One column for each member, in this order. Empty when setColumns() was not called; rejected, too.
    sptr_t<qlib_1::IVectorQuery> columns;
    std::vector<std::string> filters;  // names, in the order in which they were added
};

// Runs table-tree queries over one result. An interface of the input data, implemented by the host; get it
// through the object registry.
class ITableTreeEngine : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"slicekit_1_0::ITableTreeEngine"};

    // Runs `request` on the calling thread and puts the result into `tree`, which is left alone on failure.
    // - Called under the lock of the handler whose request this is: it must not send that handler a request.
    //   An engine that several handlers share is called by several threads at once.
    // - Filters: rows that any named filter rejects do not count. A name that the engine does not know is a
    //   failure, so that unfiltered values are never shown as filtered ones.
    // - A failure is a raised error and has been posted to the host's user already: the caller logs it and
    //   shows nothing. Success comes with a tree, never with an empty pointer.
    // - `progress` may be null; once it reports cancellation the run ends within 100 ms with the cancellation
    //   error. It is borrowed for the call.
    // - `wait` false allows an engine to return what it has at once. The diagram library passes true.
    virtual error_code_t run(const table_tree_request_t& request, relay2::IProgress* progress, bool wait,
                             sptr_t<qlib_1::ITableTree>& tree) = 0;

  protected:
    ~ITableTreeEngine() override = default;
};

// A table-tree query under construction. Set up and run by one thread at a time, in this order: input data,
// row grouping, columns, endColumns(), filters, run(). It may be run again, and then reads the result again.
// What it is given it keeps a reference on until it ends.
class TESSERA_PLATFORM_EXPORT ITableTreeQuery : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"slicekit_1_0::ITableTreeQuery"};

    // A new query with nothing set; never empty. Any thread.
    [[nodiscard]] static sptr_t<ITableTreeQuery> create();

    // The result to read. An empty pointer is accepted here; run() then fails.
    virtual void setInputData(sptr_t<qlib_1::IInputData> inputData) = 0;
    // Both return the not-valid-data error for an empty query and then change nothing; otherwise they replace
    // what was set before.
    virtual error_code_t setRowGrouping(sptr_t<qlib_1::IVectorQuery> grouping) = 0;
    virtual error_code_t setColumns(sptr_t<qlib_1::IVectorQuery> columns) = 0;
    // Says that the columns are complete; filters come after it.
    virtual void endColumns() = 0;
    // Adds the filter called `name`, which run() applies together with those added before. Whether there is
    // such a filter is not tested here: see IFilterRegistry::hasFilter().
    virtual error_code_t addFilter(const std::string& name) = 0;

    // Hands the request to the input data's engine and waits for the result. `tree` receives it on success
    // and is left alone otherwise. The error is the engine's, or not-valid-data when the input data is
    // missing or has no engine. `progress` and `wait` are passed on as they are.
    virtual error_code_t run(relay2::IProgress* progress, bool wait, sptr_t<qlib_1::ITableTree>& tree) = 0;

  protected:
    ~ITableTreeQuery() override = default;
};

}  // namespace slicekit_1_0
