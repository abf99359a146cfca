// Scenes on a cairo surface.
#pragma once

#include <cairo.h>

#include <vector>

#include "draw/pages.h"
#include "draw/picture_writer.h"
#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

// What a sheet of paper shows of a scene.
struct ScenePart {
    PagePart page;
    const std::vector<Rect>& bounds;  // by element: what it covers; must live as long as this
};

// Paints the whole scene with its background, in the scene's coordinates: the caller has scaled the surface,
// and says in `result` by how much. Adds to what `result` says about texts and memory. Returns false when
// cancelled; the surface then holds a part of the scene. Errors of cairo stay in the context, where the caller
// checks them. With a `part`, paints its elements only, on white paper unless the theme is dark, and `result` counts
// the texts that are the part's own.
bool paintScene(cairo_t* cairo, const Scene& scene, const PictureOptions& options, PictureResult& result,
                const ScenePart* part = nullptr);

// Makes the palette's colour for this role the source of further painting.
void setColor(cairo_t* cairo, const Palette& palette, ColorRole color);

}  // namespace tessera_draw
