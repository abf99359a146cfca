// Columns that move together, rows of layers, and parts that no line connects.
#include <gtest/gtest.h>

#include "draw/placement/placement.h"
#include "tests/draw/placement_checking.h"

namespace tessera_draw {
namespace {

class DrawPlacementShape : public testing::Test {
  protected:
    void box(std::int32_t level) {
        BoxToPlace& made = input.boxes.emplace_back();
        made.level = level;
        made.size = {100, 40};
    }

    void line(Index from, Index to) { input.lines.push_back({from, to, {}}); }

    PlacementInput input;
};

// A wide box above two narrow ones: what follows a narrow one is beside it, not beyond the wide one.
TEST_F(DrawPlacementShape, ColumnsMoveTogetherWhereNothingIsBetweenThem) {
    for (const std::int32_t level : {0, 1, 1, 2})
        box(level);
    input.boxes[1].size.width = 500;
    line(0, 1);
    line(0, 2);
    line(2, 3);
    const Placement placed = place(input, {});
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    EXPECT_NEAR(placed.boxes[2].x, 140 + 200, 1e-6) << "in the middle of its column, which is 500 wide";
    EXPECT_NEAR(placed.boxes[3].x, placed.boxes[2].right() + 40, 1e-6);
    EXPECT_NEAR(placed.size.width, 640, 1e-6) << "the wide one ends there";
}

TEST_F(DrawPlacementShape, ColumnsKeepTheirOrderWhereNothingIsBetweenThem) {
    for (const std::int32_t level : {0, 1, 0, 2})
        box(level);
    input.boxes[1].size.width = 500;
    line(0, 1);
    line(2, 3);
    const Placement placed = place(input, {});
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    EXPECT_NEAR(placed.boxes[1].x, 140, 1e-6);
    EXPECT_NEAR(placed.boxes[3].x + 50, 140 + 250 + 40, 1e-6)
        << "its middle is beyond the middle of the column before";
}

// Eight boxes in a chain need 1080 pixels in one row, and about half in two.
TEST_F(DrawPlacementShape, ABandGoesOnInFurtherRows) {
    for (std::int32_t i = 0; i < 8; ++i)
        box(i);
    for (Index i = 0; i + 1 < 8; ++i)
        line(i, i + 1);
    Shape shape;
    shape.above = 8;
    const Placement placed = place(input, {}, shape);
    EXPECT_EQ(tessera_test::findFault(input, placed, true), "");
    EXPECT_LE(placed.size.width, 8 * placed.size.height);
    for (Index i = 1; i < 8; ++i)
        EXPECT_EQ(placed.boxes[i].y > placed.boxes[i - 1].bottom(), placed.boxes[i].x < placed.boxes[i - 1].x)
            << "a box is below the one before it where a row begins: " << i;
    EXPECT_GT(placed.boxes[7].y, placed.boxes[0].bottom() + 24) << "there is a lane between the rows";
    shape.leastSize = 1080;
    EXPECT_EQ(place(input, {}, shape).boxes, place(input, {}).boxes) << "it is not that wide";
}

TEST_F(DrawPlacementShape, UnconnectedPartsStandBesideOneAnother) {
    for (const std::int32_t level : {0, 1, 0, 1, 5})
        box(level);
    line(0, 1);
    line(2, 3);
    Shape shape;
    shape.changesLayers = true;
    const Placement placed = place(input, {}, shape);
    ASSERT_EQ(placed.boxes.size(), 5U);
    // Two rows: the two parts are 240 wide, and a square of all would be 259.
    EXPECT_EQ(placed.boxes[0], (Rect{0, 0, 100, 40}));
    EXPECT_EQ(placed.boxes[1], (Rect{140, 0, 100, 40}));
    EXPECT_EQ(placed.boxes[2], (Rect{0, 80, 100, 40}));
    EXPECT_EQ(placed.boxes[3], (Rect{140, 80, 100, 40}));
    EXPECT_EQ(placed.boxes[4], (Rect{0, 160, 100, 40})) << "a level does not keep it in a column of its own";
}

// Forty boxes around a hub need 2,536 pixels in one column.
TEST_F(DrawPlacementShape, AHighLayerIsDivided) {
    constexpr Index leaves = 40;
    box(0);
    for (Index i = 1; i <= leaves; ++i) {
        box(2);
        const auto label = static_cast<Index>(leaves + i);
        input.lines.push_back({0, i, {label}});
    }
    for (Index i = 0; i < leaves; ++i) {
        box(1);
        input.boxes.back().isLabel = true;
        input.boxes.back().size = {60, 20};
        input.boxes.back().labelEnd = BoxToPlace::LabelEnd::center;
    }
    Shape shape;
    shape.changesLayers = true;
    shape.below = 0.5;
    const Placement placed = place(input, {}, shape);
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    EXPECT_GE(placed.size.width, 0.5 * placed.size.height);
    EXPECT_GT(place(input, {}).size.height, 2'500);
    for (Index i = 1; i <= leaves; ++i) {
        const Rect& label = placed.boxes[leaves + i];
        EXPECT_GT(label.x, placed.boxes[0].right());
        EXPECT_GE(placed.boxes[i].x - label.right(), 24) << "the label stands before its box: " << i;
    }
    shape.leastSize = 2'600;
    EXPECT_EQ(place(input, {}, shape).boxes, place(input, {}).boxes) << "it is not that high";
    shape.leastSize = 0;
    shape.changesLayers = false;
    EXPECT_EQ(place(input, {}, shape).boxes, place(input, {}).boxes);
}

// Boxes that lines enter and leave are divided, too, and what follows them is beyond all of them.
TEST_F(DrawPlacementShape, LinesPassTheOtherPartsOfTheirLayer) {
    constexpr Index between = 30;
    box(0);
    box(2);
    for (Index i = 0; i < between; ++i) {
        box(1);
        line(0, i + 2);
        line(i + 2, 1);
    }
    Shape shape;
    shape.changesLayers = true;
    shape.below = 0.5;
    const Placement placed = place(input, {}, shape);
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    EXPECT_LT(placed.size.height, 0.6 * place(input, {}).size.height);
    for (Index i = 0; i < between; ++i)
        EXPECT_LT(placed.boxes[i + 2].right(), placed.boxes[1].x);
}

}  // namespace
}  // namespace tessera_draw
