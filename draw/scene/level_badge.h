// The badge on the border of a box whose values are at a level. Lengths are pixels.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "draw/scene/levels.h"
#include "draw/scene/scene_builder.h"

namespace tessera_draw {

struct LayoutData;

// Where lines begin and end at each box, which badges must not cover. Made once for a scene; empty where no value has a level.
// The layout's data must outlive it.
class BadgePlaces {
  public:
    BadgePlaces(const LayoutData& data, bool hasLevels);

    // A place for a badge of this size on the border of the box of a node: at its upper edge where links lead to
    // the right, at its lower one where they lead downwards; at another end or edge if a line begins or ends there. At
    // the upper one of labels: there is more room above their texts than below.
    [[nodiscard]] Rect find(Index node, const Rect& box, Size badge) const;

  private:
    using Tip = std::pair<Index, Point>;  // by node

    const LayoutData& m_data;
    std::vector<Tip> m_tips;
};

// Draws the sign and the name of the level; nothing for null. The box is that of the open element, which takes the
// level.
void drawLevelBadge(SceneBuilder& builder, const LevelLook* level, Index node, const Rect& box,
                    const BadgePlaces& places);

}  // namespace tessera_draw
