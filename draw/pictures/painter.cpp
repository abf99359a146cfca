#include "draw/pictures/painter.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <numbers>
#include <span>
#include <utility>
#include <vector>

#include "draw/pictures/text_painter.h"
#include "draw/scene/layout_data.h"
#include "draw/scene/levels.h"
#include "draw/scene/shapes.h"

namespace tessera_draw {
namespace {

constexpr double outlineWidth = 2;  // of symbols

// The path of a box. Cairo joins the arcs by straight lines.
void roundedRect(cairo_t* cairo, const Rect& rect, double radius) {
    // A quarter of a turn, in radians.
    constexpr double right = std::numbers::pi / 2;
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, rect.right() - radius, rect.y + radius, radius, -right, 0);
    cairo_arc(cairo, rect.right() - radius, rect.bottom() - radius, radius, 0, right);
    cairo_arc(cairo, rect.x + radius, rect.bottom() - radius, radius, right, 2 * right);
    cairo_arc(cairo, rect.x + radius, rect.y + radius, radius, 2 * right, 3 * right);
    cairo_close_path(cairo);
}

void tracePath(cairo_t* cairo, const Outline& outline) {
    for (const OutlineStep& step : outline) {
        switch (step.kind) {
            case OutlineStep::Kind::move:
                cairo_move_to(cairo, step.end.x, step.end.y);
                break;
            case OutlineStep::Kind::line:
                cairo_line_to(cairo, step.end.x, step.end.y);
                break;
            case OutlineStep::Kind::curve:
                cairo_curve_to(cairo, step.control1.x, step.control1.y, step.control2.x, step.control2.y,
                               step.end.x, step.end.y);
                break;
            case OutlineStep::Kind::close:
                cairo_close_path(cairo);
                break;
        }
    }
}

// The boxes of groups, by the group around them. A group is not painted where one of them covers it: a thousand
// groups inside each other would be a thousand paintings of the whole picture.
class InnerBoxes {
  public:
    using Entry = std::pair<Index, Rect>;

    explicit InnerBoxes(const Scene& scene) {
        if (scene.layout == nullptr) return;
        const LayoutData& data = scene.layout->data();
        for (const auto& [node, depth] : data.containers)
            if (data.structure.nodes[node].group != nothing)
                m_entries.emplace_back(data.structure.nodes[node].group, data.boxes[node]);
        std::sort(m_entries.begin(), m_entries.end(),
                  [](const Entry& a, const Entry& b) { return a.first < b.first; });
    }

    [[nodiscard]] std::span<const Entry> of(const Element& element) const {
        if (element.kind != Element::Kind::group) return {};
        const auto [begin, end] =
            std::equal_range(m_entries.begin(), m_entries.end(), Entry{element.index, {}},
                             [](const Entry& a, const Entry& b) { return a.first < b.first; });
        return {begin, end};
    }

  private:
    std::vector<Entry> m_entries;
};

// Draws elements in the order of the scene: what comes later is on top.
class Painter {
  public:
    Painter(cairo_t* cairo, const Palette& palette, const Scene& scene, double scale)
        : m_cairo(cairo), m_palette(palette), m_innerBoxes(scene), m_text(cairo, palette, scale) {}

    void paint(const Scene& scene, const Element& element) {
        for (std::uint32_t i = 0; i < element.boxes.count; ++i)
            box(scene.boxes[element.boxes.first + i], m_innerBoxes.of(element));
        for (std::uint32_t i = 0; i < element.symbols.count; ++i)
            symbol(scene.symbols[element.symbols.first + i]);
        for (std::uint32_t i = 0; i < element.lines.count; ++i)
            line(scene.lines[element.lines.first + i], scene.widthOf(element.lines.first + i),
                 scene.isGone(element.lines.first + i));
        for (std::uint32_t i = 0; i < element.texts.count; ++i)
            m_text.paint(scene.texts[element.texts.first + i]);
    }

    void countTextsIn(const Rect& area) { m_text.countIn(area); }
    [[nodiscard]] const TextPainter& text() const noexcept { return m_text; }

  private:
    void fill(const Outline& outline, ColorRole color) {
        setColor(m_cairo, m_palette, color);
        tracePath(m_cairo, outline);
        cairo_fill(m_cairo);
    }

    void box(const BoxShape& box, std::span<const InnerBoxes::Entry> innerBoxes) {
        const BoxStyle& style = styleOf(box.role);
        roundedRect(m_cairo, box.rect, style.radius);
        // Each becomes a hole, because the fill rule is even-odd.
        for (const auto& [group, rect] : innerBoxes)
            cutOut(rect, style.radius + boxStrokeWidth);
        const bool isBadge = box.role == BoxRole::levelBadge;
        setColor(m_cairo, m_palette, isBadge ? box.level : style.fill);
        cairo_fill(m_cairo);
        if (style.stroke == ColorRole::none) return;
        roundedRect(m_cairo, box.rect, style.radius);
        // The border is a path of its own, without the holes.
        const bool hasLevel = !isBadge && box.level != ColorRole::none;
        setColor(m_cairo, m_palette, hasLevel ? box.level : style.stroke);
        cairo_set_line_width(m_cairo, hasLevel ? levelStrokeWidth : boxStrokeWidth);
        const std::array<double, 2> dashes = {dashLength, dashGap};
        cairo_set_dash(m_cairo, dashes.data(), style.isDashed ? 2 : 0, 0);
        cairo_stroke(m_cairo);
        cairo_set_dash(m_cairo, nullptr, 0, 0);  // for what is drawn next
        if (box.bar != ColorRole::none) fill(barOf(box.rect, style.radius), box.bar);
    }

    // Leaves the rectangle out of the path, but for its margin: corners are round and edges are smoothed.
    void cutOut(const Rect& rect, double margin) {
        const double width = rect.width - 2 * margin;
        const double height = rect.height - 2 * margin;
        if (width > 0 && height > 0)
            cairo_rectangle(m_cairo, rect.x + margin, rect.y + margin, width, height);
    }

    void symbol(const SymbolShape& symbol) {
        if (!isOutlined(symbol.look.symbol)) {
            fill(outlineOf(symbol), symbol.look.accent);
            return;
        }
        setColor(m_cairo, m_palette, symbol.look.accent);
        tracePath(m_cairo, outlineOf(symbol));
        cairo_set_line_width(m_cairo, outlineWidth);
        cairo_stroke(m_cairo);
    }

    void line(const LineShape& line, double width, bool isGone) {
        for (const auto& stretch : line.stretches) {
            cairo_move_to(m_cairo, stretch.start.x, stretch.start.y);
            for (const Segment& segment : stretch.segments) {
                if (segment.isCurve)
                    cairo_curve_to(m_cairo, segment.control1.x, segment.control1.y, segment.control2.x,
                                   segment.control2.y, segment.end.x, segment.end.y);
                else
                    cairo_line_to(m_cairo, segment.end.x, segment.end.y);
            }
        }
        setColor(m_cairo, m_palette, ColorRole::line);
        cairo_set_line_width(m_cairo, width);
        const std::array<double, 2> dashes = {goneDashLength, goneDashGap};
        cairo_set_dash(m_cairo, dashes.data(), isGone ? 2 : 0, 0);
        cairo_stroke(m_cairo);
        cairo_set_dash(m_cairo, nullptr, 0, 0);
        if (line.hasFromHead) fill(outlineOf(line.fromHead, width), ColorRole::line);
        if (line.hasToHead) fill(outlineOf(line.toHead, width), ColorRole::line);
    }

    cairo_t* m_cairo;
    const Palette& m_palette;
    const InnerBoxes m_innerBoxes;
    TextPainter m_text;
};

bool overlap(const Rect& a, const Rect& b) {
    return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

}  // namespace

void setColor(cairo_t* cairo, const Palette& palette, ColorRole color) {
    const Rgb& colour = palette[static_cast<std::size_t>(color)];
    cairo_set_source_rgb(cairo, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0);
}

bool paintScene(cairo_t* cairo, const Scene& scene, const PictureOptions& options, PictureResult& result,
                const ScenePart* part) {
    const bool isDark = options.theme == Theme::dark;
    const Palette palette = paletteOf(scene, isDark);
    setColor(cairo, palette, ColorRole::ground);
    // The ground covers everything: pictures are not transparent. Paper that is nearly white stays white.
    if (part == nullptr || isDark) cairo_paint(cairo);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    // For the holes of Painter::cutOut().
    cairo_set_fill_rule(cairo, CAIRO_FILL_RULE_EVEN_ODD);
    Painter painter(cairo, palette, scene, result.scale);
    if (part != nullptr) painter.countTextsIn(part->page.own);
    for (std::size_t i = 0; i < scene.elements.size(); ++i) {
        if (options.cancel.isCancelled()) return false;
        if (part != nullptr && !overlap(part->bounds[i], part->page.shown)) continue;
        painter.paint(scene, scene.elements[i]);
        // What is done later may change it.
        result.ranShort = result.ranShort || errno == ENOMEM;
    }
    result.missingCharacters += painter.text().missing();
    result.otherWidths += painter.text().otherWidths();
    return true;
}

}  // namespace tessera_draw
