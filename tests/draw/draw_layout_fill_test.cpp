// The two steps to a picture: one layout, filled with the values of several bags.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "core/vocabulary.h"
#include "draw/layout.h"
#include "draw/scene.h"
#include "draw/scene_json.h"
#include "draw/svg_writer.h"
#include "tests/support/drawn_diagram.h"
#include "tests/support/effort.h"

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;
using tessera_test::DrawnBag;
using tessera_test::effort;
using tessera_test::randomDrawing;
using tessera_test::withValues;

std::string svgOf(const Scene& scene) {
    tessera_test::StringOutput output;
    SvgOptions options;
    options.idPrefix = "t";
    EXPECT_TRUE(writeSvg(scene, options, output));
    return output.text;
}

std::string jsonOf(const Scene& scene) {
    tessera_test::StringOutput output;
    EXPECT_TRUE(writeSceneJson(scene, output));
    return output.text;
}

// A link with a label between two nodes of two rows each.
DrawnBag smallDrawing(const std::string& value) {
    DrawnBag drawn;
    for (const char* id : {"a", "b"}) {
        variant_bag_t& node = drawn.node(id, std::string("Node ") + id, id[0] - 'a');
        drawn.row(node, "rate", value);
        drawn.row(node, "errors", value + "!");
    }
    drawn.link("l", "a", "b", "forward");
    return drawn;
}

TEST(DrawLayoutFill, BothStepsAreWhatOneStepIs) {
    for (std::uint64_t seed = 0; seed < effort(60U); ++seed)
        for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
            const variant_bag_t bag = randomDrawing(seed);
            const LayoutPointer layout = layOut(bag, {direction, nullptr});
            ASSERT_EQ(svgOf(fill(layout, bag)), svgOf(makeScene(bag, {direction, nullptr}))) << seed;
        }
}

TEST(DrawLayoutFill, OneLayoutTakesAnyValues) {
    for (std::uint64_t seed = 0; seed < effort(60U); ++seed) {
        const variant_bag_t bag = randomDrawing(seed);
        const variant_bag_t other = withValues(bag, "another value");
        const LayoutPointer layout = layOut(bag, {});
        Differences differences;
        const Scene first = fill(layout, bag, &differences);
        const Scene second = fill(layout, other, &differences);
        EXPECT_TRUE(differences.isEmpty()) << seed;
        ASSERT_EQ(svgOf(second), svgOf(makeScene(other, {}))) << seed;
        ASSERT_EQ(first.boxes.size(), second.boxes.size());
        for (std::size_t i = 0; i < first.boxes.size(); ++i)
            ASSERT_EQ(first.boxes[i].rect, second.boxes[i].rect);
        ASSERT_EQ(first.lines.data(), second.lines.data());
    }
}

// The badge's width is the same in all modes, so that none of them moves the rest of the heading.
TEST(DrawLayoutFill, TheBadgeHasSpaceForEachDisplayMode) {
    const LayoutPointer layout = layOut(smallDrawing("1").bag, {});
    for (const std::string_view mode : tessera_1::displayModeNames) {
        variant_bag_t bag;
        bag.add_variant_bag("diagram").put("displayMode", mode);
        const Scene scene = fill(layout, bag);
        const auto badge = std::find_if(scene.texts.begin(), scene.texts.end(),
                                        [](const TextShape& text) { return text.role == TextRole::badge; });
        ASSERT_NE(badge, scene.texts.end());
        EXPECT_EQ(badge->text, mode);
        EXPECT_FALSE(badge->isShortened) << mode;
    }
}

TEST(DrawLayoutFill, ASceneNeedsNeitherTheBagNorTheCallersLayout) {
    std::string expected;
    Scene scene;
    {
        const DrawnBag drawn = smallDrawing("12");
        LayoutPointer layout = layOut(drawn.bag, {});
        scene = fill(layout, drawn.bag);
        expected = svgOf(scene);
    }
    Scene moved = std::move(scene);
    EXPECT_EQ(svgOf(moved), expected);
    EXPECT_NE(expected.find(">12!<"), std::string::npos);
}

TEST(DrawLayoutFill, ValuesAreMatchedById) {
    const DrawnBag drawn = smallDrawing("1");
    DrawnBag turned;
    turned.row(turned.node("b", "Renamed", 0), "rate", "of b");
    turned.row(turned.node("a", "Renamed", 0), "rate", "of a");
    Differences differences;
    const Scene scene = fill(layOut(drawn.bag, {}), turned.bag, &differences);
    EXPECT_EQ(differences.missingLinks, std::vector<std::string>{"l"});
    EXPECT_TRUE(differences.newNodes.empty() && differences.missingNodes.empty());
    for (const Element& element : scene.elements) {
        if (element.kind != Element::Kind::node) continue;
        ASSERT_EQ(element.rows.count, 1U);
        const RowShape& row = scene.rows[element.rows.first];
        EXPECT_EQ(row.value, "of " + std::string(element.id));
        ASSERT_NE(row.valueText, nothing);
        EXPECT_EQ(scene.texts[row.valueText].text, row.value);
    }
}

TEST(DrawLayoutFill, AnotherStructureIsReported) {
    const DrawnBag drawn = smallDrawing("1");
    DrawnBag other;
    other.row(other.node("b", "B", 0), "rate", "2");
    other.row(other.node("c", "C", 0), "rate", "3");
    other.row(other.node("b", "B", 0), "rate", "4");  // a second one: the layout has one
    other.link("m", "b", "c", "forward");
    Differences differences;
    const Scene scene = fill(layOut(drawn.bag, {}), other.bag, &differences);
    EXPECT_EQ(differences.newNodes, (std::vector<std::string>{"c", "b"}));
    EXPECT_EQ(differences.missingNodes, std::vector<std::string>{"a"});
    EXPECT_EQ(differences.newLinks, std::vector<std::string>{"m"});
    EXPECT_EQ(differences.missingLinks, std::vector<std::string>{"l"});
    EXPECT_EQ(scene.nodeCount, 2U);
    EXPECT_EQ(scene.lineCount, 1U);
    EXPECT_NE(svgOf(scene).find(">2<"), std::string::npos);
}

TEST(DrawLayoutFill, AnyLayoutTakesAnyBag) {
    for (std::uint64_t seed = 0; seed < effort(60U); ++seed) {
        const LayoutPointer layout = layOut(randomDrawing(seed), {});
        const variant_bag_t other = randomDrawing(seed + 1000);
        const Scene scene = fill(layout, other);
        EXPECT_EQ(scene.elements.size(), fill(layout, variant_bag_t()).elements.size()) << seed;
        EXPECT_TRUE(svgOf(scene).ends_with("</svg>\n"));
    }
}

TEST(DrawLayoutFill, SeveralThreadsFillOneLayout) {
    const variant_bag_t bag = randomDrawing(3);
    const LayoutPointer layout = layOut(bag, {});
    const std::string expected = svgOf(fill(layout, bag));
    std::vector<std::string> results(4);
    {
        std::vector<std::jthread> threads;
        for (std::string& result : results)
            threads.emplace_back([&] { result = svgOf(fill(layout, bag)); });
    }
    for (const std::string& result : results)
        EXPECT_EQ(result, expected);
}

TEST(DrawLayoutFill, ALayoutKnowsItsBoxes) {
    const DrawnBag drawn = smallDrawing("1");
    const LayoutPointer layout = layOut(drawn.bag, {});
    EXPECT_EQ(layout->boxCount(), 2U);
    EXPECT_EQ(layout->lineCount(), 1U);
    ASSERT_TRUE(layout->boxOf("a") && layout->boxOf("b"));
    EXPECT_LT(layout->boxOf("a")->right(), layout->boxOf("b")->x);
    EXPECT_FALSE(layout->boxOf("l"));
    EXPECT_EQ(layout->size(), makeScene(drawn.bag, {}).size);
}

TEST(DrawLayoutFill, NothingIsLaidOutOnceItIsCancelled) {
    tessera_support::CancelSource source;
    source.cancel();
    EXPECT_EQ(layOut(smallDrawing("1").bag, {Direction::leftToRight, nullptr, nullptr, source.token()}),
              nullptr);
}

// A value that was wider than expected when the diagram was created is whole, and may get one more digit.
TEST(DrawLayoutFill, FirstValuesFit) {
    const std::string wide = "12345678901.25 MB/s";
    const auto isWhole = [](const Scene& scene, std::string_view value) {
        const auto hasValue = [&](const TextShape& text) { return text.text == value && !text.isShortened; };
        return std::any_of(scene.texts.begin(), scene.texts.end(), hasValue);
    };
    const DrawnBag drawn = smallDrawing(wide);
    LayoutOptions options;
    EXPECT_FALSE(isWhole(fill(layOut(drawn.bag, options), drawn.bag), wide));
    options.firstValues = &drawn.bag;
    const LayoutPointer layout = layOut(drawn.bag, options);
    EXPECT_TRUE(isWhole(fill(layout, drawn.bag), wide));
    EXPECT_TRUE(isWhole(fill(layout, smallDrawing("9" + wide).bag), "9" + wide));
    EXPECT_FALSE(
        isWhole(fill(layout, smallDrawing(std::string(40, '9') + wide).bag), std::string(40, '9') + wide));
}

// The longest integer of a database, and a number with all its digits and a unit, in cards and labels of one and two rows.
TEST(DrawLayoutFill, FirstNumbersAreWholeWithTheirUnits) {
    for (const std::string value : {"-9223372036854775808 B", "0.12345678901234567 requests", "1.25e+300"})
        for (const int rows : {1, 2}) {
            tessera_test::DrawnBag drawn;
            for (const std::string_view id : {"a", "b_a_label"}) {
                const bool isLabel = id != "a";
                variant_bag_t& box = drawn.node(id, "", isLabel ? 1 : 0, isLabel ? "label" : "node");
                for (int row = 0; row < rows; ++row)
                    drawn.row(box, "A name of a usual length", value);
            }
            drawn.node("b", "B", 2);
            drawn.link("l", "a", "b_a_label", "none");
            drawn.link("b_a_label_a", "b_a_label", "b", "forward");
            Reservation reservation;
            reservation.node("a").rows = 2;
            reservation.link("l", Reservation::Place::center).rows = static_cast<std::uint32_t>(rows);
            reservation.setHasChanges(true);
            LayoutOptions options;
            options.firstValues = &drawn.bag;
            options.reservation = &reservation;
            const Scene scene = fill(layOut(drawn.bag, options), drawn.bag);
            EXPECT_EQ(
                std::count_if(scene.texts.begin(), scene.texts.end(),
                              [&](const TextShape& text) { return text.text == value && !text.isShortened; }),
                2 * rows)
                << value;
        }
}

TEST(DrawLayoutFill, LongNamesShowTheirEnds) {
    const auto shownOf = [](const std::string& name) {
        tessera_test::DrawnBag drawn;
        drawn.node("a", name);
        const Scene scene = makeScene(drawn.bag, {});
        const auto isName = [](const TextShape& text) { return text.role == TextRole::name; };
        const auto text = std::find_if(scene.texts.begin(), scene.texts.end(), isName);
        return std::string(text->text) + (text->isShortened ? "… (shortened)" : "");
    };
    const std::string begin(60, 'A');
    const std::string shown = shownOf(begin + " of the second site \n");
    EXPECT_TRUE(shown.starts_with("AAAAAAAA")) << shown;
    EXPECT_TRUE(shown.ends_with(" the second site")) << shown;
    EXPECT_LE(measureText(shown, 13, Weight::bold).width, 320);
    EXPECT_EQ(shownOf("A short name"), "A short name");
    EXPECT_TRUE(shownOf(begin + "\u0301").ends_with("A… (shortened)"))
        << "the accent belongs to the last letter";
    EXPECT_TRUE(shownOf(begin + "\xFF").ends_with("A… (shortened)"));
}

TEST(DrawSceneJson, SaysWhatASceneShows) {
    const DrawnBag drawn = smallDrawing("1\"\n\xFF");
    const Scene scene = makeScene(drawn.bag, {});
    const auto json = nlohmann::json::parse(jsonOf(scene), nullptr, false);
    ASSERT_FALSE(json.is_discarded());
    EXPECT_EQ(json["width"].get<double>(), scene.size.width);
    EXPECT_EQ(json["nodes"].get<std::size_t>(), 2U);
    EXPECT_EQ(json["links"].get<std::size_t>(), 1U);
    int nodes = 0;
    for (const auto& element : json["elements"]) {
        if (element["kind"] != "node") continue;
        ++nodes;
        EXPECT_EQ(element["boxes"].size(), 1U);
        EXPECT_EQ(element["boxes"][0]["role"].get<std::string>(), "card");
        const auto& row = element["rows"][1];
        EXPECT_EQ(row["number"].get<std::size_t>(), 1U);
        EXPECT_EQ(row["name"].get<std::string>(), "errors");
        EXPECT_EQ(row["value"].get<std::string>(), "1\"\n\uFFFD!");
        const auto& text = element["texts"][row["valueText"].get<std::size_t>()];
        EXPECT_EQ(text["role"].get<std::string>(), "rowValue");
    }
    EXPECT_EQ(nodes, 2);
}

TEST(DrawSceneJson, HoldsEveryShapeOfRandomScenes) {
    for (std::uint64_t seed = 0; seed < effort(40U); ++seed) {
        const Scene scene = makeScene(randomDrawing(seed), {});
        const auto json = nlohmann::json::parse(jsonOf(scene), nullptr, false);
        ASSERT_FALSE(json.is_discarded()) << seed;
        std::size_t boxes = 0;
        std::size_t texts = 0;
        std::size_t lines = 0;
        std::size_t rows = 0;
        for (const auto& element : json["elements"]) {
            boxes += element["boxes"].size();
            texts += element["texts"].size();
            lines += element.contains("path") ? 1 : 0;
            rows += element["rows"].size();
        }
        EXPECT_EQ(json["elements"].size(), scene.elements.size());
        EXPECT_EQ(boxes, scene.boxes.size());
        EXPECT_EQ(texts, scene.texts.size());
        EXPECT_EQ(lines, scene.lines.size());
        EXPECT_EQ(rows, scene.rows.size());
    }
}

}  // namespace
}  // namespace tessera_draw
