// Levels and widths in drawings: nothing moves, nothing is told by colour alone, and everything can be read.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "draw/scene.h"
#include "draw/scene/levels.h"
#include "draw/scene_json.h"
#include "draw/svg_writer.h"
#include "tests/support/drawn_diagram.h"

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;
using basekit2::variant_t;
using tessera_test::DrawnBag;
using tessera_test::StringOutput;

struct Described {
    std::string_view level;
    int width = 0;
    bool isWorst = false;
};

void describeRow(variant_bag_t& row, const Described& what) {
    if (!what.level.empty()) row.put("level", what.level);
    if (what.width > 0) row.put("width", variant_t(std::int64_t{what.width}));
    if (what.isWorst) row.put("isWorst", variant_t(true));
}

// Two nodes and a label between them. With a description, values have levels and widths.
variant_bag_t bagOf(bool isDescribed, std::string_view ownColor = "#224466") {
    DrawnBag drawn;
    const auto described = [&](const Described& what) { return isDescribed ? what : Described{}; };
    describeRow(drawn.row(drawn.node("web", "Web shop"), "Errors", "7.2 %"),
                described({"critical", 0, true}));
    describeRow(drawn.row(drawn.node("db_web_label", "", 1, "label"), "Rate", "5 MB/s"),
                described({"slow", 4}));
    describeRow(drawn.row(drawn.node("db", "Orders", 2), "Load", "3 %"), described({"good"}));
    drawn.link("l", "web", "db_web_label", "none");
    drawn.link("db_web_label_web", "db_web_label", "db", "forward");
    if (!isDescribed) return drawn.bag;
    variant_bag_t& meaning = drawn.bag.add_variant_bag("meaning");
    for (const char* name : {"critical", "slow", "good"}) {
        variant_bag_t& level = meaning.add_variant_bag("level");
        level.put("name", name);
        level.put("count", variant_t(std::int64_t{1}));
        if (std::string_view(name) == "slow") level.put("colour", ownColor);
    }
    variant_bag_t& widths = meaning.add_variant_bag("widths");
    widths.put("name", "Rate");
    for (const char* text : {"≤ 1", "≤ 2", "≤ 3", "≤ 4", "> 4"})
        widths.add_variant_bag("step").put("text", text);
    return drawn.bag;
}

std::string svgOf(const Scene& scene, Theme theme = Theme::light) {
    StringOutput output;
    EXPECT_TRUE(writeSvg(scene, {theme, "t"}, output));
    return output.text;
}

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

const Element& elementOf(const Scene& scene, Element::Kind kind, std::string_view id) {
    const auto found =
        std::find_if(scene.elements.begin(), scene.elements.end(),
                     [&](const Element& element) { return element.kind == kind && element.id == id; });
    EXPECT_NE(found, scene.elements.end());
    return *found;
}

std::vector<std::string> textsOf(const Scene& scene, const Element& element) {
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < element.texts.count; ++i)
        texts.emplace_back(scene.texts[element.texts.first + i].text);
    return texts;
}

TEST(DrawLevels, ColoursCanBeReadOnEveryGround) {
    for (const Palette* palette : {&lightPalette(), &darkPalette()}) {
        for (const ColorRole level :
             {ColorRole::critical, ColorRole::warning, ColorRole::good, ColorRole::more, ColorRole::less})
            for (const ColorRole ground :
                 {ColorRole::ground, ColorRole::container, ColorRole::innerContainer, ColorRole::card})
                EXPECT_GE(contrastOf((*palette)[static_cast<std::size_t>(level)],
                                     (*palette)[static_cast<std::size_t>(ground)]),
                          4.5);
        // Black on white has the largest contrast that there is.
        EXPECT_NEAR(contrastOf({0, 0, 0}, {255, 255, 255}), 21, 1e-9);
        for (const Rgb color : {Rgb{255, 255, 0}, Rgb{0, 0, 0}, Rgb{255, 255, 255}, Rgb{120, 120, 120}})
            EXPECT_GE(contrastOf(readableOn(*palette, color),
                                 (*palette)[static_cast<std::size_t>(ColorRole::card)]),
                      4.5);
    }
    // A colour that can be read stays as it is.
    EXPECT_EQ(readableOn(lightPalette(), {0x22, 0x44, 0x66}), (Rgb{0x22, 0x44, 0x66}));
}

TEST(DrawLevels, NothingMoves) {
    for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
        const variant_bag_t plainBag = bagOf(false);
        const variant_bag_t describedBag = bagOf(true);
        const Scene plain = makeScene(plainBag, {direction, nullptr});
        const Scene scene = makeScene(describedBag, {direction, nullptr});
        EXPECT_EQ(plain.layout->size(), scene.layout->size());
        for (const char* id : {"web", "db", "db_web_label"})
            EXPECT_EQ(plain.layout->boxOf(id), scene.layout->boxOf(id)) << id;
        ASSERT_EQ(plain.lines.size(), scene.lines.size());
        for (std::size_t i = 0; i < plain.lines.size(); ++i)
            EXPECT_EQ(plain.lines[i].stretches.front().start, scene.lines[i].stretches.front().start);
    }
}

TEST(DrawLevels, ALevelIsAColourASignAndAWord) {
    const Scene scene = makeScene(bagOf(true), {});
    const Element& web = elementOf(scene, Element::Kind::node, "web");
    EXPECT_EQ(web.level, "critical");
    EXPECT_EQ(textsOf(scene, web), (std::vector<std::string>{"Web shop", "Errors", "7.2 %", "critical"}));
    EXPECT_EQ(scene.boxes[web.boxes.first].level, ColorRole::critical);
    // One sign at the value, one in the badge.
    ASSERT_EQ(web.symbols.count, 2u);
    for (std::uint32_t i = 0; i < 2; ++i)
        EXPECT_EQ(scene.symbols[web.symbols.first + i].look.symbol, Symbol::alert);
    const std::string svg = svgOf(scene);
    EXPECT_TRUE(has(svg, "data-id=\"web\" data-level=\"critical\""));
    EXPECT_TRUE(has(svg, "Errors: 7.2 % (critical)"));
    EXPECT_TRUE(has(svg, "<rect class=\"c b1\""));
    EXPECT_TRUE(has(svg, "<text class=\"v e1\""));
}

TEST(DrawLevels, SignsDoNotCoverTextsAndStayInTheirBoxes) {
    const Scene scene = makeScene(bagOf(true), {});
    for (const Element& element : scene.elements) {
        if (element.kind != Element::Kind::node && element.kind != Element::Kind::label) continue;
        // The first one is at the value, the one of the badge is above the box.
        const SymbolShape& sign = scene.symbols[element.symbols.first];
        const Rect& box = scene.boxes[element.boxes.first].rect;
        EXPECT_GE(sign.center.x - sign.size / 2, box.x);
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            const TextShape& text = scene.texts[element.texts.first + i];
            if (std::abs(text.at.y - 4 - sign.center.y) > 6) continue;  // on another line
            const Anchor anchor = styleOf(text.role).anchor;
            const double left = text.at.x - (anchor == Anchor::end      ? text.width
                                             : anchor == Anchor::middle ? text.width / 2
                                                                        : 0);
            EXPECT_TRUE(left >= sign.center.x + sign.size / 2 ||
                        left + text.width <= sign.center.x - sign.size / 2)
                << text.text;
        }
    }
}

// Names that are cut end where the sign of their value is as near as it can be.
TEST(DrawLevels, SignsStandClearOfLongNames) {
    DrawnBag drawn;
    for (const char* id : {"a", "b_a_label"}) {
        variant_bag_t& box = drawn.node(id, "", id[0] == 'a' ? 0 : 1, id[0] == 'a' ? "node" : "label");
        for (const char* value : {"7.2 %", "0.12345678901234567 requests"})
            describeRow(drawn.row(box, "Errors of all requests since the day began", value), {"critical"});
    }
    drawn.node("b", "B", 2);
    drawn.link("l", "a", "b_a_label", "none");
    drawn.link("b_a_label_a", "b_a_label", "b", "forward");
    drawn.bag.add_variant_bag("meaning").add_variant_bag("level").put("name", "critical");
    Reservation reservation;
    reservation.node("a") = reservation.link("l", Reservation::Place::center) = {2, 6, 30, 6};
    const Scene scene = makeScene(drawn.bag, {Direction::leftToRight, &reservation});
    std::size_t names = 0;
    for (const Element& element : scene.elements) {
        if (element.kind != Element::Kind::node && element.kind != Element::Kind::label) continue;
        for (std::uint32_t i = 0; i < element.rows.count; ++i) {
            const RowShape& row = scene.rows[element.rows.first + i];
            ASSERT_NE(row.nameText, nothing);
            const TextShape& name = scene.texts[row.nameText];
            EXPECT_TRUE(name.isShortened);
            // The sign in the same line; the badge has one, too.
            const auto first = scene.symbols.begin() + element.symbols.first;
            const auto sign = std::find_if(
                first, first + element.symbols.count,
                [&](const SymbolShape& each) { return std::abs(each.center.y + 4 - name.at.y) < 1; });
            ASSERT_NE(sign, first + element.symbols.count);
            EXPECT_GE(sign->center.x - sign->size / 2, name.at.x + name.width + 3 - 1e-9) << element.id;
            ++names;
        }
    }
    EXPECT_EQ(names, 4U);
}

TEST(DrawLevels, BadgesLeaveArrowHeadsFree) {
    for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
        const Scene scene = makeScene(bagOf(true), {direction, nullptr});
        for (const BoxShape& box : scene.boxes)
            for (const LineShape& line : scene.lines)
                if (box.role == BoxRole::levelBadge && line.hasToHead) {
                    const Point tip = line.toHead.tip;
                    EXPECT_FALSE(tip.x > box.rect.x && tip.x < box.rect.right() && tip.y > box.rect.y &&
                                 tip.y < box.rect.bottom());
                }
    }
}

// Lines to six nodes begin all along the edge where the badge would be.
TEST(DrawLevels, BadgesLeaveBeginningsOfLinesFree) {
    for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
        DrawnBag drawn;
        describeRow(drawn.row(drawn.node("a", "Web shop"), "Errors", "7.2 %"), {"critical"});
        for (char id = 'b'; id < 'h'; ++id) {
            drawn.node(std::string(1, id), "Orders", 1);
            drawn.link(std::string(2, id), "a", std::string(1, id), "none");
        }
        drawn.bag.add_variant_bag("meaning").add_variant_bag("level").put("name", "critical");
        const Scene scene = makeScene(drawn.bag, {direction, nullptr});
        const auto badge = std::find_if(scene.boxes.begin(), scene.boxes.end(),
                                        [](const BoxShape& box) { return box.role == BoxRole::levelBadge; });
        ASSERT_NE(badge, scene.boxes.end());
        ASSERT_EQ(scene.lines.size(), 6U);
        for (const LineShape& line : scene.lines) {
            const Point start = line.stretches.front().start;
            EXPECT_FALSE(start.x > badge->rect.x && start.x < badge->rect.right() &&
                         start.y > badge->rect.y && start.y < badge->rect.bottom());
        }
    }
}

TEST(DrawLevels, TheHeadingCountsThemAndNamesTheWorst) {
    const Scene scene = makeScene(bagOf(true), {});
    const Element& heading = elementOf(scene, Element::Kind::heading, "");
    const std::vector<std::string> texts = textsOf(scene, heading);
    EXPECT_NE(std::find(texts.begin(), texts.end(), "1 critical"), texts.end());
    EXPECT_TRUE(has(svgOf(scene), "worst: Errors of Web shop"));
    EXPECT_TRUE(has(svgOf(scene), " 1 critical. 1 slow. 1 good.</desc>"));
}

TEST(DrawLevels, LinesAreAsWideAsTheirStep) {
    const Scene scene = makeScene(bagOf(true), {});
    ASSERT_EQ(scene.lineSteps, (std::vector<std::uint8_t>{3}));
    EXPECT_EQ(scene.widthOf(0), lineWidths[3]);
    const std::string svg = svgOf(scene);
    EXPECT_TRUE(has(svg, "<path class=\"l w4\""));
    EXPECT_TRUE(has(svg, "Width of lines: Rate"));
    EXPECT_TRUE(has(svg, "&gt; 4</text>"));
}

TEST(DrawLevels, TextsOfTheDocumentStayTexts) {
    for (const char* color : {"#12345", "#12345g", "red", "#123456;}</style><script>", "url(x)", ""}) {
        const std::string svg = svgOf(makeScene(bagOf(true, color), {}));
        EXPECT_FALSE(has(svg, "script")) << color;
        EXPECT_FALSE(has(svg, "url(")) << color;
        // Readable all the same: in the colour of texts that explain others.
        EXPECT_TRUE(has(svg, ".e4{fill:#5A6880}")) << color;
    }
    variant_bag_t bag = bagOf(false);
    variant_bag_t& level = bag.add_variant_bag("meaning").add_variant_bag("level");
    level.put("name", "<script>&\"");
    level.put("count", variant_t(std::int64_t{2}));
    EXPECT_TRUE(has(svgOf(makeScene(bag, {})), "2 &lt;script&gt;&amp;"));
}

TEST(DrawLevels, DrawingsWithoutLevelsHaveNoneOfTheirRules) {
    const std::string svg = svgOf(makeScene(bagOf(false), {}), Theme::automatic);
    for (const char* rule : {".e1", ".b1", ".w2", ".lb", ".ws", ".sm", ".lx", ".fg"})
        EXPECT_FALSE(has(svg, rule)) << rule;
}

TEST(DrawLevels, AnyMeaningIsAccepted) {
    variant_bag_t bag = bagOf(true);
    for (int i = 0; i < 20; ++i) {
        variant_bag_t& level = bag.add_variant_bag("meaning").add_variant_bag("level");
        level.put("name", "level " + std::to_string(i));
        level.put("count", "many");
    }
    variant_bag_t& meaning = bag.add_variant_bag("meaning");
    meaning.put("widths", variant_t(true));
    EXPECT_EQ(makeScene(bag, {}).levels.size(), 3u);
    variant_bag_t many;
    variant_bag_t& first = many.add_variant_bag("meaning");
    for (int i = 0; i < 20; ++i)
        first.add_variant_bag("level").put("name", "level " + std::to_string(i));
    const Scene scene = makeScene(many, {});
    EXPECT_EQ(scene.levels.size(), ownLevelCount);
    EXPECT_TRUE(has(svgOf(scene), "no value is at a level"));
}

TEST(DrawLevels, JsonNamesLevelsAndWidths) {
    StringOutput output;
    EXPECT_TRUE(writeSceneJson(makeScene(bagOf(true), {}), output));
    for (const char* part :
         {R"("levels":[{"name":"critical","sign":"alert","color":"critical","count":1},)",
          R"("type":"none","level":"critical")", R"("value":"7.2 %","level":"critical")",
          R"("strokeWidth":4.1)", R"("role":"levelBadge")", R"("text":"7.2 %","color":"critical")"})
        EXPECT_TRUE(has(output.text, part)) << part;
}

}  // namespace
}  // namespace tessera_draw
