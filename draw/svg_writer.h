// Scenes as SVG.
#pragma once

#include <string>

#include "draw/output.h"
#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

struct SvgOptions {
    Theme theme = Theme::automatic;
    // Begins every id in the drawing, for pages that hold several. Letters and digits only. "" for one that
    // is made from what the drawing shows, so that different drawings have different ids.
    std::string idPrefix;
};

// Writes the scene as one SVG document that needs nothing beside it. Holds only what SVG 1.1 and 2 have in
// common, no script, no link, and no text that is not escaped. Every element (`<g>`) has a title, which
// readers show and say, and attributes for scripts: data-kind ("node", "group", "label", "line"), data-id,
// and data-from and data-to for lines, data-link and data-place ("from", "center", "to") for labels. The same
// scene gives the same bytes.
//
// False when `output` did not take everything.
bool writeSvg(const Scene& scene, const SvgOptions& options, Output& output);

}  // namespace tessera_draw
