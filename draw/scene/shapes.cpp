#include "draw/scene/shapes.h"

#include <cmath>

#include "draw/scene/box_sizes.h"
#include "draw/scene/scene_lines.h"

namespace tessera_draw {
namespace {

using Kind = OutlineStep::Kind;

// How far the control points of a quarter of a circle are from its ends, for a radius of 1.
constexpr double quarter = 0.5523;

OutlineStep move(double x, double y) {
    return {Kind::move, {x, y}, {}, {}};
}

OutlineStep line(double x, double y) {
    return {Kind::line, {x, y}, {}, {}};
}

constexpr OutlineStep closed = {Kind::close, {}, {}, {}};

Outline polygon(std::initializer_list<Point> points) {
    Outline outline;
    for (const Point& point : points)
        outline.push_back({outline.empty() ? Kind::move : Kind::line, point, {}, {}});
    outline.push_back(closed);
    return outline;
}

// Four quarters, beginning at the left.
Outline circle(Point c, double r) {
    const double k = r * quarter;
    return {move(c.x - r, c.y),
            {Kind::curve, {c.x, c.y - r}, {c.x - r, c.y - k}, {c.x - k, c.y - r}},
            {Kind::curve, {c.x + r, c.y}, {c.x + k, c.y - r}, {c.x + r, c.y - k}},
            {Kind::curve, {c.x, c.y + r}, {c.x + r, c.y + k}, {c.x + k, c.y + r}},
            {Kind::curve, {c.x - r, c.y}, {c.x - k, c.y + r}, {c.x - r, c.y + k}},
            closed};
}

}  // namespace

Outline barOf(const Rect& rect, double radius) {
    // The bar's right edge meets the rounded corner this far from the top.
    const double inset = radius - std::sqrt(radius * radius - (radius - barWidth) * (radius - barWidth));
    const double x = rect.x;
    const double right = x + barWidth;
    const double top = rect.y;
    const double bottom = rect.bottom();
    const double lift = (radius - inset) * 0.5;
    return {move(right, top + inset),
            {Kind::curve, {x, top + radius}, {x + barWidth * 0.4, top + inset + 1}, {x, top + radius - lift}},
            line(x, bottom - radius),
            {Kind::curve,
             {right, bottom - inset},
             {x, bottom - radius + lift},
             {x + barWidth * 0.4, bottom - inset - 1}},
            closed};
}

bool isOutlined(Symbol symbol) noexcept {
    return symbol == Symbol::ring || symbol == Symbol::cross;
}

Outline outlineOf(const SymbolShape& symbol) {
    const Point c = symbol.center;
    const double r = symbol.size / 2;
    switch (symbol.look.symbol) {
        case Symbol::none:
            return {};
        case Symbol::disc:
            return circle(c, r);
        case Symbol::ring:
            return circle(c, r - 1);
        // The factors make all symbols look equally large.
        case Symbol::square: {
            const double s = r * 0.9;
            return polygon({{c.x - s, c.y - s}, {c.x + s, c.y - s}, {c.x + s, c.y + s}, {c.x - s, c.y + s}});
        }
        case Symbol::diamond: {
            const double s = r * 1.15;
            return polygon({{c.x - s, c.y}, {c.x, c.y - s}, {c.x + s, c.y}, {c.x, c.y + s}});
        }
        case Symbol::triangle:
            return polygon({{c.x - r, c.y + r * 0.85}, {c.x, c.y - r * 0.95}, {c.x + r, c.y + r * 0.85}});
        case Symbol::cross: {
            const double s = r * 0.8;
            return {move(c.x - s, c.y - s), line(c.x + s, c.y + s), move(c.x - s, c.y + s),
                    line(c.x + s, c.y - s)};
        }
    }
    return {};
}

// REQUIRES: the direction has length 1. Turned by a right angle it is (-y, x).
Outline outlineOf(const ArrowHead& head) {
    const Point d = head.direction;
    const Point base = {head.tip.x - d.x * arrowLength, head.tip.y - d.y * arrowLength};
    const double half = arrowWidth / 2;
    return polygon(
        {head.tip, {base.x - d.y * half, base.y + d.x * half}, {base.x + d.y * half, base.y - d.x * half}});
}

double leftOf(const TextShape& text) noexcept {
    switch (styleOf(text.role).anchor) {
        case Anchor::start:
            return text.at.x;
        case Anchor::middle:
            return text.at.x - text.maxWidth / 2;
        case Anchor::end:
            return text.at.x - text.maxWidth;
    }
    return text.at.x;
}

}  // namespace tessera_draw
