// The result of a query over all rows: one row of cells.
#pragma once

#include <string>
#include <vector>

#include "platform/qlib_1/table_tree.h"

namespace tessera_host {

// A tree of one row. Column i is a value column for the member i of `columns`, so there are as many cells.
[[nodiscard]] qlib_1::sptr_t<qlib_1::ITableTree> makeTotalTree(qlib_1::sptr_t<qlib_1::IVectorQuery> columns,
                                                               std::vector<std::string> cells);

}  // namespace tessera_host
