// Scenes as SVG, for browsers, and for programs that include SVG.
#pragma once

#include <string>

#include "draw/output.h"
#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

struct SvgOptions {
    // `automatic` writes both colour sets; the reader's screen setting chooses one. Paper gets the light one.
    Theme theme = Theme::automatic;
    // Prefix of every id in the drawing, so that one page can hold several drawings. Letters and digits only,
    // beginning with a letter: it is written as it is. "" for a prefix made from the drawing's content.
    std::string idPrefix;
};

// Writes the scene as one self-contained SVG document in UTF-8. It uses only what SVG 1.1 and 2 have in
// common, has no scripts and no links, and escapes all texts: names and values may hold any bytes.
//
// Each element of the scene is a `<g>`. Its title is the tooltip, also for screen readers.
// Attributes for scripts: data-kind ("node", "group", "label", "line", ...) and data-id; for lines
// data-from and data-to; for labels data-link and data-place ("from", "center", "to"). The same
// scene and options give the same bytes.
//
// Any thread; the scene is only read. Returns false when `output` did not take everything. What it has taken
// is then not a whole document.
bool writeSvg(const Scene& scene, const SvgOptions& options, Output& output);

}  // namespace tessera_draw
