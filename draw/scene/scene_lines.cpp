#include "draw/scene/scene_lines.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessera_draw {
namespace {

// How far a line continues under its head, so that no gap is visible.
constexpr double overlap = 2;

// The direction from a to b along the nearer axis; to the right if they are equal.
Point axisBetween(Point a, Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    if (dx == 0 && dy == 0) return {1, 0};
    if (std::abs(dx) >= std::abs(dy)) return {dx < 0 ? -1.0 : 1.0, 0};
    return {0, dy < 0 ? -1.0 : 1.0};
}

Point moved(Point point, Point direction, double length) {
    return {point.x + direction.x * length, point.y + direction.y * length};
}

// The length that can be cut off a straight segment from a to b.
double cutOf(Point a, Point b) {
    return std::min(arrowLength - overlap, std::hypot(b.x - a.x, b.y - a.y));
}

ArrowHead cutStart(PlacedLine::Stretch& stretch) {
    Segment& first = stretch.segments.front();
    const Point next = first.isCurve ? first.control1 : first.end;
    const Point inward = axisBetween(stretch.start, next);
    const ArrowHead head{stretch.start, {-inward.x, -inward.y}};
    const double cut = first.isCurve ? arrowLength - overlap : cutOf(stretch.start, next);
    stretch.start = moved(stretch.start, inward, cut);
    if (first.isCurve) first.control1 = moved(first.control1, inward, cut);
    return head;
}

ArrowHead cutEnd(PlacedLine::Stretch& stretch) {
    Segment& last = stretch.segments.back();
    const Point straightFrom =
        stretch.segments.size() > 1 ? stretch.segments[stretch.segments.size() - 2].end : stretch.start;
    const Point before = last.isCurve ? last.control2 : straightFrom;
    const Point outward = axisBetween(before, last.end);
    const ArrowHead head{last.end, outward};
    const double cut = last.isCurve ? arrowLength - overlap : cutOf(before, last.end);
    last.end = moved(last.end, outward, -cut);
    if (last.isCurve) last.control2 = moved(last.control2, outward, -cut);
    return head;
}

}  // namespace

LineShape makeLine(PlacedLine placed, std::string_view direction) {
    LineShape line;
    line.stretches = std::move(placed.stretches);
    std::erase_if(line.stretches, [](const auto& stretch) { return stretch.segments.empty(); });
    if (line.stretches.empty()) return line;
    line.hasFromHead = direction == "back" || direction == "both";
    line.hasToHead = direction == "forward" || direction == "both";
    if (line.hasFromHead) line.fromHead = cutStart(line.stretches.front());
    if (line.hasToHead) line.toHead = cutEnd(line.stretches.back());
    return line;
}

std::string_view arrowText(std::string_view direction) noexcept {
    if (direction == "forward") return " → ";
    if (direction == "back") return " ← ";
    return direction == "both" ? " ↔ " : " – ";
}

}  // namespace tessera_draw
