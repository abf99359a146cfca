// Values beside those of another result: nothing moves, and as much of a change is shown as fits.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "draw/scene.h"
#include "draw/scene/changes.h"
#include "draw/svg_writer.h"
#include "tests/support/drawn_diagram.h"

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;
using basekit2::variant_t;
using tessera_test::DrawnBag;
using tessera_test::StringOutput;

constexpr Row more = {"Rate", "150 kB/s", "", false, 0, "more", "100 kB/s", "+50 kB/s", "+50.0 %"};

// The shown text of a change in a scene of its own.
std::string shown(const Row& row, double maxWidth) {
    Scene scene;
    SceneBuilder builder(scene);
    builder.begin(Element::Kind::node, "n");
    if (drawChange(builder, row, {0, 0}, TextRole::change, maxWidth) == nothing) return "nothing";
    return std::string(scene.texts.back().text) + (scene.texts.back().isShortened ? "…" : "");
}

variant_bag_t bagOf(bool isCompared) {
    DrawnBag drawn;
    variant_bag_t& node = drawn.node("a", "Web shop");
    variant_bag_t& first = drawn.row(node, "Rate", "150 kB/s");
    variant_bag_t& second = drawn.row(node, "Errors", isCompared ? "–" : "1");
    variant_bag_t& label = drawn.row(drawn.node("b_a_label", "", 1, "label"), "Rate", "5 MB/s");
    drawn.node("b", "Orders", 2);
    drawn.link("l", "a", "b_a_label", "none");
    drawn.link("b_a_label_a", "b_a_label", "b", "forward");
    if (!isCompared) return drawn.bag;
    const auto compare = [](variant_bag_t& row, const char* change, const char* difference,
                            const char* percent) {
        row.put("change", change);
        row.put("other", "100 kB/s");
        row.put("difference", difference);
        row.put("percent", percent);
        row.put("width", variant_t(std::int64_t{3}));
    };
    compare(first, "more", "+50 kB/s", "+50.0 %");
    compare(second, "there", "", "");
    compare(label, "less", "-1 MB/s", "-16.7 %");
    variant_bag_t& meaning = drawn.bag.add_variant_bag("meaning");
    meaning.add_variant_bag("comparison").put("text", "compared with <old>: 1 more");
    variant_bag_t& widths = meaning.add_variant_bag("widths");
    widths.put("name", "change");
    for (const char* text : {"0", "1", "2", "3", "4"})
        widths.add_variant_bag("step").put("text", text);
    return drawn.bag;
}

std::string svgOf(const Scene& scene) {
    StringOutput output;
    EXPECT_TRUE(writeSvg(scene, {Theme::light, "t"}, output));
    return output.text;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(DrawChanges, ShowAsMuchAsFits) {
    EXPECT_EQ(shown(more, 300), "vs 100 kB/s  ▲ +50 kB/s (+50.0 %)");
    EXPECT_EQ(shown(more, 120), "vs 100 kB/s  ▲ +50.0 %");
    EXPECT_EQ(shown(more, 60), "▲ +50.0 %");
    EXPECT_EQ(shown(more, 20).substr(0, 3), "▲");
    EXPECT_EQ(changeText(more), "vs 100 kB/s, +50 kB/s, +50.0 %");
}

TEST(DrawChanges, EveryKindHasItsText) {
    Row row = more;
    row.change = "less";
    EXPECT_EQ(shown(row, 60), "▼ +50.0 %");
    row.change = "same";
    EXPECT_EQ(shown(row, 300), "=");
    EXPECT_EQ(changeText(row), "same");
    row.change = "here";
    EXPECT_EQ(shown(row, 300), "only here");
    row.change = "there";
    EXPECT_EQ(shown(row, 300), "only there: 100 kB/s");
    row.change = "text";
    row.difference = row.percent = {};
    EXPECT_EQ(shown(row, 300), "vs 100 kB/s");
    row.change = {};
    EXPECT_EQ(shown(row, 300), "nothing");
    // From 0 there is no relative difference.
    row = more;
    row.percent = {};
    EXPECT_EQ(shown(row, 300), "vs 100 kB/s  ▲ +50 kB/s");
}

TEST(DrawChanges, NothingMoves) {
    for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
        const variant_bag_t aloneBag = bagOf(false);
        const variant_bag_t comparedBag = bagOf(true);
        const Scene alone = makeScene(aloneBag, {direction, nullptr});
        const Scene scene = makeScene(comparedBag, {direction, nullptr});
        EXPECT_EQ(alone.layout->size(), scene.layout->size());
        for (const char* id : {"a", "b", "b_a_label"})
            EXPECT_EQ(alone.layout->boxOf(id), scene.layout->boxOf(id)) << id;
    }
}

// Between lines of texts there are `least` pixels.
void expectNoOverlap(const Scene& scene, double least) {
    for (const Element& element : scene.elements) {
        if (element.kind != Element::Kind::node && element.kind != Element::Kind::label) continue;
        const Rect& box = scene.boxes[element.boxes.first].rect;
        std::vector<std::pair<double, double>> lines;  // top and bottom of digits and capitals
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            const TextShape& text = scene.texts[element.texts.first + i];
            constexpr double capHeight = 0.73;
            lines.emplace_back(text.at.y - capHeight * styleOf(text.role).size, text.at.y);
            EXPECT_GT(lines.back().first, box.y);
            EXPECT_LT(lines.back().second, box.bottom());
        }
        std::sort(lines.begin(), lines.end());
        for (std::size_t i = 0; i + 1 < lines.size(); ++i)
            if (lines[i + 1].second - lines[i].second > 1) {  // not one line
                EXPECT_LE(lines[i].second + least, lines[i + 1].first);
            }
    }
}

// Boxes are higher where the caller says that values can have changes.
TEST(DrawChanges, TextsOfABoxDoNotOverlap) {
    const variant_bag_t bag = bagOf(true);
    Reservation reservation;
    reservation.node("a").rows = reservation.node("b").rows = 2;
    reservation.setHasChanges(true);
    expectNoOverlap(makeScene(bag, {}), 0);
    expectNoOverlap(makeScene(bag, {Direction::leftToRight, &reservation}), 2);
}

TEST(DrawChanges, TooltipsHaveTheWholeChange) {
    const std::string svg = svgOf(makeScene(bagOf(true), {}));
    EXPECT_TRUE(has(svg, "Rate: 150 kB/s – vs 100 kB/s, +50 kB/s, +50.0 %"));
    EXPECT_TRUE(has(svg, "Errors: – – only there: 100 kB/s"));
    EXPECT_TRUE(has(svg, "compared with &lt;old&gt;: 1 more"));
    EXPECT_TRUE(has(svg, "<path class=\"l w3\""));
    EXPECT_FALSE(has(svg, "dashed lines"));
}

TEST(DrawChanges, ALineWithAValueThatIsGoneIsDashed) {
    variant_bag_t bag = bagOf(true);
    // The first part of a split link has its id.
    variant_bag_t& links = const_cast<variant_bag_t&>(*bag.get_variant_bag("links"));
    variant_bag_t& link = const_cast<variant_bag_t&>(*links.get_variant_bag("link"));
    variant_bag_t& row = link.add_variant_bag("totalInfo").add_variant_bag("rows").add_variant_bag("row");
    row.put("name", "Rate");
    row.put("value", "–");
    row.put("change", "there");
    row.put("other", "7");
    const Scene scene = makeScene(bag, {});
    EXPECT_TRUE(scene.isGone(0));
    EXPECT_TRUE(has(svgOf(scene), "<path class=\"l w3 lg\""));
    EXPECT_TRUE(has(svgOf(scene), "dashed lines: a value that only the other result has"));
}

}  // namespace
}  // namespace tessera_draw
