#include "draw/pages.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessera_draw {
namespace {

Size sizeOf(Paper paper) noexcept {
    switch (paper) {
        case Paper::a3:
            return {841.89, 1190.55};
        case Paper::letter:
            return {612, 792};
        default:
            return {595.28, 841.89};
    }
}

// What `count` pages in a row show together, in points.
double shownBy(double count, double side) noexcept {
    return count * (side - 2 * paperMargin) - (count - 1) * paperOverlap;
}

// As a double, because a drawing may be so large that the number would be too.
double pagesFor(double length, double side) noexcept {
    return std::max(std::ceil((length - paperOverlap) / (side - 2 * paperMargin - paperOverlap)), 1.0);
}

PagePlan planOn(Size drawing, Size paper) noexcept {
    constexpr double step = 0.95;
    const Size full = {std::max(drawing.width, 1.0) * pointsPerPixel,
                       std::max(drawing.height, 1.0) * pointsPerPixel};
    double scale = minPaperScale;
    const auto columns = [&] { return pagesFor(full.width * scale, paper.width); };
    const auto rows = [&] { return pagesFor(full.height * scale, paper.height); };
    while (columns() * rows() > maxPages)
        scale *= step;
    PagePlan plan{drawing, paper, 1, static_cast<std::uint32_t>(columns()),
                  static_cast<std::uint32_t>(rows())};
    plan.scale = std::min({1.0, shownBy(plan.columns, paper.width) / full.width,
                           shownBy(plan.rows, paper.height) / full.height});
    return plan;
}

// One direction of a part: where it starts and how long it is, shown and own.
struct Stretch {
    double shown;
    double shownLength;
    double own;
    double ownLength;
};

// Over several pages, the drawing begins at the first one's margin; on one it is in the middle.
Stretch stretchOf(std::uint32_t at, std::uint32_t count, double side, double length, double pixel) noexcept {
    const double page = side - 2 * paperMargin;
    const double first = count == 1 ? (page - length * pixel) / 2 : 0;
    const double start = at * (page - paperOverlap) - first;  // points, from the drawing's edge
    const double before = at == 0 ? 0 : paperOverlap / 2;
    const double after = at + 1 == count ? 0 : paperOverlap / 2;
    return {start / pixel, page / pixel, (start + before) / pixel, (page - before - after) / pixel};
}

}  // namespace

PagePart PagePlan::part(std::uint32_t column, std::uint32_t row) const noexcept {
    const double pixel = pointsPerPixel * scale;
    const Stretch x = stretchOf(column, columns, paper.width, drawing.width, pixel);
    const Stretch y = stretchOf(row, rows, paper.height, drawing.height, pixel);
    return {{x.shown, y.shown, x.shownLength, y.shownLength}, {x.own, y.own, x.ownLength, y.ownLength}};
}

PagePlan planPages(Size drawing, Paper paper) noexcept {
    Size size = sizeOf(paper);
    const PagePlan upright = planOn(drawing, size);
    std::swap(size.width, size.height);
    const PagePlan onSide = planOn(drawing, size);
    if (upright.count() != onSide.count()) return upright.count() < onSide.count() ? upright : onSide;
    return upright.scale >= onSide.scale ? upright : onSide;
}

}  // namespace tessera_draw
