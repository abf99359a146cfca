// Which options of pictures go with which format, and with each other.
#pragma once

#include "cli/options.h"

namespace tessera_cli {

// The error has the kind usage. `hasScale` and `hasFit`: whether the command line has these options.
[[nodiscard]] tessera_host::Expected<void> checkPictureOptions(const Options& options, bool hasScale,
                                                               bool hasFit);

// Two results give a picture or a table. The error has the kind usage.
[[nodiscard]] tessera_host::Expected<void> checkAgainst(const Options& options);

}  // namespace tessera_cli
