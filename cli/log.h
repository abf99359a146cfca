// Where log messages go.
#pragma once

#include <string>

#include "host/error.h"

namespace tessera_cli {

// Configures logging: standard error as "LEVEL LOGGER - text" from INFO on, or what the log4cplus properties
// file `configFile` says; `level` (may be "") sets the root logger's level. The error names the file.
[[nodiscard]] tessera_host::Expected<void> configureLog(const std::string& configFile,
                                                        const std::string& level);

// Ends logging; to be called before main returns.
void closeLog();

}  // namespace tessera_cli
