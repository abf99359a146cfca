// Labels of centers along their lines.
#include "draw/placement/label_sliding.h"

#include <gtest/gtest.h>

#include "tests/draw/placement_checking.h"
#include "tests/support/effort.h"

namespace tessera_draw {
namespace {

class DrawLabelSliding : public testing::Test {
  protected:
    Index box(double width, Index group = nothing) {
        BoxToPlace& made = input.boxes.emplace_back();
        made.level = static_cast<std::int32_t>(input.boxes.size());
        made.group = group;
        made.size = {width, 40};
        return static_cast<Index>(input.boxes.size() - 1);
    }

    // In a column between its ends, which are far apart because a wide box stands in the column of the second one.
    Index label() {
        const Index made = box(60);
        input.boxes[made].isLabel = true;
        input.boxes[made].labelEnd = BoxToPlace::LabelEnd::center;
        return made;
    }

    [[nodiscard]] double middleOf(const Rect& rect) const { return rect.x + rect.width / 2; }

    PlacementInput input;
};

TEST_F(DrawLabelSliding, ALabelMovesToTheMiddleOfItsLine) {
    const Index a = box(100);
    const Index l = label();
    const Index b = box(100);
    const Index wide = box(900);
    input.boxes[wide].level = input.boxes[b].level;
    input.lines.push_back({a, b, {l}});
    const Placement placed = place(input, {});
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    const double middle = (placed.boxes[a].right() + placed.boxes[b].x) / 2;
    EXPECT_NEAR(middleOf(placed.boxes[l]), middle, 1e-6);
    input.boxes[l].labelEnd = BoxToPlace::LabelEnd::none;
    const Placement unmoved = place(input, {});
    EXPECT_NEAR(unmoved.boxes[l].x, unmoved.boxes[a].right() + Spacing{}.besideLabels, 1e-6)
        << "others stay where the columns are";
}

// The line passes the wide box at a distance of 10 pixels, which is less than half of the label's height.
TEST_F(DrawLabelSliding, ALabelStopsAtWhatIsInItsWay) {
    const Index a = box(100);
    const Index l = label();
    const Index wide = box(900);
    const Index b = box(100);
    input.lines.push_back({a, b, {l}});
    const Placement placed = place(input, {});
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    EXPECT_LT(middleOf(placed.boxes[l]), (placed.boxes[a].right() + placed.boxes[b].x) / 2 - 100);
    EXPECT_NEAR(placed.boxes[l].right(), placed.boxes[wide].x - 10, 1e-6);
}

TEST_F(DrawLabelSliding, DeepNestingTakesNoTimeOfItsOwn) {
    const Index a = box(100);
    const Index l = label();
    const Index b = box(100);
    const Index wide = box(900);
    input.boxes[wide].level = input.boxes[b].level;
    input.lines.push_back({a, b, {l}});
    Index around = nothing;
    for (int i = 0; i < tessera_test::effort(20'000); ++i) {
        around = box(100, around);
        input.boxes[around].isContainer = true;
        input.boxes[around].padding = {10, 20, 10, 10};
    }
    EXPECT_EQ(place(input, {}).boxes.size(), input.boxes.size());
}

// The line leaves the box through two labels, turns around and comes back through the third.
TEST_F(DrawLabelSliding, ALineToItsOwnBoxPassesStraightThroughThreeLabels) {
    const Index own = box(100);
    const std::vector<Index> labels{label(), label(), label()};
    input.boxes[labels[0]].labelEnd = BoxToPlace::LabelEnd::from;
    input.boxes[labels[2]].labelEnd = BoxToPlace::LabelEnd::to;
    input.lines.push_back({own, own, labels});
    const Placement placed = place(input, {});
    EXPECT_EQ(tessera_test::findFault(input, placed), "");
    const auto& stretches = placed.lines.front().stretches;
    ASSERT_EQ(stretches.size(), 4U);
    const Rect& middle = placed.boxes[labels[1]];
    EXPECT_NEAR(stretches[1].segments.back().end.x, middle.x, 1e-6);
    EXPECT_NEAR(stretches[2].start.x, middle.right(), 1e-6);
    const Rect& last = placed.boxes[labels[2]];
    EXPECT_NEAR(stretches[2].segments.back().end.x, last.right(), 1e-6);
    EXPECT_NEAR(stretches[3].start.x, last.x, 1e-6);
    EXPECT_NEAR(stretches[3].segments.back().end.x, placed.boxes[own].right(), 1e-6);
}

}  // namespace
}  // namespace tessera_draw
