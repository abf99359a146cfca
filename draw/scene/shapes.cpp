#include "draw/scene/shapes.h"

#include <cmath>
#include <utility>

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

// A polygon by points in relation to the centre, for a symbol that is 2 wide and high. Parts that run the other
// way around are holes, with both rules for filling.
void addPart(Outline& outline, const SymbolShape& symbol, std::initializer_list<Point> points) {
    const double r = symbol.size / 2;
    bool isFirst = true;
    for (const Point& point : points) {
        const Point at{symbol.center.x + point.x * r, symbol.center.y + point.y * r};
        outline.push_back(std::exchange(isFirst, false) ? move(at.x, at.y) : line(at.x, at.y));
    }
    outline.push_back(closed);
}

// Anticlockwise, as the outlines around it run clockwise.
void addExclamation(Outline& outline, const SymbolShape& symbol, double top, double bottom) {
    constexpr double half = 0.17;
    const double dot = bottom - 0.34;
    addPart(outline, symbol, {{-half, top}, {-half, dot - 0.2}, {half, dot - 0.2}, {half, top}});
    addPart(outline, symbol, {{-half, dot}, {-half, bottom}, {half, bottom}, {half, dot}});
}

void addHole(Outline& outline, const SymbolShape& symbol, double half) {
    addPart(outline, symbol, {{-half, -half}, {-half, half}, {half, half}, {half, -half}});
}

// The signs of levels.
Outline signOutline(const SymbolShape& symbol) {
    Outline outline;
    switch (symbol.look.symbol) {
        case Symbol::alert:
            addPart(outline, symbol,
                    {{-0.42, -1},
                     {0.42, -1},
                     {1, -0.42},
                     {1, 0.42},
                     {0.42, 1},
                     {-0.42, 1},
                     {-1, 0.42},
                     {-1, -0.42}});
            addExclamation(outline, symbol, -0.7, 0.7);
            break;
        case Symbol::caution:
            addPart(outline, symbol, {{0, -1.05}, {1.12, 0.95}, {-1.12, 0.95}});
            addExclamation(outline, symbol, -0.45, 0.78);
            break;
        case Symbol::check:
            outline = circle(symbol.center, symbol.size / 2);
            addPart(
                outline, symbol,
                {{-0.6, 0.02}, {-0.16, 0.56}, {0.66, -0.32}, {0.4, -0.56}, {-0.18, 0.08}, {-0.36, -0.18}});
            break;
        case Symbol::star:
            addPart(outline, symbol,
                    {{0, -1.1},
                     {0.28, -0.36},
                     {1.05, -0.34},
                     {0.44, 0.14},
                     {0.65, 0.9},
                     {0, 0.46},
                     {-0.65, 0.9},
                     {-0.44, 0.14},
                     {-1.05, -0.34},
                     {-0.28, -0.36}});
            break;
        case Symbol::flag:
            addPart(outline, symbol, {{-0.8, -1}, {0.95, -0.45}, {-0.45, 0.1}, {-0.45, 1}, {-0.8, 1}});
            break;
        case Symbol::hexagon:
            addPart(outline, symbol, {{-0.5, -0.9}, {0.5, -0.9}, {1, 0}, {0.5, 0.9}, {-0.5, 0.9}, {-1, 0}});
            addHole(outline, symbol, 0.26);
            break;
        case Symbol::window:
            addPart(outline, symbol, {{-0.9, -0.9}, {0.9, -0.9}, {0.9, 0.9}, {-0.9, 0.9}});
            addHole(outline, symbol, 0.4);
            break;
        case Symbol::rhombus:
            addPart(outline, symbol, {{0, -1.15}, {1.15, 0}, {0, 1.15}, {-1.15, 0}});
            addHole(outline, symbol, 0.28);
            break;
        case Symbol::pentagon:
            addPart(outline, symbol, {{0, -1}, {1, -0.2}, {0.62, 0.95}, {-0.62, 0.95}, {-1, -0.2}});
            break;
        default:
            break;
    }
    return outline;
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
        default:
            break;
    }
    return signOutline(symbol);
}

// REQUIRES: the direction has length 1. Turned by a right angle it is (-y, x).
Outline outlineOf(const ArrowHead& head, double lineWidth) {
    const Point d = head.direction;
    const Point base = {head.tip.x - d.x * arrowLength, head.tip.y - d.y * arrowLength};
    const double half = headWidth(lineWidth) / 2;
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
