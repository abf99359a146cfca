// How the tasks of a host's panes displace each other.
#pragma once

#include <memory>
#include <string>

#include "platform/basekit2/variant_bag.h"
#include "platform/export.h"

namespace panelcore_1 {

// Called by the host's scheduler before it starts a request's task, never by the diagram library, whose panes
// use the default strategy: the host may run all of their requests to the end. A task is known by the name
// that IRequestHandler::buildTaskName() gave it.
//
// Shared between panes. Any thread, possibly under the scheduler's locks: every member returns at once,
// blocks on nothing and sends no request.
class TESSERA_PLATFORM_EXPORT ITaskDisplacementStrategy {
  public:
    virtual ~ITaskDisplacementStrategy() = default;

    // Builds the task's name for a request and puts it into `taskName`. False, with `taskName` left alone,
    // when the strategy leaves the name to the handler. `in` is the bag of the request and is only read.
    [[nodiscard]] virtual bool buildTaskName(const std::string& request, const basekit2::variant_bag_t& in,
                                             std::string& taskName) const = 0;

    // Whether the task `taskName` is one of this strategy's, which built its name.
    [[nodiscard]] virtual bool isMine(const std::string& taskName) const = 0;
    // Whether no other task of the pane may run at the same time as `taskName`.
    [[nodiscard]] virtual bool isExclusive(const std::string& taskName) const = 0;
    // Whether the waiting or running task `taskName` gives way to the new task `newTaskName`. How it
    // does is the scheduler's: a running request ends early when its IProgress reports cancellation.
    [[nodiscard]] virtual bool isDisplacedBy(const std::string& taskName,
                                             const std::string& newTaskName) const = 0;
    // Whether the result of `taskName` is out of date when a filter changes.
    [[nodiscard]] virtual bool isDisplacedOnFilterChange(const std::string& taskName) const = 0;
    // Whether the result of `taskName` is out of date when a setting of the pane changes.
    [[nodiscard]] virtual bool isDisplacedOnKnobChange(const std::string& taskName) const = 0;

    // The process's default, made on first use and never null: declines to build names and returns false from
    // every other member. Any thread; the caller shares ownership.
    [[nodiscard]] static std::shared_ptr<ITaskDisplacementStrategy> getDefault();
};

}  // namespace panelcore_1
