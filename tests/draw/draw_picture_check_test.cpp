// The checker of drawings: it finds each fault, and none in real drawings.
#include "tests/support/picture_check.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "draw/scene/scene_input.h"
#include "host/text/json_reader.h"
#include "tests/support/drawn_diagram.h"
#include "tests/support/effort.h"
#include "tests/support/scene_picture.h"

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;
using tessera_test::checkPicture;
using tessera_test::checkScene;
using tessera_test::Faults;
using tessera_test::Picture;

PlacedLine::Stretch straight(Point start, Point end) {
    return {start, {{false, {}, {}, end}}};
}

// A container (0) with a card (1), beside it a card (2) and a label (3) on the line from 1 to 2.
Picture soundPicture() {
    Picture picture;
    picture.size = {400, 200};
    picture.headLength = 9;
    picture.boxes = {{{20, 20, 120, 160}, nothing, true, false, {10, 30, 10, 10}, "group"},
                     {{40, 60, 80, 40}, 0, false, false, {}, "inner"},
                     {{300, 60, 80, 40}, nothing, false, false, {}, "outer"},
                     {{180, 65, 60, 30}, nothing, false, true, {}, "label"}};
    Picture::Line line;
    line.from = 1;
    line.to = 2;
    line.through = {3};
    line.stretches = {straight({120, 80}, {180, 80}), straight({240, 80}, {293, 80})};
    line.wantsToHead = true;
    line.toHead = {{300, 80}, {1, 0}};
    line.name = "line";
    picture.lines = {line};
    picture.texts = {{{45, 65, 60, 12}, 1, "inner"}, {{25, 22, 60, 12}, 0, "group"}};
    return picture;
}

std::string faultsOf(const Picture& picture) {
    const Faults faults = checkPicture(picture);
    std::string text;
    const auto add = [&](const char* name, std::size_t count) {
        if (count > 0) text += (text.empty() ? "" : " ") + std::string(name) + std::to_string(count);
    };
    add("boxes", faults.boxes);
    add("labels", faults.labels);
    add("lines", faults.lines);
    add("torn", faults.torn);
    add("heads", faults.heads);
    add("texts", faults.texts);
    add("cut", faults.cut);
    add("behind", faults.behind);
    add("missing", faults.missing);
    return text;
}

TEST(DrawPictureCheck, ASoundPictureHasNoFault) {
    EXPECT_EQ(faultsOf(soundPicture()), "");
    EXPECT_EQ(faultsOf({}), "");
}

TEST(DrawPictureCheck, BoxesThatOverlapAreFound) {
    Picture picture = soundPicture();
    picture.boxes.push_back({{360, 90, 30, 30}, nothing, false, false, {}, "new"});
    EXPECT_EQ(faultsOf(picture), "boxes1");
    picture.boxes.back().rect = {360, 100, 30, 30};  // touches
    EXPECT_EQ(faultsOf(picture), "");
    picture.boxes.back().rect = {310, 70, 10, 10};  // inside the other
    EXPECT_EQ(faultsOf(picture), "boxes1");
}

TEST(DrawPictureCheck, BoxesOutsideTheirContainerAreFound) {
    Picture picture = soundPicture();
    picture.boxes[1].rect = {40, 45, 80, 40};  // in the space of the group's title
    picture.texts.clear();
    EXPECT_EQ(faultsOf(picture), "boxes1");
    picture = soundPicture();
    picture.size.width = 379;
    EXPECT_EQ(faultsOf(picture), "boxes1");
}

TEST(DrawPictureCheck, LabelsThatOverlapAreFoundInWhateverGroups) {
    Picture picture = soundPicture();
    picture.boxes.push_back({{130, 60, 80, 10}, 0, false, true, {}, "new"});
    EXPECT_EQ(faultsOf(picture), "boxes1 labels1") << "it leaves its container, too";
    picture.boxes.back().rect = {60, 110, 40, 20};
    EXPECT_EQ(faultsOf(picture), "");
}

TEST(DrawPictureCheck, LinesThroughForeignBoxesAreFound) {
    Picture picture = soundPicture();
    picture.boxes.push_back({{260, 70, 10, 30}, nothing, false, false, {}, "new"});
    EXPECT_EQ(faultsOf(picture), "lines1");
    picture.boxes.back().rect = {260, 81, 10, 30};
    EXPECT_EQ(faultsOf(picture), "") << "it passes by";
    picture.boxes.back().rect = {260, 70, 10, 30};
    picture.boxes.back().isContainer = true;
    EXPECT_EQ(faultsOf(picture), "lines1") << "a group of others";
    picture.boxes.back().rect = {250, 40, 140, 80};
    picture.boxes[2].container = 4;
    EXPECT_EQ(faultsOf(picture), "") << "the group of its own end";
    picture.boxes[2].container = nothing;
    picture.boxes[4].rect = {170, 40, 100, 80};
    picture.boxes[3].container = 4;
    EXPECT_EQ(faultsOf(picture), "") << "the group that its label is in";
}

TEST(DrawPictureCheck, CurvesThroughForeignBoxesAreFound) {
    Picture picture = soundPicture();
    picture.lines[0].stretches[1] = {{240, 80}, {{true, {270, 160}, {270, 160}, {293, 80}}}};
    EXPECT_EQ(faultsOf(picture), "");
    picture.boxes.push_back({{262, 120, 10, 40}, nothing, false, false, {}, "new"});
    EXPECT_EQ(faultsOf(picture), "lines1");
    picture.boxes.back().rect = {262, 145, 10, 40};
    EXPECT_EQ(faultsOf(picture), "") << "below the curve, above its control points";
}

TEST(DrawPictureCheck, TornLinesAreFound) {
    Picture picture = soundPicture();
    picture.lines[0].stretches[0].segments.back().end = {175, 80};
    EXPECT_EQ(faultsOf(picture), "torn1");
    picture = soundPicture();
    picture.lines[0].stretches[0].start = {119, 80};
    EXPECT_EQ(faultsOf(picture), "torn1") << "it begins inside its box";
    picture = soundPicture();
    picture.lines[0].stretches.pop_back();
    picture.lines[0].wantsToHead = false;
    picture.lines[0].toHead.reset();
    EXPECT_EQ(faultsOf(picture), "torn1") << "a stretch is missing";
    picture = soundPicture();
    picture.lines[0].stretches[1].segments.back().end = {290, 80};
    EXPECT_EQ(faultsOf(picture), "torn1") << "the head does not reach it";
    picture = soundPicture();
    picture.lines[0].through.clear();
    picture.lines[0].stretches = {straight({120, 80}, {300, 80})};
    EXPECT_EQ(faultsOf(picture), "lines1") << "past a label that is not its own";
}

TEST(DrawPictureCheck, WrongHeadsAreFound) {
    Picture picture = soundPicture();
    picture.lines[0].toHead->direction = {-1, 0};
    EXPECT_EQ(faultsOf(picture), "heads1");
    picture = soundPicture();
    picture.lines[0].wantsToHead = false;
    EXPECT_EQ(faultsOf(picture), "heads1") << "one too many";
    picture = soundPicture();
    picture.lines[0].wantsFromHead = true;
    EXPECT_EQ(faultsOf(picture), "heads1") << "one is missing";
    picture.lines[0].fromHead = picture.lines[0].toHead;
    EXPECT_EQ(faultsOf(picture), "torn1 heads1") << "both at one end";
    picture.lines[0].fromHead = {{120, 80}, {-1, 0}};
    picture.lines[0].stretches[0].start = {127, 80};
    EXPECT_EQ(faultsOf(picture), "");
}

// A line from a group to its own member starts at the border and runs inwards.
TEST(DrawPictureCheck, HeadsAtAGroupPointOutwardsFromWithin) {
    Picture picture = soundPicture();
    Picture::Line& line = picture.lines[0];
    line.from = 1;
    line.to = 0;
    line.through.clear();
    line.stretches = {straight({120, 80}, {133, 80})};
    line.toHead = {{140, 80}, {1, 0}};
    EXPECT_EQ(faultsOf(picture), "");
    line.toHead->direction = {-1, 0};
    EXPECT_EQ(faultsOf(picture), "heads1");
}

TEST(DrawPictureCheck, TextsOutsideTheirBoxesAreFound) {
    Picture picture = soundPicture();
    picture.texts[0].area.width = 90;
    EXPECT_EQ(faultsOf(picture), "texts1");
    picture = soundPicture();
    picture.texts[1].area.y = 55;
    EXPECT_EQ(faultsOf(picture), "texts1") << "a card covers it";
    picture = soundPicture();
    picture.texts.push_back({{10, 190, 50, 12}, nothing, "legend"});
    EXPECT_EQ(faultsOf(picture), "texts1") << "beyond the picture";
}

TEST(DrawPictureCheck, TextsThatAreCutThoughTheyHaveRoomAreFound) {
    Picture picture = soundPicture();
    picture.texts[0].whole = 70;
    picture.texts[0].room = 69;
    EXPECT_EQ(faultsOf(picture), "");
    picture.texts[0].room = 70;
    EXPECT_EQ(faultsOf(picture), "cut1");

    tessera_test::DrawnBag drawn;
    drawn.node("a", "A name that is much longer than any box of a node can be drawn", 0);
    Scene scene = makeScene(drawn.bag, {});
    EXPECT_EQ(checkScene(drawn.bag, scene).cut, 0U);
    for (BoxShape& box : scene.boxes)
        if (box.role == BoxRole::card) box.rect.width *= 3;
    EXPECT_EQ(checkScene(drawn.bag, scene).cut, 1U) << "in a wider box it would have room";
}

TEST(DrawPictureCheck, LinesBehindTextsOfGroupsAreFound) {
    Picture picture = soundPicture();
    picture.texts.push_back({{250, 74, 30, 12}, nothing, "free"});
    EXPECT_EQ(faultsOf(picture), "") << "only those of groups count";
    picture.texts.back().isHeader = true;
    EXPECT_EQ(faultsOf(picture), "behind1");
    picture.texts.back().area.y = 81;
    EXPECT_EQ(faultsOf(picture), "") << "the line is above it";
}

TEST(DrawPictureCheck, LinesThatLookLikeOneAreCounted) {
    Picture picture = soundPicture();
    EXPECT_EQ(checkPicture(picture).together, 0U);
    Picture::Line other = picture.lines[0];
    picture.lines.push_back(other);
    EXPECT_EQ(checkPicture(picture).together, 2U) << "two stretches";
    for (auto& stretch : picture.lines[1].stretches) {
        stretch.start.y += 2;
        for (auto& segment : stretch.segments)
            segment.end.y += 2;
    }
    EXPECT_EQ(checkPicture(picture).together, 0U);
}

TEST(DrawPictureCheck, WhatIsNotDrawnIsFound) {
    tessera_test::DrawnBag drawn;
    drawn.node("a", "A", 0);
    drawn.node("b", "B", 1);
    drawn.link("l", "a", "b", "forward");
    Scene scene = makeScene(drawn.bag, {});
    EXPECT_EQ(checkScene(drawn.bag, scene).total(), 0U);
    std::erase_if(scene.elements, [](const Element& e) { return e.kind == Element::Kind::line; });
    EXPECT_EQ(checkScene(drawn.bag, scene).missing, 1U);
    std::erase_if(scene.elements, [](const Element& e) { return e.kind == Element::Kind::node; });
    EXPECT_EQ(checkScene(drawn.bag, scene).missing, 2U) << "without boxes no line is wanted";
}

void expectSound(const Faults& faults, const std::string& what) {
    EXPECT_EQ(faults.total(), 0U) << what << ": " << faults;
}

constexpr Direction directions[] = {Direction::leftToRight, Direction::topToBottom};

TEST(DrawPictureCheck, RandomDiagramsAreDrawnSoundly) {
    for (const Direction direction : directions) {
        std::size_t lines = 0;
        std::size_t together = 0;
        for (std::uint64_t seed = 0; seed < tessera_test::effort(1000U); ++seed) {
            const variant_bag_t bag = tessera_test::randomDrawing(seed);
            const Scene scene = makeScene(bag, {direction, nullptr});
            const Faults faults = checkScene(bag, scene);
            expectSound(faults, "seed " + std::to_string(seed));
            lines += scene.lines.size();
            together += faults.together;
        }
        EXPECT_GT(lines, tessera_test::effort(5000U));
        EXPECT_LE(together, lines / 500);
    }
}

// Every box of one layer linked with every one of the next: whatever line comes in lower than it left meets
// one that leaves at its height.
TEST(DrawPictureCheck, LinesOfMeshesAreApart) {
    for (const Direction direction : directions)
        for (const auto& [tails, heads] :
             {std::pair(3, 3), std::pair(7, 3), std::pair(5, 7), std::pair(6, 8)}) {
            tessera_test::DrawnBag drawn;
            for (int i = 0; i < tails; ++i)
                drawn.node("a" + std::to_string(i), "A", 0);
            for (int i = 0; i < heads; ++i)
                drawn.node("b" + std::to_string(i), "B", 1);
            for (int i = 0; i < tails; ++i)
                for (int k = 0; k < heads; ++k)
                    drawn.link("l" + std::to_string(i) + "_" + std::to_string(k), "a" + std::to_string(i),
                               "b" + std::to_string(k), "forward");
            const Faults faults = checkScene(drawn.bag, makeScene(drawn.bag, {direction, nullptr}));
            expectSound(faults, "mesh");
            EXPECT_EQ(faults.together, 0U) << tails << " by " << heads;
        }
}

TEST(DrawPictureCheck, RandomBoxesArePlacedSoundly) {
    for (std::uint64_t seed = 0; seed < tessera_test::effort(1000U); ++seed) {
        const variant_bag_t bag = tessera_test::randomDrawing(seed);
        const Diagram diagram = readDiagram(bag);
        const LinkPaths linkPaths = findLinkPaths(diagram);
        const BoxKinds kinds = findKinds(diagram);
        const SceneInput input =
            makeInput(diagram, linkPaths, kinds,
                      boxSizesOf(diagram, linkPaths, kinds, pathsOfStops(linkPaths, diagram.nodes.size()),
                                 nullptr, nullptr),
                      {});
        expectSound(checkPicture(tessera_test::pictureOf(input.input, place(input.input, Spacing{}))),
                    "seed " + std::to_string(seed));
    }
}

// Returns the number of drawings.
std::size_t checkResultsOfCases(const std::filesystem::path& cases) {
    std::size_t drawn = 0;
    for (const auto& folder : std::filesystem::directory_iterator(cases)) {
        std::ifstream results(folder.path() / "expected.jsonl");
        for (std::string line; std::getline(results, line);) {
            const auto answer = tessera_host::readJson(line);
            EXPECT_TRUE(answer) << folder.path();
            if (!answer) continue;
            const variant_bag_t* out = answer->get_variant_bag("out");
            if (out == nullptr || out->get_variant_bag("nodes") == nullptr) continue;
            ++drawn;
            for (const Direction direction : directions)
                expectSound(checkScene(*out, makeScene(*out, {direction, nullptr})), folder.path());
        }
    }
    return drawn;
}

// The library's results for the cases. TESSERA_MORE_CASES may name a folder with further ones.
TEST(DrawPictureCheck, ResultsOfTheCasesAreDrawnSoundly) {
    EXPECT_GT(checkResultsOfCases(TESSERA_CASES), 15U);
    if (const char* more = std::getenv("TESSERA_MORE_CASES"); more != nullptr) {
        EXPECT_GT(checkResultsOfCases(more), 0U);
    }
}

}  // namespace
}  // namespace tessera_draw
