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

// Makes the handler of one diagram pane. Never null. Requests "create", "refresh" and "changeDisplayMode" may
// be sent on any thread; the handler works on one at a time.
//
// The handler keeps for its life: a reference on the query library and on the opened result, the pane's base
// handler, and the filter manager. The messenger is not owned: it must outlive the handler, and may be null.
// "create" sends "config" to the base handler until that has put the viewpoint into its output bag, once. No
// lock is held then, so the base handler may send requests to this handler; two threads may send it at once.
//
// A null query library or input data is accepted here; "create" then reports it and returns the false code.
// Without a base handler "create" returns the not-valid-data error. A null filter manager has no effect.
//
// Destroy the handler after its requests have ended: drop the last pointer on any thread.
//
// Cancellation: a "create" that is cancelled while values are fetched keeps the diagram, and the next
// "refresh" fetches the values. Labels of links are made only for values that were there: a host that wants
// the diagram whole makes another handler. One that is cancelled inside a pass of the layout returns the cancellation
// error; the next request finishes the layout first.
[[nodiscard]] TESSERA_EXPORT std::shared_ptr<panelcore_1::IRequestHandler> createDiagramViewRequestHandler(
    basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary, basekit2::sptr_t<qlib_1::IInputData> inputData,
    std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
    std::shared_ptr<panelcore_1::IFilterMgr> filterMgr, relay2::IMessenger* messenger);

// The same with limits and a watcher for the diagrams of this handler. `options` is copied; the watcher in it
// is not owned and must outlive the handler.
[[nodiscard]] TESSERA_EXPORT std::shared_ptr<panelcore_1::IRequestHandler>
createDiagramViewRequestHandlerWithOptions(basekit2::sptr_t<qlib_1::IQueryLibrary> queryLibrary,
                                           basekit2::sptr_t<qlib_1::IInputData> inputData,
                                           std::shared_ptr<panelcore_1::IRequestHandler> baseHandler,
                                           std::shared_ptr<panelcore_1::IFilterMgr> filterMgr,
                                           relay2::IMessenger* messenger, const LayoutOptions& options);

}  // namespace tessera_1
