// Answers the queries of a pane from its database.
#pragma once

#include <memory>

#include "host/document/declarations.h"
#include "host/engine/filter_registry.h"
#include "host/engine/sqlite/database.h"
#include "platform/basekit2/ref_counted.h"
#include "platform/qlib_1/input_data.h"
#include "platform/relay2/messenger.h"
#include "platform/slicekit_1_0/table_tree_query.h"

namespace tessera_host {

// The opened result of a pane. Its further interfaces are IFilterRegistry and ITableTreeEngine; they are
// objects of their own that may outlive this one.
//
// The engine answers requests whose row grouping is the single "RootGrouping" and whose columns are
// references to the declarations, by a tree of one row. Requests come one at a time. One that is made while a
// Snapshot of the database lives sees that snapshot's state, any other makes a snapshot of its own. What
// fails is told to the messenger, each broken query once a snapshot, and the answer is then the error
// FailedTo; a cancelled request is not told about and answers Cancelled.
class InputData final : public basekit2::ref_counted_t<qlib_1::IInputData> {
  public:
    // `messenger` may be null and otherwise outlives the engine.
    InputData(std::shared_ptr<Database> database, std::shared_ptr<const Declarations> declarations,
              Filters filters, relay2::IMessenger* messenger);

    basekit2::sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override;

    // Replaces all filters. Any thread; a request that is running may see the old or the new ones.
    void setFilters(Filters filters) { m_filters->replace(std::move(filters)); }

  private:
    const basekit2::sptr_t<FilterRegistry> m_filters;
    const basekit2::sptr_t<slicekit_1_0::ITableTreeEngine> m_engine;
};

}  // namespace tessera_host
