// The library's front door.
#pragma once

#include <memory>

#include "core/export.h"
#include "core/layout_options.h"
#include "platform/basekit2/sptr.h"
#include "platform/panelcore_1/filter_mgr.h"
#include "platform/panelcore_1/request_handler.h"
#include "platform/qlib_1/input_data.h"
#include "platform/qlib_1/query_library.h"
#include "platform/relay2/messenger.h"

namespace tessera_1 {

// Makes the handler of one diagram pane. The handler answers "create", "refresh" and "changeDisplayMode" on
// any thread, one at a time, and keeps for its life: a reference on the query library and on the opened
// result, the pane's base handler (asked once for "config", which must put the viewpoint into its output
// bag), the filter manager, and the messenger, which is not owned, must outlive the handler and may be null.
// A "create" that is cancelled while values are fetched keeps the diagram that it has; the next "refresh"
// fetches them again; one that is cancelled while a large diagram is laid out keeps nothing. Never null.
[[nodiscard]] TESSERA_EXPORT std::shared_ptr<panelcore_1::IRequestHandler> createDiagramViewRequestHandler(
    basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, basekit2::sptr_t<qlib_1::IInputData> inputData,
    std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
    std::shared_ptr<panelcore_1::IFilterMgr> filterMgr, relay2::IMessenger* messenger);

// The same with limits and a watcher for the diagrams of this handler.
[[nodiscard]] TESSERA_EXPORT std::shared_ptr<panelcore_1::IRequestHandler>
createDiagramViewRequestHandlerWithOptions(basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                           basekit2::sptr_t<qlib_1::IInputData> inputData,
                                           std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
                                           std::shared_ptr<panelcore_1::IFilterMgr> filterMgr,
                                           relay2::IMessenger* messenger, const LayoutOptions& options);

}  // namespace tessera_1
