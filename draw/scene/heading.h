// What stands around the content of a drawing.
#pragma once

#include "draw/scene/display_types.h"
#include "draw/scene/scene_builder.h"

namespace tessera_draw {

// The diagram's name, or its id where it has none.
[[nodiscard]] std::string_view titleOf(const Diagram& diagram);

// With space for the badge of any usual display mode, so that a change of mode moves nothing.
[[nodiscard]] double headingWidth(const Diagram& diagram);

// The title, and the display mode as a badge on the right, in a drawing of that width.
void drawHeading(SceneBuilder& builder, const Diagram& diagram, std::string_view mode, double width);

// The display types and their symbols, in as many lines as they need. Returns its height.
double drawLegend(SceneBuilder& builder, const DisplayTypes& types, double top, double width);

// The note in a drawing without content.
void drawNothing(SceneBuilder& builder, const Rect& rect);

}  // namespace tessera_draw
