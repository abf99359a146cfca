// Where everything in a drawing is, whatever values it shows: the first of the two steps to a picture.
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

enum class Direction : std::uint8_t { leftToRight, topToBottom };

struct LayoutOptions {
    Direction direction = Direction::leftToRight;
    // Space for values, read during the call only. Null: every box reserves what is usual.
    const Reservation* reservation = nullptr;
    tessera_support::CancelToken cancel = {};
};

struct LayoutData;  // draw/scene/layout_data.h

// Boxes, lines, sizes and ids of one diagram. Owns all it needs: bag and reservation may go. Never changes, so
// that any number of threads may read it, and fill() it, at once.
class Layout {
  public:
    explicit Layout(std::unique_ptr<const LayoutData> data);
    ~Layout();
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    // Without the legend below the content.
    [[nodiscard]] Size size() const noexcept;
    // The box of the node or group with this id, in the drawing's coordinates; none when it has none.
    [[nodiscard]] std::optional<Rect> boxOf(std::string_view nodeId) const;
    [[nodiscard]] std::size_t boxCount() const noexcept;
    [[nodiscard]] std::size_t lineCount() const noexcept;

    [[nodiscard]] const LayoutData& data() const noexcept { return *m_data; }

  private:
    std::unique_ptr<const LayoutData> m_data;
};

using LayoutPointer = std::shared_ptr<const Layout>;

// Lays out the structure of the diagram in `bag`: names, types, levels and links, but no values. Accepts any
// bag. The same input gives the same layout. Null once `options.cancel` is cancelled.
[[nodiscard]] LayoutPointer layOut(const basekit2::variant_bag_t& bag, const LayoutOptions& options);

}  // namespace tessera_draw
