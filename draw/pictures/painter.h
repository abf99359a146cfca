// Scenes on a cairo surface.
#pragma once

#include <cairo.h>

#include "draw/picture_writer.h"
#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

// Paints the whole scene with its background, in the scene's coordinates: the caller has scaled the surface,
// and says in `result` by how much. Sets what `result` says about texts and memory. Returns false when
// cancelled; the surface then holds a part of the scene. Errors of cairo stay in the context, where the caller
// checks them.
bool paintScene(cairo_t* cairo, const Scene& scene, const PictureOptions& options, PictureResult& result);

// Makes the palette's colour for this role the source of further painting.
void setColor(cairo_t* cairo, const Palette& palette, ColorRole color);

}  // namespace tessera_draw
