// Paints a scene on several sheets of paper.
#pragma once

#include <cairo.h>

#include "draw/pages.h"
#include "draw/picture_writer.h"
#include "draw/scene.h"

namespace tessera_draw {

// Paints all pages of the plan, row by row, and shows each. Several pages have marks where to cut them, so that they
// fit together, and their number below. The surface must have the size of the paper, in points. The rest is as
// of paintScene().
bool paintPages(cairo_t* cairo, const Scene& scene, const PictureOptions& options, const PagePlan& plan,
                PictureResult& result);

}  // namespace tessera_draw
