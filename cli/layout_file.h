// The layout of a picture as a file: --save-layout and --keep.
#pragma once

#include <optional>

#include "cli/options.h"
#include "cli/output_file.h"
#include "draw/saved_layout.h"
#include "draw/scene.h"

namespace tessera_cli {

// The layout that --keep names, without places that no drawing of it has; none without the option. Error and message
// name the file.
[[nodiscard]] tessera_host::Expected<std::optional<tessera_draw::SavedLayout>> readKeptLayout(
    const Options& options);

// Says so when nothing of a layout that was kept is in the scene.
void reportForeignLayout(const Options& options, const tessera_draw::SavedLayout& layout,
                         const tessera_draw::Scene& scene);

// Writes the layout to the sink of `file`, whose commit() reports what failed.
void saveLayout(const tessera_draw::Layout& layout, OutputFile& file);

}  // namespace tessera_cli
