#include <gtest/gtest.h>

#include "tests/draw/placement_checking.h"
#include "tests/support/effort.h"

using tessera_draw::place;
using tessera_draw::PlacementInput;
using tessera_test::effort;
using tessera_test::findFault;
using tessera_test::randomDrawing;

TEST(DrawPlacementProperties, HoldOnRandomDrawings) {
    for (unsigned seed = 0; seed < effort(1000U); ++seed) {
        const PlacementInput input = randomDrawing(seed);
        ASSERT_EQ(findFault(input, place(input, {})), "") << "seed " << seed;
    }
}

TEST(DrawPlacementProperties, TheSameInputGivesTheSameAnswer) {
    for (unsigned seed = 0; seed < effort(200U); ++seed) {
        const PlacementInput input = randomDrawing(seed);
        const auto first = place(input, {});
        (void)place(randomDrawing(seed + 1), {});
        const auto second = place(input, {});
        ASSERT_EQ(first.boxes, second.boxes);
        ASSERT_EQ(first.size, second.size);
        for (std::size_t i = 0; i < first.lines.size(); ++i) {
            ASSERT_EQ(first.lines[i].stretches.size(), second.lines[i].stretches.size());
            for (std::size_t k = 0; k < first.lines[i].stretches.size(); ++k)
                ASSERT_EQ(first.lines[i].stretches[k].start, second.lines[i].stretches[k].start);
        }
    }
}

// Whenever it is stopped; and being asked changes nothing.
TEST(DrawPlacementProperties, StopsWhenItIsTold) {
    for (unsigned seed = 0; seed < effort(100U); ++seed) {
        PlacementInput input = randomDrawing(seed);
        const auto whole = place(input, {});
        int asked = 0;
        input.isStopped = [&] {
            ++asked;
            return false;
        };
        ASSERT_EQ(place(input, {}).boxes, whole.boxes);
        ASSERT_GT(asked, 4);
        const int all = asked;
        for (const int last : {1, 2, all / 2, all - 1, all}) {
            asked = 0;
            input.isStopped = [&] { return ++asked >= last; };
            const auto stopped = place(input, {});
            ASSERT_TRUE(stopped.boxes.empty() && stopped.lines.empty()) << seed;
            ASSERT_EQ(asked, last) << "asked again";
        }
    }
}

// The check itself must see what is wrong.
TEST(DrawPlacementProperties, AFaultIsFound) {
    const PlacementInput input = randomDrawing(5);
    const auto good = place(input, {});
    ASSERT_GE(input.boxes.size(), 3U);
    auto moved = good;
    moved.boxes[0].x += good.size.width;
    EXPECT_NE(findFault(input, moved), "");
    auto onOneAnother = good;
    for (auto& box : onOneAnother.boxes)
        box.x = box.y = 0;
    EXPECT_NE(findFault(input, onOneAnother), "");
    auto torn = good;
    for (auto& line : torn.lines)
        for (auto& stretch : line.stretches)
            stretch.start.y -= 1000;
    EXPECT_NE(findFault(input, torn), "");
}
