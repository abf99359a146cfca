// Saved layers, by id, as layers of a placement's input, by index.
#pragma once

#include "draw/layout.h"
#include "draw/read/link_paths.h"
#include "draw/saved_layout.h"
#include "draw/scene/scene_input.h"

namespace tessera_draw {

// What the input has of a saved layout. n log n time.
[[nodiscard]] KeptLayers keptLayersOf(const SavedLayout& saved, const Diagram& diagram,
                                      const LinkPaths& linkPaths, const SceneInput& input);

// The opposite, for what placing the input has returned.
[[nodiscard]] SavedLayout savedLayoutOf(const KeptLayers& layers, Direction direction, const Diagram& diagram,
                                        const LinkPaths& linkPaths, const SceneInput& input);

}  // namespace tessera_draw
