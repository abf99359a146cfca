#include "platform/diaglog_1/log.h"

namespace diaglog_1::log {

log4cplus::Logger configureComponentLogger(const std::string& component) {
    return log4cplus::Logger::getInstance(component);
}

}  // namespace diaglog_1::log
