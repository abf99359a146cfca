// The opened result and its filters.
#pragma once

#include <string>

#include "platform/basekit2/object.h"

namespace qlib_1 {

// The opened result (database) of a pane. What can be done with it is found through its further interfaces:
// IFilterRegistry, and slicekit_1_0::ITableTreeEngine for those who run queries. Implemented by the host.
class IInputData : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IInputData"};

  protected:
    ~IInputData() override = default;
};

// The named filters of a pane, for example "selection" and "global". An interface of the input data; ask for
// it through the object registry, since it may be remote. Any thread.
class IFilterRegistry : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IFilterRegistry"};

    [[nodiscard]] virtual bool hasFilter(const std::string& name) const = 0;

  protected:
    ~IFilterRegistry() override = default;
};

}  // namespace qlib_1
