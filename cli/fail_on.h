// --fail-on: levels of values as an exit status, for build servers.
#pragma once

#include "cli/options.h"
#include "host/document/viewpoint.h"
#include "host/meaning/described_values.h"

namespace tessera_cli {

// The error, of the kind usage, says that the document does not have the level of --fail-on, and which ones it has.
[[nodiscard]] tessera_host::Expected<void> checkFailOn(const Options& options,
                                                       const tessera_host::Viewpoint& viewpoint);

// Whether a value is at the level of --fail-on or at a worse one; prints one line about it then. Without the option,
// false. REQUIRES: checkFailOn() succeeded.
[[nodiscard]] bool failsOn(const Options& options, const tessera_host::Viewpoint& viewpoint,
                           const tessera_host::LevelSummary& summary);

}  // namespace tessera_cli
