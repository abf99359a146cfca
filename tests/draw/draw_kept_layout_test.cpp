// Layouts that are saved, read and kept: what was there keeps its order and its place.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "draw/saved_layout.h"
#include "draw/scene.h"
#include "tests/support/drawn_diagram.h"
#include "tests/support/effort.h"
#include "tests/support/scene_picture.h"

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;

std::string saved(const LayoutPointer& layout) {
    tessera_test::StringOutput output;
    EXPECT_TRUE(writeLayout(*layout, output));
    return output.text;
}

SavedLayout readBack(const std::string& text) {
    SavedLayout layout;
    std::string error;
    EXPECT_TRUE(readLayout(text, layout, error)) << error;
    return layout;
}

LayoutPointer laidOut(const variant_bag_t& bag, Direction direction, const SavedLayout* kept = nullptr) {
    LayoutOptions options;
    options.direction = direction;
    options.kept = kept;
    options.isSaved = true;
    return layOut(bag, options);
}

std::string pictureOf(const LayoutPointer& layout, const variant_bag_t& bag) {
    std::string all;
    for (const BoxShape& box : fill(layout, bag).boxes)
        all += std::to_string(box.rect.x) + " " + std::to_string(box.rect.y) + " " +
               std::to_string(box.rect.width) + " " + std::to_string(box.rect.height) + "\n";
    return all;
}

constexpr Direction directions[] = {Direction::leftToRight, Direction::topToBottom};

TEST(DrawKeptLayout, ADiagramThatHasNotChangedIsDrawnAsBefore) {
    for (const Direction direction : directions)
        for (std::uint64_t seed = 0; seed < tessera_test::effort(100U); ++seed) {
            const variant_bag_t bag = tessera_test::randomDrawing(seed);
            const LayoutPointer before = laidOut(bag, direction);
            const SavedLayout kept = readBack(saved(before));
            // The direction is that of the saved layout.
            const LayoutPointer after = laidOut(bag, Direction::automatic, &kept);
            EXPECT_EQ(pictureOf(after, bag), pictureOf(before, bag)) << "seed " << seed;
        }
}

// What a layout saves is never too far away. One place that is does not move the others.
TEST(DrawKeptLayout, PlacesFarOutsideOfTheDrawingAreRemoved) {
    for (const Direction direction : directions)
        for (std::uint64_t seed = 0; seed < tessera_test::effort(100U); ++seed) {
            SavedLayout kept = readBack(saved(laidOut(tessera_test::randomDrawing(seed), direction)));
            EXPECT_EQ(removeFarPlaces(kept), 0U) << "seed " << seed;
        }
    for (const double far : {1e6, -1e6, std::nan(""), std::numeric_limits<double>::infinity()})
        for (double SavedPoint::*const member : {&SavedPoint::at, &SavedPoint::size}) {
            const variant_bag_t bag = tessera_test::randomDrawing(1);
            const LayoutPointer before = laidOut(bag, Direction::leftToRight);
            SavedLayout kept = readBack(saved(before));
            const auto layer =
                std::find_if(kept.groups.front().layers.begin(), kept.groups.front().layers.end(),
                             [](const SavedLayer& each) { return !each.points.empty(); });
            ASSERT_NE(layer, kept.groups.front().layers.end());
            layer->points.front().*member = far;
            EXPECT_EQ(removeFarPlaces(kept), 1U);
            kept.groups.push_back({{"other", 0}, false, far, {}});
            EXPECT_EQ(removeFarPlaces(kept), 1U);
            const LayoutPointer after = laidOut(bag, Direction::leftToRight, &kept);
            EXPECT_LT(after->size().height, before->size().height + 2000) << far;
        }
}

// Many ids of random diagrams are the same, but stand for something else.
TEST(DrawKeptLayout, ALayoutOfAnotherDiagramGivesASoundDrawing) {
    for (const Direction direction : directions)
        for (std::uint64_t seed = 0; seed < tessera_test::effort(150U); ++seed) {
            const SavedLayout kept =
                readBack(saved(laidOut(tessera_test::randomDrawing(seed + 1), direction)));
            const variant_bag_t bag = tessera_test::randomDrawing(seed);
            const tessera_test::Faults faults =
                tessera_test::checkScene(bag, fill(laidOut(bag, direction, &kept), bag));
            EXPECT_EQ(faults.total(), 0U) << "seed " << seed << ": " << faults;
        }
}

// Three sources, each linked with all of three targets.
struct Mesh : tessera_test::DrawnBag {
    Mesh() {
        for (const char* source : {"a", "b", "c"})
            node(source, source, 0);
        for (const char* target : {"x", "y", "z"})
            node(target, target, 1);
        for (const std::string source : {"a", "b", "c"})
            for (const std::string target : {"x", "y", "z"})
                link(source + target, source, target, "forward");
    }
};

TEST(DrawKeptLayout, WhatIsNewComesBetweenWhatWasThere) {
    const Mesh before;
    const SavedLayout kept = readBack(saved(laidOut(before.bag, Direction::leftToRight)));
    Mesh after;
    after.node("new", "new", 1);
    after.link("new1", "a", "new", "forward");
    after.link("new2", "new", "x", "back");
    const LayoutPointer first = laidOut(before.bag, Direction::leftToRight);
    const LayoutPointer second = laidOut(after.bag, Direction::leftToRight, &kept);
    ASSERT_TRUE(second->boxOf("new"));
    for (const char* upper : {"a", "b", "c", "x", "y", "z"})
        for (const char* lower : {"a", "b", "c", "x", "y", "z"}) {
            if (first->boxOf(upper)->x != first->boxOf(lower)->x) continue;
            EXPECT_EQ(first->boxOf(upper)->y < first->boxOf(lower)->y,
                      second->boxOf(upper)->y < second->boxOf(lower)->y)
                << upper << " and " << lower;
        }
    EXPECT_EQ(tessera_test::checkScene(after.bag, fill(second, after.bag)).total(), 0U);
}

TEST(DrawKeptLayout, ANewNodeAtTheEndMovesNothingElse) {
    tessera_test::DrawnBag before;
    tessera_test::DrawnBag after;
    for (tessera_test::DrawnBag* each : {&before, &after}) {
        each->node("a", "A", 0);
        each->node("b", "B", 1);
        each->link("ab", "a", "b", "forward");
    }
    after.node("c", "C", 2);
    after.link("bc", "b", "c", "forward");
    const LayoutPointer first = laidOut(before.bag, Direction::leftToRight);
    const SavedLayout kept = readBack(saved(first));
    const LayoutPointer second = laidOut(after.bag, Direction::leftToRight, &kept);
    EXPECT_EQ(first->boxOf("a"), second->boxOf("a"));
    EXPECT_EQ(first->boxOf("b"), second->boxOf("b"));
    EXPECT_GT(second->boxOf("c")->x, second->boxOf("b")->right());
}

// A label between neighbours gets a layer of its own; so it is not beside one of them.
TEST(DrawKeptLayout, ANewLabelStandsBetweenItsEnds) {
    tessera_test::DrawnBag before;
    before.node("a", "A", 0);
    before.node("b", "B", 1);
    before.link("ab", "a", "b", "forward");
    const SavedLayout kept = readBack(saved(laidOut(before.bag, Direction::leftToRight)));
    tessera_test::DrawnBag after;
    after.node("a", "A", 0);
    after.row(after.node("ab_label", "", 1, "label"), "Rate", "17 MB/s");
    after.node("b", "B", 2);
    after.link("ab", "a", "ab_label", "none");
    after.link("ab", "ab_label", "b", "forward");
    const LayoutPointer layout = laidOut(after.bag, Direction::leftToRight, &kept);
    ASSERT_TRUE(layout->boxOf("ab_label"));
    EXPECT_LT(layout->boxOf("a")->right(), layout->boxOf("ab_label")->x);
    EXPECT_LT(layout->boxOf("ab_label")->right(), layout->boxOf("b")->x);
}

std::string errorOf(std::string_view text) {
    SavedLayout layout;
    std::string error;
    return readLayout(text, layout, error) ? "" : error;
}

TEST(DrawKeptLayout, OtherTextsAreRefused) {
    const std::string head = R"({"kind":"tessera layout","version":1,"direction":"lr")";
    EXPECT_EQ(errorOf(head + R"(,"groups":[]})"), "");
    EXPECT_EQ(errorOf(head + R"(,"groups":[{"at":0,"layers":[]}],"later":true})"), "")
        << "others are ignored";
    for (const std::string_view text :
         {"", "{}", "[]", "17", "null", "\xFF", R"({"kind":"tessera layout"})",
          R"({"kind":"tessera layout","version":2,"direction":"lr","groups":[]})",
          R"({"kind":"tessera layout","version":1,"direction":"up","groups":[]})"})
        EXPECT_NE(errorOf(text), "") << text;
    for (const std::string_view groups :
         {"{}", "[1]", "[{}]", R"([{"at":0}])", R"([{"at":"0","layers":[]}])",
          R"([{"group":1,"at":0,"layers":[]}])", R"([{"at":0,"layers":[{}]}])",
          R"([{"at":0,"layers":[{"points":[{}]}]}])",
          R"([{"at":0,"layers":[{"points":[{"node":"a","at":1e300,"size":1}]}]}])",
          R"([{"at":0,"layers":[{"points":[{"node":"a","copy":-1,"at":1,"size":1}]}]}])",
          R"([{"at":0,"layers":[{"points":[{"link":"a","part":1.5,"at":1,"size":1}]}]}])"})
        EXPECT_NE(errorOf(head + ",\"groups\":" + std::string(groups) + "}"), "") << groups;
    EXPECT_NE(errorOf(std::string(2'000'000, '[')), "") << "any depth";
}

// Layers that contradict each other, and lengths that make no sense, still give a sound drawing.
TEST(DrawKeptLayout, HostileLayoutsDoNoHarm) {
    const Mesh mesh;
    for (
        const std::string_view groups :
        {R"([{"at":-1e9,"layers":[]}])", R"([{"at":0,"layers":[{"points":[]},{"points":[]}]}])",
         R"([{"at":1e9,"layers":[{"points":[{"node":"a","at":1e9,"size":-1e9},{"node":"a","at":0,"size":0}]}]}])",
         R"([{"at":0,"layers":[{"points":[]},{"rowEnd":true,"points":[{"node":"a","at":5,"size":1}]},
              {"rowEnd":true,"points":[{"node":"a","at":5,"size":1},{"node":"x","at":5,"size":1}]},{"points":[]}]}])",
         R"([{"group":"a","at":0,"layers":[{"points":[{"node":"a","at":5,"size":1}]}]},
              {"at":0,"layers":[{"points":[]},{"points":[{"node":"z","at":5,"size":1},{"link":"ax","at":5,"size":1}]},
              {"points":[{"node":"b","at":5,"size":1},{"link":"ax","part":4000000000,"at":5,"size":1}]},{"points":[]}]}])"}) {
        const SavedLayout kept = readBack(
            R"({"kind":"tessera layout","version":1,"direction":"lr","groups":)" + std::string(groups) + "}");
        const LayoutPointer layout = laidOut(mesh.bag, Direction::leftToRight, &kept);
        const tessera_test::Faults faults = tessera_test::checkScene(mesh.bag, fill(layout, mesh.bag));
        EXPECT_EQ(faults.total(), 0U) << groups << faults;
    }
}

}  // namespace
}  // namespace tessera_draw
