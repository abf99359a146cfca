// How the tasks of a host's panes displace each other.
#pragma once

#include <memory>
#include <string>

#include "platform/basekit2/variant_bag.h"
#include "platform/export.h"

namespace panelcore_1 {

// Asked by the host's scheduler before it starts a request's task. Any thread.
class TESSERA_PLATFORM_EXPORT ITaskDisplacementStrategy {
  public:
    virtual ~ITaskDisplacementStrategy() = default;

    // Builds the task's name for a request; false when the strategy leaves that to the handler.
    [[nodiscard]] virtual bool buildTaskName(const std::string& request, const basekit2::variant_bag_t& in,
                                             std::string& taskName) const = 0;

    // Whether the task `taskName` is one of this strategy's.
    [[nodiscard]] virtual bool isMine(const std::string& taskName) const = 0;
    // Whether no other task may run beside `taskName`.
    [[nodiscard]] virtual bool isExclusive(const std::string& taskName) const = 0;
    // Whether the waiting or running task `taskName` gives way to the new task `newTaskName`.
    [[nodiscard]] virtual bool isDisplacedBy(const std::string& taskName,
                                             const std::string& newTaskName) const = 0;
    // Whether `taskName` is out of date when a filter changes.
    [[nodiscard]] virtual bool isDisplacedOnFilterChange(const std::string& taskName) const = 0;
    // Whether `taskName` is out of date when a setting of the pane changes.
    [[nodiscard]] virtual bool isDisplacedOnKnobChange(const std::string& taskName) const = 0;

    // The process's default, made on first use: declines to build names and answers false to every question.
    [[nodiscard]] static std::shared_ptr<ITaskDisplacementStrategy> getDefault();
};

}  // namespace panelcore_1
