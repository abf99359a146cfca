#include "tests/draw/placement_checking.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace tessera_test {
namespace {

using tessera_draw::BoxToPlace;
using tessera_draw::Index;
using LabelEnd = tessera_draw::BoxToPlace::LabelEnd;
using tessera_draw::LineToPlace;
using tessera_draw::nothing;
using tessera_draw::PlacedLine;
using tessera_draw::Placement;
using tessera_draw::PlacementInput;
using tessera_draw::Point;
using tessera_draw::Rect;

constexpr double tolerance = 1e-3;

class Checker {
  public:
    Checker(const PlacementInput& input, const Placement& placement, bool isFolded)
        : m_input(input), m_placement(placement), m_isFolded(isFolded) {}

    std::string fault() {
        if (m_placement.boxes.size() != m_input.boxes.size()) return "a box has no place";
        if (m_placement.lines.size() != m_input.lines.size()) return "a line has no place";
        for (Index i = 0; i < m_input.boxes.size() && m_fault.empty(); ++i)
            checkBox(i);
        for (Index i = 0; i < m_input.boxes.size() && m_fault.empty(); ++i)
            for (Index k = i + 1; k < m_input.boxes.size() && m_fault.empty(); ++k)
                if (m_input.boxes[i].group == m_input.boxes[k].group) checkSiblings(i, k);
        for (std::size_t i = 0; i < m_input.lines.size() && m_fault.empty(); ++i)
            checkLine(m_input.lines[i], m_placement.lines[i]);
        return m_fault;
    }

  private:
    template <typename... Values>
    void require(bool holds, fmt::format_string<const Values&...> text, const Values&... values) {
        if (!holds && m_fault.empty()) m_fault = fmt::format(text, values...);
    }

    [[nodiscard]] bool contains(Index outer, Index inner) const {
        while (inner != nothing && inner != outer)
            inner = m_input.boxes[inner].group;
        return inner == outer;
    }

    void checkBox(Index i) {
        const BoxToPlace& box = m_input.boxes[i];
        const Rect& rect = m_placement.boxes[i];
        require(std::isfinite(rect.x) && std::isfinite(rect.y), "box {} is nowhere", i);
        const bool hasWidth =
            box.isContainer ? rect.width >= box.size.width - tolerance : rect.width == box.size.width;
        const bool hasHeight = box.isLabel && !isEndOfLine(i) ? rect.height == box.size.height
                                                              : rect.height >= box.size.height - tolerance;
        require(hasWidth && hasHeight, "box {} has another size", i);
        Rect around{0, 0, m_placement.size.width, m_placement.size.height};
        tessera_draw::Insets padding;
        if (box.group != nothing) {
            around = m_placement.boxes[box.group];
            padding = m_input.boxes[box.group].padding;
        }
        // Beside a title, end labels stand nearer to the border.
        if (hasOwnPlace(box)) padding = {};
        require(rect.x >= around.x + padding.left - tolerance &&
                    rect.y >= around.y + padding.top - tolerance &&
                    rect.right() <= around.right() - padding.right + tolerance &&
                    rect.bottom() <= around.bottom() - padding.bottom + tolerance,
                "box {} is not inside its container", i);
    }

    void checkSiblings(Index i, Index k) {
        const Rect& a = m_placement.boxes[i];
        const Rect& b = m_placement.boxes[k];
        const bool isApart = a.right() <= b.x + tolerance || b.right() <= a.x + tolerance ||
                             a.bottom() <= b.y + tolerance || b.bottom() <= a.y + tolerance;
        require(isApart, "boxes {} and {} overlap", i, k);
        const BoxToPlace& boxA = m_input.boxes[i];
        const BoxToPlace& boxB = m_input.boxes[k];
        const bool areOrdered = !m_isFolded && boxA.level != -1 && boxB.level != -1 && !hasOwnPlace(boxA) &&
                                !hasOwnPlace(boxB) && boxA.border == BoxToPlace::Border::none &&
                                boxB.border == BoxToPlace::Border::none && boxA.level != boxB.level;
        if (!areOrdered) return;
        const bool isFirst = boxA.level < boxB.level;
        const Rect& first = isFirst ? a : b;
        const Rect& second = isFirst ? b : a;
        // Boxes of later levels may stand above and below wide ones of earlier levels.
        const bool areBeside = a.bottom() > b.y + tolerance && b.bottom() > a.y + tolerance;
        require((areBeside ? first.right() : first.x) <= (areBeside ? second.x : second.right()) + tolerance,
                "boxes {} and {} are not in the order of their levels", i, k);
    }

    // Whether the box is a label that its level does not place.
    static bool hasOwnPlace(const BoxToPlace& box) { return box.labelEnd != LabelEnd::none; }

    [[nodiscard]] bool isEndOfLine(Index box) const {
        return std::any_of(m_input.lines.begin(), m_input.lines.end(),
                           [&](const LineToPlace& line) { return line.from == box || line.to == box; });
    }

    // Whether the label is in the container that its place beside the line's end is in, and on this line only.
    [[nodiscard]] bool isAtHome(Index label, Index end, Index otherEnd) const {
        if (isEndOfLine(label)) return false;
        const bool isInside = end != otherEnd && contains(end, otherEnd);
        return m_input.boxes[label].group == (isInside ? end : m_input.boxes[end].group);
    }

    // Of lines that have no other labels.
    void checkEndLabels(const LineToPlace& line, const PlacedLine& placed) {
        const Index first = line.through.front();
        const Index last = line.through.back();
        const bool isAtFrom =
            m_input.boxes[first].labelEnd == LabelEnd::from && isAtHome(first, line.from, line.to);
        const bool isAtTo =
            m_input.boxes[last].labelEnd == LabelEnd::to && isAtHome(last, line.to, line.from);
        if (line.through.size() != std::size_t(isAtFrom) + std::size_t(isAtTo)) return;
        if (isAtFrom) checkDistance(first, placed.stretches.front());
        if (isAtTo) checkDistance(last, placed.stretches.back());
    }

    void checkDistance(Index label, const PlacedLine::Stretch& stretch) {
        const Point& end = stretch.segments.back().end;
        require(stretch.segments.size() == 1 && std::abs(end.y - stretch.start.y) < tolerance &&
                    std::abs(end.x - stretch.start.x) <= 80,
                "label {} is far from its end", label);
    }

    void checkLine(const LineToPlace& line, const PlacedLine& placed) {
        std::vector<Index> stops{line.from};
        stops.insert(stops.end(), line.through.begin(), line.through.end());
        stops.push_back(line.to);
        const bool isWhole =
            std::all_of(stops.begin(), stops.end(), [&](Index box) { return box < m_input.boxes.size(); });
        const std::size_t stretches = isWhole ? stops.size() - 1 : 0;
        require(placed.stretches.size() == stretches, "a line has another number of stretches");
        for (std::size_t i = 0; i < stretches && m_fault.empty(); ++i)
            checkStretch(stops[i], stops[i + 1], placed.stretches[i]);
        if (stretches > 1 && m_fault.empty()) checkEndLabels(line, placed);
    }

    [[nodiscard]] bool isOnSide(Index box, const Point& at) const {
        const Rect& rect = m_placement.boxes[box];
        const bool isAtSide =
            std::abs(at.x - rect.x) < tolerance || std::abs(at.x - rect.right()) < tolerance;
        return isAtSide && at.y > rect.y - tolerance && at.y < rect.bottom() + tolerance;
    }

    void checkStretch(Index from, Index to, const PlacedLine::Stretch& stretch) {
        const std::string name = fmt::format("the stretch from {} to {}", from, to);
        if (stretch.segments.empty()) return require(false, "{} is empty", name);
        require(isOnSide(from, stretch.start), "{} does not begin on its box", name);
        require(isOnSide(to, stretch.segments.back().end), "{} does not end on its box", name);
        const Point& first = stretch.segments.front().isCurve ? stretch.segments.front().control1
                                                              : stretch.segments.front().end;
        require(std::abs(first.y - stretch.start.y) < tolerance, "{} leaves askew", name);
        Point at = stretch.start;
        for (const auto& segment : stretch.segments) {
            for (int i = 1; i <= 8; ++i) {
                const Point next =
                    segment.isCurve ? onCurve(at, segment, i / 8.0) : onLine(at, segment.end, i / 8.0);
                checkPiece(from, to, i == 1 ? at : m_before, next, name);
                m_before = next;
            }
            at = segment.end;
        }
    }

    static bool isOutside(const Rect& rect, const Point& a, const Point& b) {
        return std::max(a.x, b.x) < rect.x + tolerance || std::min(a.x, b.x) > rect.right() - tolerance ||
               std::max(a.y, b.y) < rect.y + tolerance || std::min(a.y, b.y) > rect.bottom() - tolerance;
    }

    static Point onLine(const Point& a, const Point& b, double t) {
        return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
    }
    static Point onCurve(const Point& a, const tessera_draw::Segment& segment, double t) {
        const Point ab = onLine(a, segment.control1, t);
        const Point bc = onLine(segment.control1, segment.control2, t);
        const Point cd = onLine(segment.control2, segment.end, t);
        return onLine(onLine(ab, bc, t), onLine(bc, cd, t), t);
    }

    // Pieces are short, so that their bounds tell; those through a box's own inside are the exceptions.
    void checkPiece(Index from, Index to, const Point& a, const Point& b, const std::string& name) {
        for (Index i = 0; i < m_input.boxes.size(); ++i) {
            const Rect& rect = m_placement.boxes[i];
            const auto& header = m_input.boxes[i].header;
            require(isOutside({rect.x, rect.y, header.width, header.height}, a, b),
                    "{} passes behind the title of box {}", name, i);
            if (isOutside(rect, a, b) || contains(i, from) || contains(i, to)) continue;
            require(contains(from, i) && contains(to, i), "{} passes through box {}", name, i);
        }
        const auto isInside = [&](const Point& point) {
            return point.x >= -tolerance && point.y >= -tolerance &&
                   point.x <= m_placement.size.width + tolerance &&
                   point.y <= m_placement.size.height + tolerance;
        };
        require(isInside(a) && isInside(b), "{} leaves the drawing", name);
    }

    const PlacementInput& m_input;
    const Placement& m_placement;
    bool m_isFolded;
    std::string m_fault;
    Point m_before;
};

class Maker {
  public:
    explicit Maker(unsigned seed) : m_random(seed) {}

    PlacementInput make() {
        const unsigned boxes = 1 + below(40);
        for (unsigned i = 0; i < boxes; ++i)
            addBox(below(4) == 0);
        const unsigned lines = below(2 * boxes);
        for (unsigned i = 0; i < lines; ++i)
            addLine();
        if (below(4) == 0) addLooseBoxes();
        return m_input;
    }

  private:
    unsigned below(unsigned n) { return static_cast<unsigned>(m_random() % n); }

    std::int32_t level() {
        constexpr std::array extremes{std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max(), -2, -1};
        const unsigned kind = below(10);
        if (kind == 0) return extremes.at(below(4));
        return kind < 3 ? -1 : static_cast<std::int32_t>(below(6));
    }

    Index addBox(bool isContainer) {
        BoxToPlace box;
        if (!m_containers.empty() && below(3) != 0)
            box.group = m_containers[below(static_cast<unsigned>(m_containers.size()))];
        box.level = level();
        box.size = {10.0 + below(120), 10.0 + below(80)};
        box.isContainer = isContainer;
        if (isContainer)
            box.padding = {double(below(20)), double(below(40)), double(below(20)), double(below(20))};
        if (isContainer && below(2) == 0) {
            box.padding.left += 20;
            box.header = {20, box.size.height};
        }
        box.along = static_cast<BoxToPlace::Along>(below(3));
        if (below(12) == 0) box.border = static_cast<BoxToPlace::Border>(1 + below(2));
        if (isContainer) m_containers.push_back(static_cast<Index>(m_input.boxes.size()));
        m_input.boxes.push_back(box);
        return static_cast<Index>(m_input.boxes.size()) - 1;
    }

    // More of them in one layer than are readable below one another.
    void addLooseBoxes() {
        const std::int32_t common = static_cast<std::int32_t>(below(4)) - 1;
        const Index first = addBox(false);
        for (unsigned i = 0; i < 12; ++i) {
            const Index box = addBox(below(6) == 0);
            m_input.boxes[box].level = common;
            m_input.boxes[box].group = m_input.boxes[first].group;
        }
    }

    void addLine() {
        const auto any = [&] {
            return static_cast<Index>(below(static_cast<unsigned>(m_input.boxes.size())));
        };
        LineToPlace line{any(), any(), {}};
        if (below(60) == 0) line.to = below(2) == 0 ? nothing : static_cast<Index>(m_input.boxes.size()) + 7;
        for (unsigned labels = below(3) == 0 ? 1 + below(3) : 0; labels > 0; --labels) {
            const Index label = addBox(false);
            m_input.boxes[label].isLabel = true;
            m_input.boxes[label].labelEnd = static_cast<LabelEnd>(below(4));
            m_input.boxes[label].border = BoxToPlace::Border::none;
            line.through.push_back(label);
        }
        m_input.lines.push_back(line);
    }

    std::mt19937 m_random;
    PlacementInput m_input;
    std::vector<Index> m_containers;
};

}  // namespace

PlacementInput randomDrawing(unsigned seed) {
    return Maker(seed).make();
}

std::string findFault(const PlacementInput& input, const Placement& placement, bool isFolded) {
    return Checker(input, placement, isFolded).fault();
}

}  // namespace tessera_test
