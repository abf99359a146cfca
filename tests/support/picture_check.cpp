#include "tests/support/picture_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <ostream>
#include <set>
#include <unordered_map>
#include <utility>

#include "tests/support/rect_index.h"

namespace tessera_test {
namespace {

using tessera_draw::PlacedLine;
using tessera_draw::Point;
using tessera_draw::Rect;

constexpr double slack = 0.05;     // less than is visible
constexpr double lineSlack = 0.5;  // half a pixel of a line's own width does not count
constexpr int curvePieces = 16;
constexpr double longEnough = 8;  // above this, two lines look like one

Rect shrunk(const Rect& rect, double by) {
    return {rect.x + by, rect.y + by, rect.width - 2 * by, rect.height - 2 * by};
}

bool isInside(const Rect& inner, const Rect& outer) {
    return inner.x >= outer.x - slack && inner.y >= outer.y - slack &&
           inner.right() <= outer.right() + slack && inner.bottom() <= outer.bottom() + slack;
}

bool isInside(Point point, const Rect& rect) {
    return point.x > rect.x && point.x < rect.right() && point.y > rect.y && point.y < rect.bottom();
}

bool isOnBorder(Point point, const Rect& rect) {
    return isInside(point, shrunk(rect, -slack)) && !isInside(point, shrunk(rect, slack));
}

double distance(Point a, Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// Whether the straight piece from a to b has a point inside the rectangle.
bool passesThrough(Point a, Point b, const Rect& rect) {
    double first = 0;
    double last = 1;
    const auto clip = [&](double start, double delta, double low, double high) {
        if (delta == 0) return start > low && start < high;
        const double t0 = (low - start) / delta;
        const double t1 = (high - start) / delta;
        first = std::max(first, std::min(t0, t1));
        last = std::min(last, std::max(t0, t1));
        return first < last;
    };
    return clip(a.x, b.x - a.x, rect.x, rect.right()) && clip(a.y, b.y - a.y, rect.y, rect.bottom());
}

Point onCurve(Point a, const tessera_draw::Segment& curve, double t) {
    const double u = 1 - t;
    const auto mix = [&](double p0, double p1, double p2, double p3) {
        return u * u * u * p0 + 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t * p3;
    };
    return {mix(a.x, curve.control1.x, curve.control2.x, curve.end.x),
            mix(a.y, curve.control1.y, curve.control2.y, curve.end.y)};
}

// Calls `take` with both ends of each straight piece.
template <class Take>
void forEachPiece(const PlacedLine::Stretch& stretch, Take take) {
    Point at = stretch.start;
    for (const tessera_draw::Segment& segment : stretch.segments) {
        const Point start = at;
        for (int i = 1; segment.isCurve && i < curvePieces; ++i) {
            const Point next = onCurve(start, segment, static_cast<double>(i) / curvePieces);
            take(at, next);
            at = next;
        }
        take(at, segment.end);
        at = segment.end;
    }
}

class Checker {
  public:
    explicit Checker(const Picture& picture) : m_picture(picture) { findDepths(); }

    Faults run() {
        m_faults.missing = m_picture.missing;
        checkNesting();
        checkSiblings();
        checkLabels();
        checkLines();
        countTogether();
        checkTexts();
        return std::move(m_faults);
    }

  private:
    void found(std::size_t Faults::*count, const std::string& what) {
        if (m_faults.*count == 0) m_faults.examples.push_back(what);
        ++(m_faults.*count);
    }
    [[nodiscard]] const Picture::Box& box(Index i) const { return m_picture.boxes[i]; }

    // Ancestors are found by walking up; the depths say when to stop.
    void findDepths() {
        m_depths.assign(m_picture.boxes.size(), 0);
        std::vector<Index> way;
        for (Index i = 0; i < m_depths.size(); ++i) {
            Index at = i;
            for (; at != nothing && m_depths[at] == 0; at = box(at).container)
                way.push_back(at);
            std::size_t depth = at == nothing ? 0 : m_depths[at];
            for (; !way.empty(); way.pop_back())
                m_depths[way.back()] = ++depth;
        }
    }
    [[nodiscard]] bool contains(Index container, Index inner) const {
        while (inner != nothing && m_depths[inner] > m_depths[container])
            inner = box(inner).container;
        return inner == container;
    }

    void checkNesting() {
        const Rect all{0, 0, m_picture.size.width, m_picture.size.height};
        for (const Picture::Box& each : m_picture.boxes) {
            const bool isTop = each.container == nothing;
            Rect inner = isTop ? all : box(each.container).rect;
            if (!isTop) {
                const tessera_draw::Insets& padding = box(each.container).padding;
                inner = {inner.x + padding.left, inner.y + padding.top,
                         inner.width - padding.left - padding.right,
                         inner.height - padding.top - padding.bottom};
            }
            if (!isInside(each.rect, inner)) found(&Faults::boxes, each.name + " leaves its container");
        }
    }

    using Pairs = std::vector<std::pair<Index, Index>>;

    // Pairs of the given boxes that overlap.
    [[nodiscard]] Pairs overlaps(const std::vector<Index>& boxes) const {
        std::vector<RectIndex::Entry> entries;
        entries.reserve(boxes.size());
        for (const Index i : boxes)
            entries.push_back({box(i).rect, i});
        const RectIndex index(std::move(entries));
        Pairs pairs;
        for (const Index i : boxes)
            index.search(shrunk(box(i).rect, slack), [&](std::size_t other) {
                if (i < other) pairs.emplace_back(i, static_cast<Index>(other));
            });
        return pairs;
    }

    void checkSiblings() {
        std::unordered_map<Index, std::vector<Index>> members;
        for (Index i = 0; i < m_picture.boxes.size(); ++i)
            members[box(i).container].push_back(i);
        for (const auto& [container, boxes] : members)
            for (const auto& [a, b] : overlaps(boxes))
                found(&Faults::boxes, box(a).name + " overlaps " + box(b).name);
    }

    void checkLabels() {
        std::vector<Index> labels;
        for (Index i = 0; i < m_picture.boxes.size(); ++i)
            if (box(i).isLabel) labels.push_back(i);
        for (const auto& [a, b] : overlaps(labels))
            found(&Faults::labels, box(a).name + " overlaps " + box(b).name);
    }

    void checkLines() {
        std::vector<RectIndex::Entry> entries;
        for (std::size_t i = 0; i < m_picture.boxes.size(); ++i)
            entries.push_back({shrunk(m_picture.boxes[i].rect, lineSlack), i});
        const RectIndex index(std::move(entries));
        const RectIndex headers = headerIndex();
        for (const Picture::Line& line : m_picture.lines) {
            checkWay(line, index);
            checkHeaders(line, headers);
            checkHead(line, line.wantsFromHead, line.fromHead, line.from, true);
            checkHead(line, line.wantsToHead, line.toHead, line.to, false);
            if (isTorn(line)) found(&Faults::torn, line.name + " is torn");
        }
    }

    // Its ends, its labels, and the containers that hold one of them.
    [[nodiscard]] bool mayMeet(const Picture::Line& line, Index other) const {
        const auto isOrHolds = [&](Index own) {
            return other == own || (box(other).isContainer && contains(other, own));
        };
        return isOrHolds(line.from) || isOrHolds(line.to) ||
               std::any_of(line.through.begin(), line.through.end(), isOrHolds);
    }

    // Calls `take` with the number of each indexed rectangle near each straight piece, and the piece's ends.
    template <class Take>
    static void forEachNear(const Picture::Line& line, const RectIndex& index, Take take) {
        for (const auto& stretch : line.stretches)
            forEachPiece(stretch, [&](Point a, Point b) {
                const Rect around{std::min(a.x, b.x) - slack, std::min(a.y, b.y) - slack,
                                  std::abs(a.x - b.x) + 2 * slack, std::abs(a.y - b.y) + 2 * slack};
                index.search(around, [&](std::size_t other) { take(other, a, b); });
            });
    }

    void checkWay(const Picture::Line& line, const RectIndex& index) {
        std::set<std::size_t> met;
        forEachNear(line, index, [&](std::size_t other, Point a, Point b) {
            const Rect rect = shrunk(m_picture.boxes[other].rect, lineSlack);
            if (passesThrough(a, b, rect) && !mayMeet(line, static_cast<Index>(other))) met.insert(other);
        });
        for (const std::size_t other : met)
            found(&Faults::lines, line.name + " goes through " + m_picture.boxes[other].name);
    }

    // Level and upright pieces of different lines, one upon the other.
    void countTogether() {
        struct Piece {
            long place;  // rounded
            double begin;
            double end;
            std::size_t line;
            double exact;
        };
        std::array<std::vector<Piece>, 2> pieces;
        for (std::size_t i = 0; i < m_picture.lines.size(); ++i)
            for (const auto& stretch : m_picture.lines[i].stretches)
                forEachPiece(stretch, [&](Point a, Point b) {
                    if (a.y == b.y)
                        pieces[0].push_back(
                            {std::lround(a.y), std::min(a.x, b.x), std::max(a.x, b.x), i, a.y});
                    else if (a.x == b.x)
                        pieces[1].push_back(
                            {std::lround(a.x), std::min(a.y, b.y), std::max(a.y, b.y), i, a.x});
                });
        for (auto& list : pieces) {
            std::sort(list.begin(), list.end(), [](const Piece& a, const Piece& b) {
                return a.place != b.place ? a.place < b.place : a.begin < b.begin;
            });
            for (std::size_t i = 0; i < list.size(); ++i)
                for (std::size_t k = i + 1; k < list.size() && list[k].place == list[i].place &&
                                            list[k].begin < list[i].end - longEnough;
                     ++k)
                    if (list[k].line != list[i].line &&
                        std::min(list[i].end, list[k].end) > list[k].begin + longEnough &&
                        std::abs(list[i].exact - list[k].exact) < 1)
                        ++m_faults.together;
        }
    }

    [[nodiscard]] RectIndex headerIndex() const {
        std::vector<RectIndex::Entry> entries;
        for (std::size_t i = 0; i < m_picture.texts.size(); ++i)
            if (m_picture.texts[i].isHeader) entries.push_back({m_picture.texts[i].area, i});
        return RectIndex(std::move(entries));
    }

    void checkHeaders(const Picture::Line& line, const RectIndex& index) {
        std::set<std::size_t> met;
        forEachNear(line, index, [&](std::size_t text, Point a, Point b) {
            if (passesThrough(a, b, m_picture.texts[text].area)) met.insert(text);
        });
        for (const std::size_t text : met)
            found(&Faults::behind, line.name + " passes behind \"" + m_picture.texts[text].text + "\"");
    }

    [[nodiscard]] static Point endOf(const PlacedLine::Stretch& stretch) {
        return stretch.segments.empty() ? stretch.start : stretch.segments.back().end;
    }

    [[nodiscard]] bool isTorn(const Picture::Line& line) const {
        if (line.stretches.size() != line.through.size() + 1) return true;
        for (std::size_t i = 0; i < line.stretches.size(); ++i) {
            const bool isFirst = i == 0;
            const bool isLast = i + 1 == line.stretches.size();
            Point start = line.stretches[i].start;
            Point end = endOf(line.stretches[i]);
            // A head bridges the rest of the way to the box.
            if (isFirst && line.fromHead && !bridge(*line.fromHead, start)) return true;
            if (isLast && line.toHead && !bridge(*line.toHead, end)) return true;
            if (!isOnBorder(start, box(isFirst ? line.from : line.through[i - 1]).rect)) return true;
            if (!isOnBorder(end, box(isLast ? line.to : line.through[i]).rect)) return true;
        }
        return false;
    }
    // Replaces the end by the tip of its head. False when the head does not reach it.
    [[nodiscard]] bool bridge(const Picture::Head& head, Point& end) const {
        if (distance(head.tip, end) > m_picture.headLength + slack) return false;
        end = head.tip;
        return true;
    }

    void checkHead(const Picture::Line& line, bool isWanted, const std::optional<Picture::Head>& head,
                   Index at, bool isFirst) {
        if (isWanted != head.has_value()) {
            found(&Faults::heads, line.name + (isWanted ? " lacks a head" : " has a head too many"));
            return;
        }
        if (!head || line.stretches.empty()) return;
        const Point end = isFirst ? line.stretches.front().start : endOf(line.stretches.back());
        const double along =
            (head->tip.x - end.x) * head->direction.x + (head->tip.y - end.y) * head->direction.y;
        const Rect& rect = box(at).rect;
        const Point behind{head->tip.x - head->direction.x, head->tip.y - head->direction.y};
        const Point ahead{head->tip.x + head->direction.x, head->tip.y + head->direction.y};
        // A line to the container of the box before comes from inside.
        const Index other = isFirst ? line.to : line.from;
        const Index before = line.through.empty() ? other
                             : isFirst            ? line.through.front()
                                                  : line.through.back();
        const bool comesFromInside = at != before && contains(at, before);
        const bool pointsAtBox = isInside(ahead, rect) && !isInside(behind, rect);
        const bool pointsOut = comesFromInside && isInside(behind, rect) && !isInside(ahead, rect);
        if (along < -slack || !isOnBorder(head->tip, rect) || (!pointsAtBox && !pointsOut))
            found(&Faults::heads, line.name + " has a wrong head");
    }

    void checkTexts() {
        std::vector<RectIndex::Entry> entries;
        for (std::size_t i = 0; i < m_picture.boxes.size(); ++i)
            entries.push_back({m_picture.boxes[i].rect, i});
        const RectIndex index(std::move(entries));
        const Rect all{0, 0, m_picture.size.width, m_picture.size.height};
        for (const Picture::Text& text : m_picture.texts) {
            const Rect& inner = text.box == nothing ? all : box(text.box).rect;
            bool isBad = !isInside(text.area, inner);
            index.search(shrunk(text.area, slack), [&](std::size_t other) {
                const auto i = static_cast<Index>(other);
                isBad = isBad || (text.box == nothing || !contains(i, text.box));
            });
            if (text.whole > 0 && text.whole <= text.room)
                found(&Faults::cut, "text \"" + text.text + "\" is cut");
            if (isBad) found(&Faults::texts, "text \"" + text.text + "\" is not in its box");
        }
    }

    const Picture& m_picture;
    std::vector<std::size_t> m_depths;  // from 1
    Faults m_faults;
};

}  // namespace

void Faults::add(const Faults& other) {
    boxes += other.boxes;
    labels += other.labels;
    lines += other.lines;
    torn += other.torn;
    heads += other.heads;
    texts += other.texts;
    cut += other.cut;
    behind += other.behind;
    together += other.together;
    missing += other.missing;
    if (examples.size() < 10) examples.insert(examples.end(), other.examples.begin(), other.examples.end());
}

std::ostream& operator<<(std::ostream& out, const Faults& faults) {
    out << "boxes " << faults.boxes << ", labels " << faults.labels << ", lines through boxes "
        << faults.lines << ", torn " << faults.torn << ", heads " << faults.heads << ", texts "
        << faults.texts << ", cut " << faults.cut << ", lines behind texts " << faults.behind << ", missing "
        << faults.missing << " (together " << faults.together << ")";
    for (const std::string& example : faults.examples)
        out << "\n    " << example;
    return out;
}

Faults checkPicture(const Picture& picture) {
    return Checker(picture).run();
}

}  // namespace tessera_test
