#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "tests/draw/placement_checking.h"
#include "tests/support/effort.h"

using tessera_draw::place;
using tessera_draw::Placement;
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

TEST(DrawPlacementProperties, TheSameInputGivesTheSameResult) {
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

// At whatever moment it is cancelled, the drawing is complete or absent.
TEST(DrawPlacementProperties, StopsWhenItIsCancelled) {
    std::size_t stopped = 0;
    for (unsigned seed = 0; seed < effort(100U); ++seed) {
        const PlacementInput input = randomDrawing(seed);
        const auto whole = place(input, {});
        tessera_support::CancelSource source;
        ASSERT_EQ(place(input, {}, {}, source.token()).boxes, whole.boxes);
        Placement placed;
        {
            const std::jthread work([&] { placed = place(input, {}, {}, source.token()); });
            std::this_thread::sleep_for(std::chrono::microseconds(seed * 7 % 300));
            source.cancel();
        }
        if (placed.boxes.empty()) ++stopped;
        ASSERT_TRUE(placed.boxes == whole.boxes || (placed.boxes.empty() && placed.lines.empty())) << seed;
        ASSERT_TRUE(place(input, {}, {}, source.token()).boxes.empty()) << seed;
    }
    RecordProperty("stopped", static_cast<int>(stopped));
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
