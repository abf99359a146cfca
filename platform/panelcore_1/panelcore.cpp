#include "platform/panelcore_1/request_handler.h"
#include "platform/panelcore_1/task_displacement_strategy.h"

namespace panelcore_1 {
namespace {

// No request displaces another.
class default_strategy_t final : public ITaskDisplacementStrategy {
  public:
    bool buildTaskName(const std::string&, const basekit2::variant_bag_t&, std::string&) const override {
        return false;
    }
    bool isMine(const std::string&) const override { return false; }
    bool isExclusive(const std::string&) const override { return false; }
    bool isDisplacedBy(const std::string&, const std::string&) const override { return false; }
    bool isDisplacedOnFilterChange(const std::string&) const override { return false; }
    bool isDisplacedOnKnobChange(const std::string&) const override { return false; }
};

}  // namespace

std::shared_ptr<ITaskDisplacementStrategy> ITaskDisplacementStrategy::getDefault() {
    static const std::shared_ptr<ITaskDisplacementStrategy> strategy = std::make_shared<default_strategy_t>();
    return strategy;
}

void IRequestHandler::buildTaskName(const std::string& request, const basekit2::variant_bag_t& in,
                                    std::string& taskName) {
    const auto strategy = getTaskDisplacementStrategy();
    if (!strategy || !strategy->buildTaskName(request, in, taskName)) taskName = request;
}

std::shared_ptr<ITaskDisplacementStrategy> IRequestHandler::getTaskDisplacementStrategy() {
    return ITaskDisplacementStrategy::getDefault();
}

void IRequestHandler::close() {}

IRequestHandler::~IRequestHandler() = default;

}  // namespace panelcore_1
