// The finished diagram of one pane and the way to it.
#pragma once

#include <memory>

#include "core/viewpointparser.h"
#include "platform/basekit2/error_code.h"
#include "platform/relay2/progress.h"

namespace tessera_1 {

// Parses, binds and lays out a diagram once, then fetches its values again and writes it, any number of
// times. It is the parser that filled its graph. Locks nothing: its owner must call it from one thread at a
// time.
class TESSERA_EXPORT DataProvider : public DViewpointParser {
  public:
    // The pipeline from the pane's configuration to the laid-out graph. Null when a step fails, which has
    // been reported, or when a pass is cancelled. `messenger` and `progress` are used during the call only
    // and may be null. `out` is not used.
    [[nodiscard]] static std::unique_ptr<DataProvider> create(
        basekit2::variant_bag_t& config, basekit2::variant_bag_t& out,
        basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, relay2::IMessenger* messenger,
        basekit2::sptr_t<qlib_1::IInputData> inputData, relay2::IProgress* progress);

    // Runs the queries of every display info. The cancellation error when cancelled before the first; the
    // false code when a display info could not be filled, which stops none of the others.
    basekit2::error_code_t getData(relay2::IProgress* progress);

    // Adds the diagram to `out`: "diagram", "nodes", "links". The cancellation error before anything is
    // written, or after everything is.
    virtual basekit2::error_code_t getMetadata(basekit2::variant_bag_t& out, relay2::IProgress* progress);

    // Fetches values anew and writes the same diagram with them. A value that could not be fetched stays as
    // it was. The codes are those of getMetadata(); a failed fetch alone is a success here.
    basekit2::error_code_t refresh(basekit2::variant_bag_t& out, relay2::IProgress* progress);

    // Shows the data transfers of the mode that `in` names: the own value of its child "mode". Without that
    // child, or when its value is not a string, the not-valid-data error; nothing changes and nothing is
    // written then.
    basekit2::error_code_t changeDisplayMode(const basekit2::variant_bag_t& in, basekit2::variant_bag_t& out,
                                             relay2::IProgress* progress);

    // Set by create(), from then on never null; shared with nothing else.
    std::shared_ptr<view_model::Graph> m_graph;
    // Used by each fetch of values; references for the provider's life.
    basekit2::sptr_t<qlib_1::IQueryLibrary> m_queryLibrary;
    basekit2::sptr_t<qlib_1::IInputData> m_inputData;
};

}  // namespace tessera_1
