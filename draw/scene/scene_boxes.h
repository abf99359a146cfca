// Draws the contents of cards, labels and containers. The caller has begun the element; `rect` is the box's
// place in the drawing, and `size` the size that was computed for it. Texts that do not fit are shortened,
// and the tooltips hold them whole. `at` is the node; `places` has a place for its badge. The texts of `node` and `info` must outlive the scene.
#pragma once

#include "draw/scene/box_sizes.h"
#include "draw/scene/display_types.h"
#include "draw/scene/level_badge.h"
#include "draw/scene/scene_builder.h"

namespace tessera_draw {

// Draws the name, the accent, as many rows as fit, and the level.
void drawCard(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
              const Rect& rect, TypeLook look, Index at, const BadgePlaces& places);

// Draws the values of one place of a link, or a dash if it has none at the moment.
void drawLabel(SceneBuilder& builder, const Info& info, const BoxSize& size, const Rect& rect, Index at,
               const BadgePlaces& places);

// Draws the box of a group. `isInner` says whether it gets the second of the two alternating styles.
void drawContainer(SceneBuilder& builder, const Node& node, const Info& info, const Rect& rect, TypeLook look,
                   bool isInner);
// Draws the title of a group and the rows of `info` below it, as an element of its own that covers lines.
void drawHeader(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
                const Rect& rect, TypeLook look, bool isInner, Index at, const BadgePlaces& places);

}  // namespace tessera_draw
