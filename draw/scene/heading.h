// The parts around the content of a drawing: heading, legend, and the note of an empty drawing. Each draw
// function opens a new element of the scene. Lengths are pixels.
#pragma once

#include <string>

#include "draw/read/meaning.h"
#include "draw/scene/display_types.h"
#include "draw/scene/scene_builder.h"

namespace tessera_draw {

// The diagram's name, or its id if the name is empty; a view into the diagram's texts.
[[nodiscard]] std::string_view titleOf(const Diagram& diagram);

// The width of the badge that shows the display mode: enough for every mode, so that a change of mode moves
// nothing. `modeWidth` is Reservation::modeWidth().
[[nodiscard]] double badgeWidth(double modeWidth);

// The width that the heading needs with such a badge, without the drawing's margins.
[[nodiscard]] double headingWidth(const Diagram& diagram, double badge);

// Draws the title, and the display mode as a badge on the right. `badge` is the badge's width, `width` that of
// the whole drawing. No badge for an empty `mode`. The texts of diagram and mode must outlive the scene. Returns the room
// between the two.
Rect drawHeading(SceneBuilder& builder, const Diagram& diagram, std::string_view mode, double badge,
                 double width);

// Adds to the heading how many values are at which level, and the name of the place with the worst one, "" for
// none; beside another result how values differ instead. Nothing when the scene has neither. REQUIRES:
// drawHeading() has opened the element.
void drawSummary(SceneBuilder& builder, const Meaning& meaning, const std::string& worstPlace, double width);

// Draws the display types and their symbols into the heading where all of them have room there and nothing else needs an
// explanation. Else draws below `top`, in as many lines as they need, the types, then the levels and their signs, then the
// widths of lines. `room` is what drawHeading() returned. Beyond 24 types the rest is counted ("+3 more"). Returns the height of what is below, 0 for nothing.
double drawLegend(SceneBuilder& builder, const DisplayTypes& types, const Meaning& meaning, const Rect& room,
                  double top, double width);

// Draws the note of a drawing without content into `rect`.
void drawNothing(SceneBuilder& builder, const Rect& rect);

}  // namespace tessera_draw
