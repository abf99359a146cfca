// Runs the table-tree queries of the diagram library on a result.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/document/declarations.h"
#include "host/engine/cell_record.h"
#include "host/engine/filter_registry.h"
#include "host/engine/snapshot_source.h"
#include "platform/basekit2/ref_counted.h"
#include "platform/qlib_1/input_data.h"
#include "platform/relay2/messenger.h"
#include "platform/slicekit_1_0/table_tree_query.h"

namespace tessera_host {

// The opened result of a pane. Its further interfaces are IFilterRegistry and ITableTreeEngine; they are
// objects of their own that may outlive this one.
//
// The engine runs requests whose row grouping is the single "RootGrouping" and whose columns are references
// to the declarations; the result is a tree of one row. Requests come one at a time. One that is made while
// the source holds a snapshot sees that snapshot's state, any other has a snapshot of its own. A failure is
// reported to the messenger, each broken query once a snapshot, and the returned error is FailedTo; a
// cancelled request reports nothing and returns Cancelled.
//
// Cancellation within a statement needs the token: the progress sink of a request should be a TokenProgress.
// Any other sink is looked at before each request only.
class InputData final : public basekit2::ref_counted_t<qlib_1::IInputData> {
  public:
    // `messenger` may be null and otherwise outlives the engine. With a `record`, the texts of all cells have a
    // tag of it; null: they have none.
    InputData(std::shared_ptr<SnapshotSource> source, std::shared_ptr<const Declarations> declarations,
              Filters filters, relay2::IMessenger* messenger, const QueryLimits& limits = {},
              std::shared_ptr<CellRecord> record = nullptr);

    basekit2::sptr_t<basekit2::IObject> queryInterface(basekit2::type_id_t id) override;

    // Replaces all filters. Any thread; a request that is running may see the old or the new ones.
    void setFilters(Filters filters) { m_filters->replace(std::move(filters)); }
    [[nodiscard]] std::vector<std::string> filterNames() const { return m_filters->names(); }

  private:
    const basekit2::sptr_t<FilterRegistry> m_filters;
    const basekit2::sptr_t<slicekit_1_0::ITableTreeEngine> m_engine;
};

}  // namespace tessera_host
