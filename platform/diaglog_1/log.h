// Configuration of component loggers.
#pragma once

#include <log4cplus/logger.h>

#include <string>

#include "platform/export.h"

namespace diaglog_1::log {

// Returns the logger called `component` of the host's logging library and makes it known there if it is new.
// The diagram library logs everything to the component "tessera".
// - Called by every source unit during its static initialisation, that is, while the library is loaded and
//   possibly before the host has configured logging. So it adds no appender and sets no level: where messages
//   go, and from which level on, is the host's decision, which it may make earlier or later.
// - Any thread; a repeated call is a look-up. The returned handle is reference-counted and may be kept for
//   the life of the process.
[[nodiscard]] TESSERA_PLATFORM_EXPORT log4cplus::Logger configureComponentLogger(
    const std::string& component);

}  // namespace diaglog_1::log
