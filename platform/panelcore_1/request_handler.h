// What a pane's host sends its requests to.
#pragma once

#include <memory>
#include <string>

#include "platform/basekit2/error_code.h"
#include "platform/basekit2/variant_bag.h"
#include "platform/export.h"
#include "platform/panelcore_1/task_displacement_strategy.h"
#include "platform/relay2/progress.h"

namespace panelcore_1 {

// Answers the requests of one pane. The host keeps it by shared pointer and may call every member on any
// thread; an implementation locks what it needs. The order of the members is part of the interface.
class TESSERA_PLATFORM_EXPORT IRequestHandler {
  public:
    // The kind of pane this handler serves. Constant for the handler's life.
    [[nodiscard]] virtual std::string getDomainName() const = 0;

    // Fills `taskName` with the name under which the host's task list shows the request. The inherited
    // behaviour lets the strategy of getTaskDisplacementStrategy() build the name; without a strategy, or
    // when that declines, the name is that of the request.
    virtual void buildTaskName(const std::string& request, const basekit2::variant_bag_t& in,
                               std::string& taskName);

    // Does the request `name`. `in` is only read; the answer is added to `out`, which the caller owns and
    // which no other request uses meanwhile. `progress` may be null and is borrowed for the call.
    virtual basekit2::error_code_t handleRequest(const std::string& name, const basekit2::variant_bag_t& in,
                                                 basekit2::variant_bag_t& out,
                                                 relay2::IProgress* progress) = 0;

    // How this pane's tasks displace each other. The inherited behaviour answers the process's default
    // strategy, by which nothing displaces anything.
    [[nodiscard]] virtual std::shared_ptr<ITaskDisplacementStrategy> getTaskDisplacementStrategy();

    // The pane is being closed; running requests have ended. The inherited behaviour does nothing.
    virtual void close();

    virtual ~IRequestHandler();
};

}  // namespace panelcore_1
