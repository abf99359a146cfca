// Configuration of component loggers.
#pragma once

#include <log4cplus/logger.h>

#include <string>

#include "platform/export.h"

namespace diaglog_1::log {

// Makes the logger of a component known to the logging system and answers it. Called by every source unit
// while the library is loaded, so it adds no appender and sets no level: where messages go, and which, is the
// host's business. Any thread; cheap when called again.
[[nodiscard]] TESSERA_PLATFORM_EXPORT log4cplus::Logger configureComponentLogger(
    const std::string& component);

}  // namespace diaglog_1::log
