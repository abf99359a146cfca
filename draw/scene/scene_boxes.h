// What stands in cards, labels, containers, and around the whole.
#pragma once

#include "draw/scene/box_sizes.h"
#include "draw/scene/display_types.h"
#include "draw/scene/scene_builder.h"

namespace tessera_draw {

// Name, accent and rows, as many as there is space for.
void drawCard(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
              const Rect& rect, TypeLook look);

// What one place of a link shows; a dash when that is nothing at the moment.
void drawLabel(SceneBuilder& builder, const Info& info, const BoxSize& size, const Rect& rect);

void drawContainer(SceneBuilder& builder, const Node& node, const Info& info, const Rect& rect, TypeLook look,
                   bool isInner);
// Title, and the rows of `info` below it.
void drawHeader(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
                const Rect& rect, TypeLook look, bool isInner);

}  // namespace tessera_draw
