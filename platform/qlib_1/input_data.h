// The opened result and its filters.
#pragma once

#include <string>

#include "platform/basekit2/object.h"

namespace qlib_1 {

// The opened result (database) of a pane. Implemented by the host, which hands it to the factory of a
// handler; the handler keeps a reference for its life, so the result stays open as long. What can be done
// with it is found through its further interfaces, by object_registry_t::query(): IFilterRegistry, and
// slicekit_1_0::ITableTreeEngine for those who run queries. Several handlers may share one object.
class IInputData : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IInputData"};

  protected:
    ~IInputData() override = default;
};

// The named filters of a pane, for example "selection" and "global". An interface of the input data; get it
// through the object registry, since it may be remote. An input data without one cannot be queried: each
// display info of the diagram then fails. Any thread.
class IFilterRegistry : public basekit2::IObject {
  public:
    static constexpr basekit2::type_id_t typeId{"qlib_1::IFilterRegistry"};

    // Whether a filter called `name` is in force. The diagram library calls it before each query it makes,
    // for "selection" and for "global", under its handler's lock, and adds only filters that exist; a change
    // of the filters therefore takes effect with the next query. Must return at once and send no request.
    [[nodiscard]] virtual bool hasFilter(const std::string& name) const = 0;

  protected:
    ~IFilterRegistry() override = default;
};

}  // namespace qlib_1
