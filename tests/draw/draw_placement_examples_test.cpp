// Small drawings in which every position is known, and large ones of shapes that slow methods cannot handle.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "draw/placement/placement.h"
#include "tests/support/effort.h"

namespace {

using tessera_test::effort;

using tessera_draw::BoxToPlace;
using tessera_draw::Index;
using tessera_draw::nothing;
using tessera_draw::place;
using tessera_draw::Placement;
using tessera_draw::PlacementInput;
using tessera_draw::Rect;

class Drawing {
  public:
    Index box(std::int32_t level, Index group = nothing) {
        BoxToPlace box;
        box.level = level;
        box.group = group;
        box.size = {100, 40};
        input.boxes.push_back(box);
        return static_cast<Index>(input.boxes.size()) - 1;
    }

    Index container(std::int32_t level, Index group = nothing) {
        const Index made = box(level, group);
        input.boxes[made].isContainer = true;
        input.boxes[made].size = {0, 0};
        input.boxes[made].padding = {10, 20, 10, 10};
        return made;
    }

    void line(Index from, Index to, std::vector<Index> through = {}) {
        input.lines.push_back({from, to, std::move(through)});
    }

    [[nodiscard]] Placement placed() const { return place(input, {}); }

    PlacementInput input;
};

double middle(const Rect& rect) {
    return rect.y + rect.height / 2;
}

bool isStraight(const tessera_draw::PlacedLine& line) {
    for (const auto& stretch : line.stretches)
        for (const auto& segment : stretch.segments)
            if (segment.isCurve || std::abs(segment.end.y - stretch.start.y) > 1e-6) return false;
    return true;
}

}  // namespace

TEST(DrawPlacement, NothingTakesNoSpace) {
    const Placement placed = Drawing().placed();
    EXPECT_EQ(placed.size, tessera_draw::Size{});
    EXPECT_TRUE(placed.boxes.empty());
}

TEST(DrawPlacement, AnEmptyContainerHasItsLeastSizeOrItsPadding) {
    Drawing drawing;
    const Index small = drawing.container(0);
    const Index large = drawing.container(0);
    drawing.input.boxes[large].size = {200, 100};
    const Placement placed = drawing.placed();
    EXPECT_EQ(placed.boxes[small].width, 20);
    EXPECT_EQ(placed.boxes[small].height, 30);
    EXPECT_EQ(placed.boxes[large].width, 200);
    EXPECT_EQ(placed.boxes[large].height, 100);
}

TEST(DrawPlacement, AChainIsAStraightLineWithEqualGaps) {
    Drawing drawing;
    for (std::int32_t i = 0; i < 5; ++i)
        drawing.box(i * 1000);  // levels without boxes take no space
    for (Index i = 0; i + 1 < 5; ++i)
        drawing.line(i, i + 1);
    const Placement placed = drawing.placed();
    for (Index i = 0; i < 5; ++i)
        EXPECT_EQ(placed.boxes[i], (Rect{i * 140.0, 0, 100, 40}));
    for (const auto& line : placed.lines) {
        EXPECT_TRUE(isStraight(line));
        EXPECT_EQ(line.stretches[0].start.y, 20);
    }
    EXPECT_EQ(placed.size, (tessera_draw::Size{660, 40}));
}

TEST(DrawPlacement, ADiamondIsSymmetric) {
    Drawing drawing;
    const Index top = drawing.box(0);
    const Index left = drawing.box(1);
    const Index right = drawing.box(1);
    const Index bottom = drawing.box(2);
    drawing.line(top, left);
    drawing.line(top, right);
    drawing.line(left, bottom);
    drawing.line(right, bottom);
    const Placement placed = drawing.placed();
    EXPECT_DOUBLE_EQ(middle(placed.boxes[top]), middle(placed.boxes[bottom]));
    EXPECT_DOUBLE_EQ(middle(placed.boxes[top]) * 2, middle(placed.boxes[left]) + middle(placed.boxes[right]));
}

TEST(DrawPlacement, BoxesWithoutLevelsFollowTheirLines) {
    Drawing drawing;
    for (int i = 0; i < 4; ++i)
        drawing.box(-1);
    drawing.line(3, 2);
    drawing.line(2, 1);
    drawing.line(1, 0);
    drawing.line(0, 3);  // back
    const Placement placed = drawing.placed();
    // The cycle is broken at one line; the others point forward.
    int backwards = 0;
    for (const auto& line : drawing.input.lines)
        if (placed.boxes[line.from].x > placed.boxes[line.to].x) ++backwards;
    EXPECT_EQ(backwards, 1);
    EXPECT_EQ(placed.size.width, 4 * 100 + 3 * 40);  // a layer each
}

TEST(DrawPlacement, ALabelStandsInItsLinesMiddle) {
    Drawing drawing;
    const Index from = drawing.box(0);
    const Index label = drawing.box(1);
    const Index to = drawing.box(2);
    drawing.input.boxes[label].isLabel = true;
    drawing.input.boxes[label].size = {60, 20};
    drawing.line(from, to, {label});
    const Placement placed = drawing.placed();
    ASSERT_EQ(placed.lines[0].stretches.size(), 2U);
    EXPECT_TRUE(isStraight(placed.lines[0]));
    EXPECT_EQ(placed.lines[0].stretches[1].start.y, middle(placed.boxes[label]));
    EXPECT_EQ(middle(placed.boxes[label]), middle(placed.boxes[from]));
}

TEST(DrawPlacement, ALineIntoAContainerIsStraight) {
    Drawing drawing;
    const Index outer = drawing.container(1);
    const Index inner = drawing.container(0, outer);
    const Index from = drawing.box(0);
    const Index to = drawing.box(0, inner);
    drawing.line(from, to);
    const Placement placed = drawing.placed();
    EXPECT_TRUE(isStraight(placed.lines[0]));
    EXPECT_EQ(placed.lines[0].stretches[0].segments.size(), 1U);
    EXPECT_EQ(middle(placed.boxes[from]), middle(placed.boxes[to]));
}

// A tree and its mirror image: nothing has to cross.
TEST(DrawPlacement, TreesHaveTheirChildrenSideBySide) {
    Drawing drawing;
    drawing.box(0);
    for (Index i = 1; i < 31; ++i) {
        const Index parent = (i - 1) / 2;
        drawing.box(drawing.input.boxes[parent].level + 1);
        drawing.line(parent, i);
    }
    const Placement placed = drawing.placed();
    for (Index i = 0; i < 15; ++i) {
        const double first = middle(placed.boxes[2 * i + 1]);
        const double second = middle(placed.boxes[2 * i + 2]);
        EXPECT_NEAR(middle(placed.boxes[i]), (first + second) / 2, 0.5) << i;
    }
}

TEST(DrawPlacement, ParallelLinesAndLoopsAreApart) {
    Drawing drawing;
    const Index a = drawing.box(0);
    const Index b = drawing.box(0);
    for (int i = 0; i < 3; ++i)
        drawing.line(a, b);
    drawing.line(a, a);
    const Placement placed = drawing.placed();
    std::vector<double> starts;
    for (const auto& line : placed.lines)
        starts.push_back(line.stretches[0].start.y);
    std::sort(starts.begin(), starts.end());
    EXPECT_EQ(std::adjacent_find(starts.begin(), starts.end()), starts.end());
    EXPECT_GT(placed.size.width, 100);
}

TEST(DrawPlacement, ABoxAtTheBorderStandsThere) {
    Drawing drawing;
    const Index group = drawing.container(0);
    const Index port = drawing.box(0, group);
    drawing.input.boxes[port].border = BoxToPlace::Border::end;
    const Index wide = drawing.box(0, group);
    drawing.input.boxes[wide].size.width = 300;
    drawing.box(5, group);
    const Placement placed = drawing.placed();
    EXPECT_EQ(placed.boxes[port].right(), placed.boxes[group].right() - 10);
}

TEST(DrawPlacement, BoxesWithoutLinesStandSideBySide) {
    Drawing drawing;
    const Index group = drawing.container(0);
    const Index linked = drawing.box(0, group);
    std::vector<Index> loose;
    for (int i = 0; i < 100; ++i)
        loose.push_back(drawing.box(0, group));
    const Index next = drawing.box(1, group);
    drawing.line(linked, next);
    const Placement placed = drawing.placed();
    const Rect& around = placed.boxes[group];
    // 100 boxes of 100 by 40, 24 apart, take 124 by 64 each.
    EXPECT_LT(around.height, 1100);
    EXPECT_LT(around.width, 1300);
    std::size_t columns = 1;
    for (std::size_t i = 1; i < loose.size(); ++i) {
        const Rect& before = placed.boxes[loose[i - 1]];
        const Rect& rect = placed.boxes[loose[i]];
        if (rect.x == before.x) {
            EXPECT_EQ(rect.y, before.bottom() + 24);
            continue;
        }
        ++columns;
        EXPECT_EQ(rect.x, before.right() + 24) << "the next column";
        EXPECT_EQ(rect.y, placed.boxes[loose[0]].y);
    }
    EXPECT_EQ(columns, 8U) << "as high as wide";
    EXPECT_EQ(placed.boxes[linked].right(), placed.boxes[loose.back()].right()) << "where its line leads to";
    EXPECT_GT(placed.boxes[next].x, placed.boxes[linked].right());
}

TEST(DrawPlacement, FewBoxesWithoutLinesStandInOneColumn) {
    Drawing drawing;
    for (int i = 0; i < 7; ++i)
        drawing.box(0);
    EXPECT_EQ(drawing.placed().size.width, 100);
}

// The group reserves space for its title at the side where lines come in, and only there.
TEST(DrawPlacement, LinesPassBesideATitle) {
    Drawing drawing;
    const Index from = drawing.box(0);
    const Index group = drawing.container(1);
    const Index to = drawing.box(0, group);
    drawing.line(from, to);
    const Placement before = drawing.placed();
    ASSERT_TRUE(isStraight(before.lines[0]));
    BoxToPlace& box = drawing.input.boxes[group];
    box.padding.left = 60;
    box.header = {50, 200};
    const Placement placed = drawing.placed();
    EXPECT_TRUE(isStraight(placed.lines[0]));
    EXPECT_GE(placed.lines[0].stretches[0].start.y, placed.boxes[group].y + 200);
    EXPECT_EQ(placed.boxes[to].x, placed.boxes[group].x + 60);
    drawing.input.lines[0] = {to, from, {}};
    drawing.input.boxes[from].level = 2;
    EXPECT_LT(drawing.placed().boxes[group].height, 200) << "the line leaves at the other side";
}

// Lines that come together at a box inside of the group do so beyond the title.
TEST(DrawPlacement, LinesBendBeyondATitle) {
    Drawing drawing;
    const Index from = drawing.box(0);
    const Index group = drawing.container(1);
    const Index to = drawing.box(0, group);
    drawing.input.boxes[group].padding.left = 60;
    drawing.input.boxes[group].header = {50, 200};
    for (int i = 0; i < 12; ++i)
        drawing.line(from, to);
    const Placement placed = drawing.placed();
    const Rect& around = placed.boxes[group];
    std::size_t bent = 0;
    for (const auto& line : placed.lines) {
        double y = line.stretches[0].start.y;
        for (const auto& segment : line.stretches[0].segments) {
            const bool isBeside = segment.end.x > around.x && segment.end.x <= around.x + 50;
            EXPECT_TRUE(!isBeside || segment.end.y >= around.y + 200);
            if (segment.end.x > around.x + 50 && std::abs(segment.end.y - y) > 1) ++bent;
            y = segment.end.y;
        }
    }
    EXPECT_GT(bent, 5U);
}

TEST(DrawPlacement, LinesOfMissingBoxesAreNotDrawn) {
    Drawing drawing;
    drawing.box(0);
    drawing.line(0, nothing);
    drawing.line(7, 0);
    drawing.line(0, 0, {3});
    for (const auto& line : drawing.placed().lines)
        EXPECT_TRUE(line.stretches.empty());
}

TEST(DrawPlacement, ACycleOfGroupsEnds) {
    Drawing drawing;
    drawing.container(0, 1);
    drawing.container(0, 2);
    drawing.container(0, 0);
    drawing.box(0, 1);
    EXPECT_GT(drawing.placed().size.width, 100);
}

TEST(DrawPlacementLarge, DeepNesting) {
    Drawing drawing;
    Index around = nothing;
    std::vector<Index> boxes;
    for (int i = 0; i < effort(20'000); ++i) {
        around = drawing.container(0, around);
        boxes.push_back(drawing.box(1, around));
    }
    for (std::size_t i = 0; i + 1 < boxes.size(); ++i) {
        drawing.line(boxes[i], boxes[i + 1]);
        drawing.line(boxes[0], boxes[i]);  // through all that lies between
    }
    const Placement placed = drawing.placed();
    EXPECT_EQ(placed.lines.back().stretches.size(), 1U);
}

TEST(DrawPlacementLarge, AHub) {
    Drawing drawing;
    drawing.box(0);
    for (Index i = 1; i < effort(30'000U); ++i) {
        drawing.box(1);
        drawing.line(0, i);
    }
    EXPECT_EQ(drawing.placed().lines.back().stretches.size(), 1U);
}

TEST(DrawPlacementLarge, ParallelLines) {
    Drawing drawing;
    drawing.box(0);
    drawing.box(1);
    drawing.box(2);
    for (int i = 0; i < effort(30'000); ++i) {
        drawing.line(0, 1);
        drawing.line(0, 2);
        drawing.line(2, 2);
    }
    const Placement placed = drawing.placed();
    EXPECT_TRUE(std::isfinite(placed.size.height));
}

TEST(DrawPlacementLarge, ManyContainers) {
    Drawing drawing;
    Index before = nothing;
    for (int i = 0; i < effort(100'000); ++i) {
        const Index group = drawing.container(i % 7);
        const Index inside = drawing.box(0, group);
        if (before != nothing) drawing.line(before, inside);
        before = inside;
    }
    EXPECT_GT(drawing.placed().size.height, 0);
}

TEST(DrawPlacementLarge, ALongChainWithLinesOverAllOfIt) {
    Drawing drawing;
    constexpr Index length = effort(50'000U);
    for (Index i = 0; i < length; ++i) {
        drawing.box(static_cast<std::int32_t>(i));
        if (i > 0) drawing.line(i - 1, i);
    }
    for (Index i = 0; i < 500; ++i)
        drawing.line(i, length - 1 - i);
    const Placement placed = drawing.placed();
    EXPECT_EQ(placed.boxes.back().right(), placed.size.width);
    // Those for which the layers have no space go around all of them.
    const auto& farthest = placed.lines.back().stretches[0];
    for (const auto& segment : farthest.segments)
        EXPECT_LE(segment.end.y, placed.size.height);
}
