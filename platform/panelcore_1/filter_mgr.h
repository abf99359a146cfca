// The filters of a pane as its user manages them.
#pragma once

#include <string>
#include <vector>

namespace panelcore_1 {

// Implemented by the host, one a pane, and shared with the pane's handlers, which keep it for their life. A
// null manager is accepted by the diagram library, which keeps it and never calls it: queries find the
// filters in force through qlib_1::IFilterRegistry of the input data. A host that has both must keep them in
// agreement. Any thread, at any time during the life of a handler.
class IFilterMgr {
  public:
    virtual ~IFilterMgr() = default;

    // The names of the filters that the user has set, each once, in an order of the host's choice; empty when
    // none is set. The caller owns the list; it is a copy of one moment.
    [[nodiscard]] virtual std::vector<std::string> getFilterNames() const = 0;
};

}  // namespace panelcore_1
