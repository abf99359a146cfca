// How a drawing is divided over sheets of paper.
#pragma once

#include <cstdint>

#include "draw/geometry.h"

namespace tessera_draw {

// `none`: one page as large as the drawing.
enum class Paper : std::uint8_t { none, a4, a3, letter };

// Lengths on paper are in points, 1/72 inch.
inline constexpr double pointsPerPixel = 0.75;  // at scale 1, 96 pixels to the inch
inline constexpr double paperMargin = 34;       // on each side of each page; marks and page numbers are there
inline constexpr double paperOverlap = 28;      // what two neighbours both show
// A drawing that does not fit on one page at this scale gets several. The smallest texts have 4.3 points then.
inline constexpr double minPaperScale = 0.6;
// A drawing that would need more at that scale is scaled down further.
inline constexpr std::uint32_t maxPages = 100;

// A part of the drawing that is on one page, in pixels of the drawing.
struct PagePart {
    Rect shown;  // what the page shows
    Rect own;    // the same up to the middle of each overlap: these cover the drawing without overlapping
};

// Pages in rows and columns, all of one size. The drawing begins at the upper left corner of the first one, or is in the
// middle where one page is wide or high enough.
struct PagePlan {
    Size drawing;      // pixels
    Size paper;        // points
    double scale = 1;  // at most 1
    std::uint32_t columns = 1;
    std::uint32_t rows = 1;

    [[nodiscard]] std::uint32_t count() const noexcept { return columns * rows; }
    // REQUIRES: column < columns, row < rows.
    [[nodiscard]] PagePart part(std::uint32_t column, std::uint32_t row) const noexcept;
};

// Plans the fewest pages, upright or on their side, and of these the largest scale. REQUIRES: `paper` is not `none`.
[[nodiscard]] PagePlan planPages(Size drawing, Paper paper) noexcept;

}  // namespace tessera_draw
