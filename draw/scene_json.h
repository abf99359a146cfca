// Scenes as JSON, for pages and programs that draw or compare them.
#pragma once

#include "draw/output.h"
#include "draw/scene.h"

namespace tessera_draw {

// Writes the scene as one JSON object in UTF-8; docs/drawing.md describes its members. Holds all that the
// picture formats draw, and of each row what it belongs to. The same scene gives the same bytes; bytes of a
// text that are not UTF-8 are written as U+FFFD.
//
// False when `output` did not take everything.
[[nodiscard]] bool writeSceneJson(const Scene& scene, Output& output);

}  // namespace tessera_draw
