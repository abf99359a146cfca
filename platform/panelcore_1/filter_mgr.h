// The filters of a pane as its user manages them.
#pragma once

#include <string>
#include <vector>

namespace panelcore_1 {

// Implemented by the host and shared with the pane's handlers. Queries do not ask it: they find the filters
// in force through the input data. Any thread.
class IFilterMgr {
  public:
    virtual ~IFilterMgr() = default;

    // The names of the filters that the user has set.
    [[nodiscard]] virtual std::vector<std::string> getFilterNames() const = 0;
};

}  // namespace panelcore_1
