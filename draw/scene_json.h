// Scenes as JSON, for pages and programs that draw scenes themselves or compare them.
#pragma once

#include "draw/output.h"
#include "draw/scene.h"

namespace tessera_draw {

// Writes the scene as one JSON object in UTF-8; docs/drawing.md describes its members. The object holds
// everything that the picture formats draw, and for each row the element that it belongs to. Lengths are
// pixels of the scene. The same scene gives the same bytes. Invalid UTF-8 in texts is written as U+FFFD.
//
// Writes in blocks, so memory does not grow with the scene. Any thread; the scene is only read.
//
// Returns false when `output` did not take everything. What it has taken is then not valid JSON.
[[nodiscard]] bool writeSceneJson(const Scene& scene, Output& output);

}  // namespace tessera_draw
