#include "draw/placement/untwisting.h"

#include <gtest/gtest.h>

#include <utility>

#include "draw/placement/placement.h"
#include "tests/draw/placement_checking.h"

namespace tessera_draw {
namespace {

// Two lines that pass the same layers, of which an earlier placement says that they cross there and back.
class DrawUntwisting : public testing::Test {
  protected:
    DrawUntwisting() { input.wantsLayers = true; }

    Index box(std::int32_t level, Index group = nothing) {
        BoxToPlace& made = input.boxes.emplace_back();
        made.level = level;
        made.group = group;
        made.size = {100, 40};
        return static_cast<Index>(input.boxes.size()) - 1;
    }

    // Exchanges the places of the two lines in all layers where both have one.
    void twist(KeptLayers& layers) const {
        for (ContainerLayers& container : layers)
            for (KeptLayer& layer : container.layers) {
                std::vector<LayerPoint*> points;
                for (LayerPoint& point : layer.points)
                    if (point.box == nothing) points.push_back(&point);
                if (points.size() == 2) std::swap(points[0]->top, points[1]->top);
            }
    }

    void expectStraight() {
        const Placement first = place(input, {});
        ASSERT_EQ(tessera_test::findFault(input, first), "");
        input.kept = first.layers;
        twist(input.kept);
        const Placement placed = place(input, {});
        ASSERT_EQ(tessera_test::findFault(input, placed), "");
        for (const PlacedLine& line : placed.lines)
            for (const PlacedLine::Stretch& stretch : line.stretches)
                for (const Segment& segment : stretch.segments)
                    EXPECT_NEAR(segment.end.y, stretch.start.y, 10)
                        << "a line that leaves its side of the other";
    }

    PlacementInput input;
};

TEST_F(DrawUntwisting, LinesInTheSameLayers) {
    const Index a = box(0);
    const Index b = box(0);
    const Index c = box(3);
    const Index d = box(3);
    box(1);
    box(2);
    input.lines = {{a, c, {}}, {b, d, {}}};
    expectStraight();
}

TEST_F(DrawUntwisting, LinesIntoAGroup) {
    const Index a = box(0);
    const Index b = box(0);
    const Index group = box(2);
    input.boxes[group].isContainer = true;
    input.boxes[group].padding = {20, 20, 20, 20};
    const Index c = box(1, group);
    const Index d = box(1, group);
    box(0, group);
    box(1);
    input.lines = {{a, c, {}}, {b, d, {}}};
    expectStraight();
}

}  // namespace
}  // namespace tessera_draw
