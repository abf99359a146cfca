#include "draw/pictures/page_painter.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "draw/pictures/painter.h"
#include "draw/pictures/text_painter.h"
#include "draw/scene/shapes.h"
#include "draw/text_width.h"

namespace tessera_draw {
namespace {

constexpr double markGap = 4;  // points, from the drawing to a mark
constexpr double markLength = 14;
constexpr double markWidth = 0.5;
constexpr double numberLine = 14;  // from the lower edge to the base line of the number

// Grows to include what is added.
class Bounds {
  public:
    void add(const Rect& rect) {
        add(Point{rect.x, rect.y});
        add(Point{rect.right(), rect.bottom()});
    }
    void add(Point point) {
        m_low = {std::min(m_low.x, point.x), std::min(m_low.y, point.y)};
        m_high = {std::max(m_high.x, point.x), std::max(m_high.y, point.y)};
    }
    [[nodiscard]] Rect rect() const { return {m_low.x, m_low.y, m_high.x - m_low.x, m_high.y - m_low.y}; }

  private:
    Point m_low{1e9, 1e9};
    Point m_high{-1e9, -1e9};
};

void addLine(Bounds& bounds, const LineShape& line) {
    // Curves stay between their control points.
    for (const auto& stretch : line.stretches) {
        bounds.add(stretch.start);
        for (const Segment& segment : stretch.segments) {
            bounds.add(segment.end);
            if (!segment.isCurve) continue;
            bounds.add(segment.control1);
            bounds.add(segment.control2);
        }
    }
    if (line.hasFromHead) bounds.add(line.fromHead.tip);
    if (line.hasToHead) bounds.add(line.toHead.tip);
}

// What each element covers, so that a page paints only its own. Strokes, halos and heads reach a little farther.
std::vector<Rect> boundsOf(const Scene& scene) {
    constexpr double reach = 12;
    std::vector<Rect> all;
    all.reserve(scene.elements.size());
    for (const Element& element : scene.elements) {
        Bounds bounds;
        for (std::uint32_t i = 0; i < element.boxes.count; ++i)
            bounds.add(scene.boxes[element.boxes.first + i].rect);
        for (std::uint32_t i = 0; i < element.symbols.count; ++i)
            bounds.add(scene.symbols[element.symbols.first + i].center);
        for (std::uint32_t i = 0; i < element.lines.count; ++i)
            addLine(bounds, scene.lines[element.lines.first + i]);
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            const TextShape& text = scene.texts[element.texts.first + i];
            const double size = styleOf(text.role).size;
            bounds.add(Rect{leftOf(text), text.at.y - size, text.maxWidth, 1.5 * size});
        }
        const Rect rect = bounds.rect();
        all.push_back({rect.x - reach, rect.y - reach, rect.width + 2 * reach, rect.height + 2 * reach});
    }
    return all;
}

// A short line in the margin, from the drawing's edge outwards.
void mark(cairo_t* cairo, Point from, double dx, double dy) {
    cairo_move_to(cairo, from.x + dx * markGap, from.y + dy * markGap);
    cairo_line_to(cairo, from.x + dx * (markGap + markLength), from.y + dy * (markGap + markLength));
}

// Where neighbours meet: at the ends of the lines along which to cut.
void paintMarks(cairo_t* cairo, const PagePlan& plan, std::uint32_t column, std::uint32_t row) {
    const double left = paperMargin;
    const double top = paperMargin;
    const double right = plan.paper.width - paperMargin;
    const double bottom = plan.paper.height - paperMargin;
    const auto upright = [&](double x) {
        mark(cairo, {x, top}, 0, -1);
        mark(cairo, {x, bottom}, 0, 1);
    };
    const auto level = [&](double y) {
        mark(cairo, {left, y}, -1, 0);
        mark(cairo, {right, y}, 1, 0);
    };
    if (column > 0) upright(left + paperOverlap / 2);
    if (column + 1 < plan.columns) upright(right - paperOverlap / 2);
    if (row > 0) level(top + paperOverlap / 2);
    if (row + 1 < plan.rows) level(bottom - paperOverlap / 2);
    cairo_set_source_rgb(cairo, 0, 0, 0);
    cairo_set_line_width(cairo, markWidth);
    cairo_stroke(cairo);
}

void paintNumber(cairo_t* cairo, const PagePlan& plan, std::uint32_t column, std::uint32_t row) {
    const std::string number = fmt::format("{} of {} (row {}, column {})", row * plan.columns + column + 1,
                                           plan.count(), row + 1, column + 1);
    const TextStyle& style = styleOf(TextRole::legend);
    const double width = measureText(number, style.size, style.weight).width;
    const double most = plan.paper.width / pointsPerPixel;
    cairo_save(cairo);
    cairo_scale(cairo, pointsPerPixel, pointsPerPixel);
    // On white paper, whatever the theme of the drawing.
    TextPainter(cairo, lightPalette(), 1)
        .paint({{(most - width) / 2, (plan.paper.height - numberLine) / pointsPerPixel},
                TextRole::legend,
                number,
                false,
                width,
                most,
                true,
                ColorRole::none});
    cairo_restore(cairo);
}

bool paintPart(cairo_t* cairo, const Scene& scene, const PictureOptions& options, const PagePlan& plan,
               const ScenePart& part, PictureResult& result) {
    cairo_save(cairo);
    cairo_rectangle(cairo, paperMargin, paperMargin, plan.paper.width - 2 * paperMargin,
                    plan.paper.height - 2 * paperMargin);
    cairo_clip(cairo);
    cairo_translate(cairo, paperMargin, paperMargin);
    cairo_scale(cairo, pointsPerPixel * plan.scale, pointsPerPixel * plan.scale);
    cairo_translate(cairo, -part.page.shown.x, -part.page.shown.y);
    const bool isPainted = paintScene(cairo, scene, options, result, &part);
    cairo_restore(cairo);
    return isPainted;
}

}  // namespace

bool paintPages(cairo_t* cairo, const Scene& scene, const PictureOptions& options, const PagePlan& plan,
                PictureResult& result) {
    const std::vector<Rect> bounds = boundsOf(scene);
    for (std::uint32_t row = 0; row < plan.rows; ++row)
        for (std::uint32_t column = 0; column < plan.columns; ++column) {
            const ScenePart part{plan.part(column, row), bounds};
            if (!paintPart(cairo, scene, options, plan, part, result)) return false;
            if (plan.count() > 1) {
                paintMarks(cairo, plan, column, row);
                paintNumber(cairo, plan, column, row);
            }
            cairo_show_page(cairo);
        }
    return true;
}

}  // namespace tessera_draw
