// The layers of a layout in a file, so that a diagram that has changed a little is drawn almost as before.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "draw/layout.h"
#include "draw/output.h"

namespace tessera_draw {

// Of nodes, labels and groups, and of links: the number among those with the same id, from 0.
struct SavedId {
    std::string id;
    std::uint32_t copy = 0;
};

// Either a box or a point of a link's line; see LayerPoint in draw/placement/kept_layers.h.
struct SavedPoint {
    SavedId id;
    bool isLink = false;
    std::uint32_t part = 0;
    double at = 0;
    double size = 0;
};

struct SavedLayer {
    std::vector<SavedPoint> points;
    bool isRowEnd = false;
};

struct SavedGroup {
    SavedId id;
    bool isTop = false;  // the drawing itself, which has no id
    double at = 0;       // where its contents begin
    std::vector<SavedLayer> layers;
};

struct SavedLayout {
    Direction direction = Direction::leftToRight;  // never automatic
    std::vector<SavedGroup> groups;
};

// Writes the layers as one JSON object; docs/drawing.md describes it. Lengths are pixels, and read back equal. The same
// layout gives the same bytes. Returns false when `output` did not take everything. REQUIRES: the options of the layout
// had isSaved.
[[nodiscard]] bool writeLayout(const Layout& layout, Output& output);

// Reads what writeLayout() wrote, and ignores members that it does not know. Returns whether it could; if not, `error`
// says for people what is wrong and where. Never fails in another way, whatever the text is: it may be foreign or hostile.
[[nodiscard]] bool readLayout(std::string_view text, SavedLayout& layout, std::string& error);

// Removes places that are farther away than a drawing with as many nodes and links is large, and returns how many. A
// drawing that kept them would be empty for the most part, and everything in it too small to see.
std::size_t removeFarPlaces(SavedLayout& layout);

}  // namespace tessera_draw
