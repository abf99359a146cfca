// Positions and sizes of everything in a drawing, independent of the values that it shows. This is the first
// of two steps: layOut() here, then fill() in draw/scene.h, which adds the values of the moment.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "draw/geometry.h"
#include "draw/reservation.h"
#include "platform/basekit2/variant_bag.h"
#include "support/cancel_token.h"

namespace tessera_draw {

// Where links lead: to the right, or downwards.
enum class Direction : std::uint8_t {
    leftToRight,
    topToBottom,
    // To the right; downwards if the drawing is large and too wide for `fit`, and fits clearly better so. Drawings of
    // more than 2,000 boxes always go to the right, because they are not seen as a whole.
    automatic,
};

// Where the layers of a group come from, and of the top level.
enum class LayerSource : std::uint8_t {
    links,  // the levels of the diagram, where all links of the group lead to higher ones; else the links
    levels  // the levels of the diagram, whatever they are
};

struct SavedLayout;  // draw/saved_layout.h

struct LayoutOptions {
    Direction direction = Direction::leftToRight;
    // Space to reserve for values. Not owned, read during the call only. Null: every box reserves a usual space.
    const Reservation* reservation = nullptr;
    // A bag of the same diagram whose values have to fit. Not owned, read during the call only. Null: none.
    const basekit2::variant_bag_t* firstValues = nullptr;
    // Checked between steps; see layOut(). The default is never cancelled.
    tessera_support::CancelToken cancel{};
    LayerSource layers = LayerSource::links;
    // For Direction::automatic and for folding: the shape of the space that the drawing is for, in any unit.
    // REQUIRES: both are > 0.
    Size fit = {16, 10};
    // Whether the layers of a drawing that is wider than 4:1, or higher than 1:3, go on in further rows.
    bool isFolded = true;
    // An earlier layout of the diagram: what it knows keeps its layers, its order and its places as far as possible, and
    // its direction replaces `direction`. Not owned, read during the call only. Null: none.
    const SavedLayout* kept = nullptr;
    bool isSaved = false;  // whether writeLayout() can write the layout
};

struct LayoutData;  // draw/scene/layout_data.h

// Boxes, lines, sizes and ids of one diagram. Owns copies of all its texts: the bag and the
// reservation may be destroyed after layOut(). Immutable, so any number of threads may read it,
// and fill() it, at the same time.
class Layout {
  public:
    // For layOut(), which fills the data. REQUIRES: data != nullptr.
    explicit Layout(std::unique_ptr<const LayoutData> data);
    ~Layout();
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    // Size of the drawing in pixels: heading, content and margins, without the legend below the content.
    [[nodiscard]] Size size() const noexcept;
    // The box of the node, label or group with this id, in the drawing's coordinates. Of several with one id,
    // the last. nullopt for an unknown id, and for what is not drawn as a box. Linear time.
    [[nodiscard]] std::optional<Rect> boxOf(std::string_view nodeId) const;
    // Number of boxes: cards, labels and containers.
    [[nodiscard]] std::size_t boxCount() const noexcept;
    // Number of lines: one for each link whose two ends have boxes.
    [[nodiscard]] std::size_t lineCount() const noexcept;

    // For the steps of drawing. Valid as long as the layout.
    [[nodiscard]] const LayoutData& data() const noexcept { return *m_data; }

  private:
    std::unique_ptr<const LayoutData> m_data;
};

// Scenes share ownership of their layout.
using LayoutPointer = std::shared_ptr<const Layout>;

// Lays out the structure of the diagram in `bag`: names, types, levels and links, but no values.
// Accepts any bag: what is missing or of another type counts as empty, and an empty diagram has a
// layout without boxes. The same input gives the same layout. Any thread, as long as no other thread
// changes the bags or the reservation.
//
// Takes n log n time, where n counts nodes and links; a few times that where both directions, or several widths of rows,
// are tried.
//
// Returns null when `options.cancel` was cancelled before all boxes had their
// places. There are no other errors.
[[nodiscard]] LayoutPointer layOut(const basekit2::variant_bag_t& bag, const LayoutOptions& options);

}  // namespace tessera_draw
