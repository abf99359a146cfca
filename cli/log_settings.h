// The text of a log configuration.
#pragma once

#include <string>

#include "host/error.h"
#include "support/cancel_token.h"

namespace tessera_cli {

// Reads the log4cplus properties file `file` and puts the text of each file that it includes in place of the
// line "include NAME"; NAME is relative to the working folder. What the logging library would not survive is
// refused: files that include each other, too many of them, and a number of threads that cannot be started.
// The text of the error begins with the name of a file.
[[nodiscard]] tessera_host::Expected<std::string> readLogSettings(const std::string& file,
                                                                  const tessera_support::CancelToken& token);

}  // namespace tessera_cli
