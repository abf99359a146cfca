// What one run of the layout passes knows beyond the graph.
#pragma once

#include <memory>

#include "core/layout_options.h"
#include "core/view_model/graph.h"
#include "core/view_model/passes/plain_walk.h"
#include "platform/relay2/progress.h"

namespace tessera_1::view_model {

class LabelDummies;

// Kept from the first pass to the last, over several requests when a pass was cancelled. Passes that are
// called as members of Graph have one of their own, without limits and without progress.
struct LayoutRun {
    LayoutLimits limits;
    WalkBudget walkBudget;                        // of each layering
    const relay2::IProgress* progress = nullptr;  // of the present request; not owned, may be null
    bool isTruncated = false;                     // a limit has stopped a pass
    bool isCancelled = false;                     // `progress` has stopped a pass, which is to be run again
    std::shared_ptr<LabelDummies> labelDummies;   // where that pass has stopped; null before it and after it
};

// The passes that take long, as members of Graph describe them. A cancelled one sets `run.isCancelled`,
// returns the false code and reports nothing; called again with the same run, it ends its work.
basekit2::error_code_t calculateHierarchicalLevels(Graph& graph, LayoutRun& run);
basekit2::error_code_t addDummyNodesForLabels(Graph& graph, LayoutRun& run);

}  // namespace tessera_1::view_model
