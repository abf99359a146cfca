// What a pane's host sends its requests to.
//
// Two implementations meet here. The diagram library makes one a pane, through its exported factory, and
// serves "create", "refresh" and "changeDisplayMode" with it. The host supplies the other, the base handler
// of the pane, which serves "config": it puts the pane's viewpoint into the output bag.
#pragma once

#include <memory>
#include <string>

#include "platform/basekit2/error_code.h"
#include "platform/basekit2/variant_bag.h"
#include "platform/export.h"
#include "platform/panelcore_1/task_displacement_strategy.h"
#include "platform/relay2/progress.h"

namespace panelcore_1 {

// Serves the requests of one pane. The host keeps it by shared pointer and may call every member on any
// thread; an implementation locks what it needs. The order of the virtual members is part of the binary
// interface: add none, move none.
class TESSERA_PLATFORM_EXPORT IRequestHandler {
  public:
    // The kind of pane this handler serves; "diagramView" for the diagram library's. Constant for the
    // handler's life; takes no lock, so it returns at once while a request runs.
    [[nodiscard]] virtual std::string getDomainName() const = 0;

    // Called by the host's scheduler before it queues a request: replaces `taskName` with the name under
    // which the task list shows it. `in` is the bag of that request and is only read. The inherited behaviour
    // lets the strategy of getTaskDisplacementStrategy() build the name; without a strategy, or when that
    // declines, the name is that of the request.
    virtual void buildTaskName(const std::string& request, const basekit2::variant_bag_t& in,
                               std::string& taskName);

    // Executes the request `name` (compared exactly, case matters) on the calling thread and returns when it
    // is done.
    // - `in` is only read, and not after the return. The result is added to `out`, which the caller owns and
    //   which no other request uses meanwhile; pass an empty bag. After an error `out` may hold a part.
    // - `progress` may be null (the request cannot be cancelled then) and is borrowed for the call.
    // - The code is success, the false code (nothing to report here: the reason was reported where it was
    //   found, or there is nothing to do), or a raised error. A name that the handler does not know is a
    //   raised error of the family FailedTo.
    // - Several threads may call at once. An implementation makes them wait where it must; the diagram
    //   library's works on one request at a time and holds a lock meanwhile, so nothing that it calls may
    //   send it a request, the base handler's "config" excepted: for that it holds none.
    virtual basekit2::error_code_t handleRequest(const std::string& name, const basekit2::variant_bag_t& in,
                                                 basekit2::variant_bag_t& out,
                                                 relay2::IProgress* progress) = 0;

    // How this pane's tasks displace each other. Null means the same as the default strategy. The inherited
    // behaviour returns the process's default strategy, by which nothing displaces anything.
    [[nodiscard]] virtual std::shared_ptr<ITaskDisplacementStrategy> getTaskDisplacementStrategy();

    // The host calls it once when the pane is being closed, after all of its requests have ended, and sends
    // none later; it drops its pointer next. The inherited behaviour does nothing.
    virtual void close();

    // Runs on the thread that drops the last pointer; no request may be running.
    virtual ~IRequestHandler();
};

}  // namespace panelcore_1
