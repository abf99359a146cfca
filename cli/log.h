// Where log messages go.
#pragma once

#include <string>

namespace tessera_cli {

// Configures logging: standard error as "LEVEL LOGGER - text" from INFO on, or what the log4cplus properties
// file `configFile` says; `level` (may be "") sets the root logger's level. Answers what is wrong, or "".
[[nodiscard]] std::string configureLog(const std::string& configFile, const std::string& level);

// Ends logging; to be called before main returns.
void closeLog();

}  // namespace tessera_cli
