#include "platform/slicekit_1_0/table_tree_query.h"

#include <utility>

#include "platform/basekit2/object_registry.h"
#include "platform/basekit2/ref_counted.h"

namespace slicekit_1_0 {
namespace {

error_code_t not_valid(const char* what, const char* function, int line) {
    return error_code_t::raise(bk2::error::IsNot.Valid.Data(RTBASE_2_18::strings::ustring8(what)), function,
                               "platform/slicekit_1_0/table_tree_query", line);
}

// Collects a request and leaves the work to the input data's engine. A failure is raised here, where it is found.
class table_tree_query_t final : public basekit2::ref_counted_t<ITableTreeQuery> {
  public:
    void setInputData(sptr_t<qlib_1::IInputData> inputData) override { m_inputData = std::move(inputData); }

    error_code_t setRowGrouping(sptr_t<qlib_1::IVectorQuery> grouping) override {
        if (grouping.is_null()) return not_valid("A row grouping is needed", __func__, __LINE__);
        m_request.rowGrouping = std::move(grouping);
        return {};
    }

    error_code_t setColumns(sptr_t<qlib_1::IVectorQuery> columns) override {
        if (columns.is_null()) return not_valid("A column query is needed", __func__, __LINE__);
        m_request.columns = std::move(columns);
        return {};
    }

    // The engine is given all columns at once.
    void endColumns() override {}

    error_code_t addFilter(const std::string& name) override {
        m_request.filters.push_back(name);
        return {};
    }

    error_code_t run(relay2::IProgress* progress, bool wait, sptr_t<qlib_1::ITableTree>& tree) override {
        const auto engine = basekit2::object_registry_t::process().query<ITableTreeEngine>(m_inputData);
        if (engine.is_null()) return not_valid("The input data cannot run queries", __func__, __LINE__);
        return engine->run(m_request, progress, wait, tree);
    }

  private:
    sptr_t<qlib_1::IInputData> m_inputData;
    table_tree_request_t m_request;
};

}  // namespace

sptr_t<ITableTreeQuery> ITableTreeQuery::create() {
    return basekit2::make_counted<table_tree_query_t>();
}

}  // namespace slicekit_1_0
