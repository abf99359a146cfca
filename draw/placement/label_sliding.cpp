#include "draw/placement/label_sliding.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "draw/placement/end_labels.h"

namespace tessera_draw::placing {
namespace {

using LabelEnd = BoxToPlace::LabelEnd;
using Stretch = PlacedLine::Stretch;

struct Obstacle {
    Rect rect;
    Index box = nothing;   // a box or label
    Index line = nothing;  // or a piece of a line
};

// What stands in the squares of a coarse grid. The squares are so large that all obstacles together are in few of them.
class ObstacleGrid {
  public:
    // Before close().
    void add(const Obstacle& obstacle) { m_obstacles.push_back(obstacle); }

    // Sorts the obstacles by hash values of their squares.
    void close() {
        constexpr double mostSquares = 16;  // of an obstacle, on average
        constexpr std::size_t mostVisits = 256;
        const double most = mostSquares * static_cast<double>(m_obstacles.size());
        while (squares() > most)
            m_side *= 2;
        m_begin.assign(std::bit_ceil(m_obstacles.size() + 1) + 1, 0);
        for (const Obstacle& obstacle : m_obstacles)
            forSquares(obstacle.rect, [&](std::int64_t square) { ++m_begin[hashOf(square) + 1]; });
        std::partial_sum(m_begin.begin(), m_begin.end(), m_begin.begin());
        m_entries.resize(m_begin.back());
        std::vector<Index> next(m_begin.begin(), m_begin.end() - 1);
        for (Index i = 0; i < m_obstacles.size(); ++i)
            forSquares(m_obstacles[i].rect,
                       [&](std::int64_t square) { m_entries[next[hashOf(square)]++] = i; });
        m_visits = mostVisits * m_obstacles.size();
    }

    // After close(), for few obstacles.
    void addLate(const Obstacle& obstacle) {
        const auto index = static_cast<Index>(m_obstacles.size());
        m_obstacles.push_back(obstacle);
        forSquares(obstacle.rect, [&](std::int64_t square) { m_late[square].push_back(index); });
    }

    // Calls visit() with each obstacle that may touch the rectangle, with some of them more than once, and with some others.
    // Returns false, and has not called it with all, when too many obstacles are in too few squares: the work has a limit in all.
    template <typename Visit>
    bool forEachIn(const Rect& rect, Visit visit) {
        forSquares(rect, [&](std::int64_t square) {
            const std::size_t hash = hashOf(square);
            for (Index entry = m_begin[hash]; entry < m_begin[hash + 1] && m_visits > 0; ++entry, --m_visits)
                visit(m_obstacles[m_entries[entry]]);
            const auto late = m_late.find(square);
            if (late == m_late.end()) return;
            for (auto index = late->second.begin(); index != late->second.end() && m_visits > 0;
                 ++index, --m_visits)
                visit(m_obstacles[*index]);
        });
        return m_visits > 0;
    }

  private:
    [[nodiscard]] double squares() const {
        double sum = 0;
        for (const Obstacle& obstacle : m_obstacles)
            sum += (obstacle.rect.width / m_side + 1) * (obstacle.rect.height / m_side + 1);
        return sum;
    }

    template <typename Visit>
    void forSquares(const Rect& rect, Visit visit) const {
        const auto at = [&](double length) { return static_cast<std::int64_t>(std::floor(length / m_side)); };
        for (std::int64_t x = at(rect.x); x <= at(rect.right()); ++x)
            for (std::int64_t y = at(rect.y); y <= at(rect.bottom()); ++y)
                visit((x << 32) ^ (y & 0xffff'ffff));
    }

    [[nodiscard]] std::size_t hashOf(std::int64_t square) const {
        constexpr std::uint64_t factor = 0x9e37'79b9'7f4a'7c15;  // 2^64 divided by the golden ratio
        return static_cast<std::uint64_t>(square) * factor >> 32 & (m_begin.size() - 2);
    }

    double m_side = 160;  // pixels
    std::vector<Obstacle> m_obstacles;
    std::vector<Index> m_begin;  // by hash: in m_entries
    std::vector<Index> m_entries;
    std::unordered_map<std::int64_t, std::vector<Index>> m_late;
    std::size_t m_visits = 0;  // that are left
};

double lengthOf(const Point& from, const Segment& segment) {
    const auto distance = [](const Point& a, const Point& b) {
        const double x = std::abs(b.x - a.x);
        const double y = std::abs(b.y - a.y);
        return x == 0 || y == 0 ? x + y : std::hypot(x, y);  // most segments are level or upright
    };
    if (!segment.isCurve) return distance(from, segment.end);
    // Between the chord and the polygon of its control points, which is near enough here.
    return (distance(from, segment.end) + distance(from, segment.control1) +
            distance(segment.control1, segment.control2) + distance(segment.control2, segment.end)) /
           2;
}

double lengthOf(const Stretch& stretch) {
    double length = 0;
    Point at = stretch.start;
    for (const Segment& segment : stretch.segments) {
        length += lengthOf(at, segment);
        at = segment.end;
    }
    return length;
}

// Calls visit(bounds) for each segment.
template <typename Visit>
void forBounds(const Stretch& stretch, Visit visit) {
    Point at = stretch.start;
    for (const Segment& segment : stretch.segments) {
        // The control points of curves are between their ends.
        visit(Rect{std::min(at.x, segment.end.x), std::min(at.y, segment.end.y),
                   std::abs(at.x - segment.end.x), std::abs(at.y - segment.end.y)});
        at = segment.end;
    }
}

class LabelSlider {
  public:
    LabelSlider(const PlacementInput& input, const Nesting& nesting, const Spacing& spacing,
                Placement& placement)
        : m_input(input),
          m_nesting(nesting),
          m_spacing(spacing),
          m_placement(placement),
          m_uses(usesOf(input)) {}

    void slide() {
        const auto hasCenter = [&](const LineToPlace& line) {
            return std::any_of(line.through.begin(), line.through.end(), [&](Index label) {
                return label < m_input.boxes.size() && m_input.boxes[label].labelEnd == LabelEnd::center;
            });
        };
        if (std::none_of(m_input.lines.begin(), m_input.lines.end(), hasCenter)) return;
        fillGrid();
        for (Index line = 0; line < m_input.lines.size(); ++line)
            slideOn(line);
    }

  private:
    void fillGrid() {
        for (Index box = 0; box < m_input.boxes.size(); ++box)
            if (m_nesting.containerOf[box] == nothing) {
                m_grid.add({m_placement.boxes[box], box, nothing});
            } else {
                addBorder(box);
            }
        for (Index line = 0; line < m_input.lines.size(); ++line)
            for (const Stretch& stretch : m_placement.lines[line].stretches)
                forBounds(stretch, [&](const Rect& bounds) { m_grid.add({bounds, nothing, line}); });
        m_grid.close();
    }

    // Labels inside stay inside, and those outside outside.
    void addBorder(Index box) {
        const Rect& rect = m_placement.boxes[box];
        m_grid.add({{rect.x, rect.y, 0, rect.height}, box, nothing});
        m_grid.add({{rect.right(), rect.y, 0, rect.height}, box, nothing});
    }

    void slideOn(Index line) {
        const std::vector<Index>& labels = m_input.lines[line].through;
        std::vector<Stretch>& stretches = m_placement.lines[line].stretches;
        if (stretches.size() != labels.size() + 1) return;
        double all = 0;
        for (const Stretch& stretch : stretches)
            all += lengthOf(stretch);
        for (const Index label : labels)
            all += m_placement.boxes[label].width;
        double before = 0;
        for (std::size_t i = 0; i < labels.size(); ++i) {
            if (i > 0) before += m_placement.boxes[labels[i - 1]].width;
            before += lengthOf(stretches[i]);
            const bool isCenter =
                m_input.boxes[labels[i]].labelEnd == LabelEnd::center && m_uses[labels[i]] == 1;
            if (!isCenter || stretches[i].segments.empty() || stretches[i + 1].segments.empty()) continue;
            const double place = before + m_placement.boxes[labels[i]].width / 2;
            const double length = lengthOf(stretches[i]);
            slideLabel(line, labels[i], stretches[i], stretches[i + 1], all / 2 - place, all / 6);
            before += lengthOf(stretches[i]) - length;
        }
    }

    // `way` is how far the label would have to move along the line to stand in its middle. Up to `enough` it stays.
    void slideLabel(Index line, Index label, Stretch& in, Stretch& out, double way, double enough) {
        if (std::abs(way) <= enough) return;
        Rect& rect = m_placement.boxes[label];
        Segment& last = in.segments.back();
        const Segment& first = out.segments.front();
        const bool isLevel = !last.isCurve && !first.isCurve && last.end.y == out.start.y &&
                             first.end.y == out.start.y && beginOfLast(in).y == out.start.y;
        const bool runsRight = last.end.x < out.start.x;
        if (!isLevel || (!runsRight && last.end.x == out.start.x)) return;
        const double move = freeMove(line, label, runsRight ? way : -way, in, out);
        if (std::abs(move) < 1) return;
        rect.x += move;
        last.end.x += move;
        out.start.x += move;
        m_grid.addLate({rect, label, nothing});
    }

    static const Point& beginOfLast(const Stretch& stretch) {
        return stretch.segments.size() > 1 ? stretch.segments[stretch.segments.size() - 2].end
                                           : stretch.start;
    }

    // The part of the wanted move along x that is free.
    [[nodiscard]] double freeMove(Index line, Index label, double move, const Stretch& in,
                                  const Stretch& out) {
        const Rect& rect = m_placement.boxes[label];
        // The straight run that the label is on, less what lines need to be seen beside it.
        const double gap = m_spacing.besideLabels;
        double low = std::min(beginOfLast(in).x, out.segments.front().end.x) + gap;
        double high = std::max(beginOfLast(in).x, out.segments.front().end.x) - gap;
        if (const Index around = m_nesting.tree.parent(label); around != m_nesting.drawing) {
            const Insets& padding = m_input.boxes[around].padding;
            low = std::max(low, m_placement.boxes[around].x + padding.left);
            high = std::min(high, m_placement.boxes[around].right() - padding.right);
        }
        move = std::clamp(move, std::min(low - rect.x, 0.0), std::max(high - rect.right(), 0.0));
        const double air = m_spacing.betweenLines;
        const Rect swept{std::min(rect.x, rect.x + move) - air, rect.y - air,
                         rect.width + std::abs(move) + 2 * air, rect.height + 2 * air};
        const bool isWhole = m_grid.forEachIn(swept, [&](const Obstacle& obstacle) {
            const Rect& other = obstacle.rect;
            const bool isBeside = other.bottom() <= swept.y || other.y >= swept.bottom();
            const bool isOwnRun =
                obstacle.line == line && other.height == 0 && other.y == in.segments.back().end.y;
            if (isOwnRun || obstacle.box == label || isBeside) return;
            if (move > 0 && other.x >= rect.right()) high = std::min(high, other.x - air);
            if (move < 0 && other.right() <= rect.x) low = std::max(low, other.right() + air);
            // What is beside the label now, and nearer than the air, must not come nearer.
            const bool isAbove = other.right() > rect.x && other.x < rect.right();
            if (isAbove && move > 0 && other.right() > rect.right()) high = std::min(high, rect.right());
            if (isAbove && move < 0 && other.x < rect.x) low = std::max(low, rect.x);
        });
        if (!isWhole) return 0;
        if (move > 0) return std::clamp(high - rect.right(), 0.0, move);
        return -std::clamp(rect.x - low, 0.0, -move);
    }

    const PlacementInput& m_input;
    const Nesting& m_nesting;
    const Spacing& m_spacing;
    Placement& m_placement;
    const std::vector<std::uint32_t> m_uses;
    ObstacleGrid m_grid;
};

}  // namespace

void slideLabels(const PlacementInput& input, const Nesting& nesting, const Spacing& spacing,
                 Placement& placement) {
    LabelSlider(input, nesting, spacing, placement).slide();
}

}  // namespace tessera_draw::placing
