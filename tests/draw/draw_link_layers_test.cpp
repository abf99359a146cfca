// Layers that follow the lines where the levels of a container contradict them.
#include "draw/placement/link_layers.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "tests/draw/placement_checking.h"

namespace tessera_draw {
namespace {

using LabelEnd = BoxToPlace::LabelEnd;

class DrawLinkLayers : public testing::Test {
  protected:
    Index box(std::int32_t level, Index group = nothing) {
        BoxToPlace& made = input.boxes.emplace_back();
        made.level = level;
        made.group = group;
        made.size = {80, 40};
        return static_cast<Index>(input.boxes.size() - 1);
    }

    Index group(std::int32_t level, Index around = nothing) {
        const Index made = box(level, around);
        input.boxes[made].isContainer = true;
        return made;
    }

    Index label(LabelEnd end, std::int32_t level = -1, Index around = nothing) {
        const Index made = box(level, around);
        input.boxes[made].isLabel = true;
        input.boxes[made].labelEnd = end;
        return made;
    }

    void line(Index from, Index to, std::vector<Index> through = {}) {
        input.lines.push_back({from, to, std::move(through)});
    }

    [[nodiscard]] std::vector<std::int32_t> levels(std::initializer_list<Index> boxes) const {
        std::vector<std::int32_t> result;
        for (const Index each : boxes)
            result.push_back(input.boxes[each].level);
        return result;
    }

    PlacementInput input;
};

using Levels = std::vector<std::int32_t>;

TEST_F(DrawLinkLayers, LevelsThatAgreeStay) {
    const Index a = box(0);
    const Index b = box(5);
    const Index l = label(LabelEnd::from, 2);
    const Index alone = box(-1);
    line(a, b, {l});
    layerByLines(input);
    EXPECT_EQ(levels({a, l, b, alone}), (Levels{0, 2, 5, -1}));
}

TEST_F(DrawLinkLayers, ContradictedLevelsAreReplaced) {
    const Index a = box(0);
    const Index b = box(0);
    const Index c = box(0);
    line(a, b);
    line(b, c);
    line(c, a);
    layerByLines(input);
    EXPECT_EQ(levels({a, b, c}), (Levels{0, 1, 2}));
}

TEST_F(DrawLinkLayers, OnlyTheGroupOfTheContradictionChanges) {
    const Index outer = group(7);
    const Index beside = box(9);
    const Index a = box(3, outer);
    const Index b = box(3, outer);
    line(a, b);
    line(outer, beside);
    layerByLines(input);
    EXPECT_EQ(levels({outer, beside, a, b}), (Levels{7, 9, 0, 1}));
}

TEST_F(DrawLinkLayers, LabelsOfEndsNeedNoColumn) {
    const Index a = box(0);
    const Index b = box(0);
    const Index c = box(0);
    const Index d = box(0);
    line(a, b);
    line(b, c);
    line(c, d);
    const Index from = label(LabelEnd::from);
    const Index center = label(LabelEnd::none);
    const Index to = label(LabelEnd::to);
    line(a, d, {from, center, to});
    const Index back = label(LabelEnd::to);
    line(d, a, {back});
    layerByLines(input);
    EXPECT_EQ(levels({a, b, c, d}), (Levels{0, 1, 2, 3}));
    EXPECT_EQ(input.boxes[center].level, 1);
    const Placement placement = place(input, Spacing{});
    EXPECT_EQ(tessera_test::findFault(input, placement), "");
    EXPECT_EQ(placement.boxes[from].x, placement.boxes[a].right() + 24);
    EXPECT_EQ(placement.boxes[back].x, placement.boxes[from].x) << "the line runs back to a";
    EXPECT_EQ(placement.boxes[to].right(), placement.boxes[d].x - 24);
    EXPECT_GE(placement.boxes[a].height, 60) << "two labels fit beside it";
}

// Whatever group the levels had put them in, and whether or not these contradict anything.
TEST_F(DrawLinkLayers, LabelsOfALineIntoAGroupAreInside) {
    const Index outer = group(0);
    const Index inner = group(0, outer);
    const Index a = box(0, inner);
    const Index from = label(LabelEnd::from, 4);
    const Index center = label(LabelEnd::none, 4);
    const Index to = label(LabelEnd::to, 4);
    line(outer, a, {from, center, to});
    layerByLines(input);
    EXPECT_EQ(input.boxes[from].group, outer);
    EXPECT_EQ(input.boxes[center].group, outer);
    EXPECT_EQ(input.boxes[to].group, inner);
    EXPECT_EQ(levels({outer}), Levels{0});
}

// A container that gets a label needs a level for it.
TEST_F(DrawLinkLayers, AContainerThatGetsALabelIsLayeredAgain) {
    const Index first = group(0);
    const Index second = group(8);
    const Index a = box(0, first);
    const Index b = box(0, second);
    const Index c = box(0, second);
    line(b, c);
    const Index to = label(LabelEnd::to, 4);
    const Index late = label(LabelEnd::from, 4);
    const Index center = label(LabelEnd::none, 3);
    line(a, c, {center, late, to});
    layerByLines(input);
    EXPECT_EQ(levels({b, c}), (Levels{0, 1})) << "they contradicted the line between them";
    EXPECT_EQ(input.boxes[to].group, second);
    EXPECT_EQ(input.boxes[late].group, first) << "it is not the first one of its line";
    EXPECT_EQ(input.boxes[late].level, 1);
    // The top level keeps its levels, and the label that stays there its own.
    EXPECT_EQ(levels({first, center, second}), (Levels{0, 3, 8}));
}

TEST_F(DrawLinkLayers, LinesOverABorderDrawTheirEndsToIt) {
    const Index outer = group(0);
    const Index beside = box(0);
    const Index a = box(0, outer);
    const Index b = box(0, outer);
    const Index c = box(0, outer);
    const Index leaving = box(0, outer);
    line(a, b);
    line(b, c);
    const Index at = label(LabelEnd::from);
    line(leaving, beside, {at});
    layerByLines(input);
    EXPECT_EQ(levels({a, b, c}), (Levels{0, 1, 2}));
    // In the last column, with its label beside it.
    EXPECT_EQ(levels({leaving}), (Levels{2}));
    EXPECT_EQ(input.boxes[at].group, outer);
    EXPECT_EQ(levels({outer, beside}), (Levels{0, 1}));
}

// In a column of its own the line would turn back inside it.
TEST_F(DrawLinkLayers, ALineToItselfHasItsLabelBesideItsBox) {
    const Index a = box(0);
    const Index b = box(0);
    line(a, b);
    const Index l = label(LabelEnd::none);
    line(a, a, {l});
    layerByLines(input);
    EXPECT_EQ(levels({a, b}), (Levels{0, 1}));
    EXPECT_EQ(input.boxes[l].labelEnd, LabelEnd::from);
}

// Lines without ends, groups in a ring: nothing is out of range, and the placement is sound.
TEST_F(DrawLinkLayers, AnyInputIsAccepted) {
    const Index a = group(0, 1);
    const Index b = group(0, 0);
    line(a, b);
    line(nothing, a);
    line(b, 99);
    line(a, b, {99});
    line(a, a);
    layerByLines(input);
    layerByLines(input);
    EXPECT_EQ(place(input, Spacing{}).boxes.size(), 2U);
}

TEST_F(DrawLinkLayers, RandomInputsArePlacedSoundly) {
    for (unsigned seed = 0; seed < 50; ++seed) {
        input = tessera_test::randomDrawing(seed);
        layerByLines(input);
        EXPECT_EQ(tessera_test::findFault(input, place(input, Spacing{})), "") << seed;
        Shape shape;
        shape.above = 0.5;
        EXPECT_EQ(tessera_test::findFault(input, place(input, Spacing{}, shape), true), "") << seed;
        shape = {};
        shape.changesLayers = true;
        EXPECT_EQ(tessera_test::findFault(input, place(input, Spacing{}, shape), true), "") << seed;
        shape.below = 20;
        EXPECT_EQ(tessera_test::findFault(input, place(input, Spacing{}, shape), true), "") << seed;
    }
}

}  // namespace
}  // namespace tessera_draw
