// Scenes on a cairo surface.
#pragma once

#include <cairo.h>

#include "draw/picture_writer.h"
#include "draw/scene.h"
#include "draw/theme.h"

namespace tessera_draw {

// Paints the whole scene, its ground included, in the scene's own coordinates, and counts the characters that
// no font has in `missing`. False when it was stopped.
bool paintScene(cairo_t* cairo, const Scene& scene, const PictureOptions& options, std::size_t& missing);

void setColor(cairo_t* cairo, const Palette& palette, ColorRole color);

}  // namespace tessera_draw
