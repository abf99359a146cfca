// Panes for the benchmarks.
#pragma once

#include <memory>
#include <string>

#include "host/pane/pane.h"

namespace tessera_bench {

// Reads the document, opens the database and makes a pane on them with the document's filters. Ends the
// program when that fails.
[[nodiscard]] std::unique_ptr<tessera_host::Pane> openPane(const std::string& document,
                                                           const std::string& database,
                                                           const tessera_host::PaneOptions& options = {});

}  // namespace tessera_bench
