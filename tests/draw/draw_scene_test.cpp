#include "draw/scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "draw/scene/shapes.h"
#include "draw/svg_writer.h"
#include "tests/support/drawn_diagram.h"
#include "tests/support/effort.h"

namespace tessera_draw {
namespace {

using basekit2::variant_bag_t;
using tessera_test::DrawnBag;
using tessera_test::randomDrawing;
using tessera_test::withNames;
using tessera_test::withValues;

constexpr std::uint64_t seeds = tessera_test::effort(300);

std::vector<const Element*> elementsOf(const Scene& scene, Element::Kind kind) {
    std::vector<const Element*> found;
    for (const Element& element : scene.elements)
        if (element.kind == kind) found.push_back(&element);
    return found;
}

std::vector<std::string> textsOf(const Scene& scene, const Element& element) {
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < element.texts.count; ++i) {
        const TextShape& text = scene.texts[element.texts.first + i];
        texts.push_back(std::string(text.text) + (text.isShortened ? "…" : ""));
    }
    return texts;
}

std::string tooltipOf(const Scene& scene, const Element& element) {
    std::string tooltip;
    for (std::uint32_t i = 0; i < element.tooltips.count; ++i) {
        const TooltipLine& line = scene.tooltips[element.tooltips.first + i];
        tooltip += (i > 0 ? "\n" : "") + std::string(line.first) + std::string(line.between) +
                   std::string(line.second);
    }
    return tooltip;
}

bool isInside(const Rect& inner, const Rect& outer) {
    constexpr double slack = 1e-6;
    return inner.x >= outer.x - slack && inner.y >= outer.y - slack &&
           inner.right() <= outer.right() + slack && inner.bottom() <= outer.bottom() + slack;
}

// The area that a text covers: at most its maximum width, from its ascent to its descent.
Rect areaOf(const TextShape& text) {
    const double size = styleOf(text.role).size;
    const double shown = std::min(text.width, text.maxWidth);
    const double free = text.maxWidth - shown;
    const Anchor anchor = styleOf(text.role).anchor;
    const double left = leftOf(text) + (anchor == Anchor::start ? 0
                                        : anchor == Anchor::end ? free
                                                                : free / 2);
    return {left, text.at.y - 0.8 * size, shown, size};
}

void expectTextsInBoxes(const Scene& scene, std::uint64_t seed) {
    std::map<Index, Rect> groups;
    for (const Element* group : elementsOf(scene, Element::Kind::group))
        groups[group->index] = scene.boxes[group->boxes.first].rect;
    for (const Element& element : scene.elements) {
        const bool isHeader = element.kind == Element::Kind::header;
        if ((element.boxes.count != 1 && !isHeader) || element.kind == Element::Kind::heading) continue;
        const Rect& box = isHeader ? groups.at(element.index) : scene.boxes[element.boxes.first].rect;
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            const TextShape& text = scene.texts[element.texts.first + i];
            EXPECT_TRUE(isInside(areaOf(text), box)) << text.text << ", seed " << seed;
        }
    }
}

// Texts of one box stand beside or below each other.
void expectTextsApart(const Scene& scene, std::uint64_t seed) {
    for (const Element& element : scene.elements) {
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            for (std::uint32_t k = i + 1; k < element.texts.count; ++k) {
                const Rect a = areaOf(scene.texts[element.texts.first + i]);
                const Rect b = areaOf(scene.texts[element.texts.first + k]);
                const bool overlap = a.x + 0.01 < b.right() && b.x + 0.01 < a.right() &&
                                     a.y + 1 < b.bottom() && b.y + 1 < a.bottom();
                EXPECT_FALSE(overlap) << scene.texts[element.texts.first + i].text << " and "
                                      << scene.texts[element.texts.first + k].text << ", seed " << seed;
            }
        }
    }
}

void expectInsideDrawing(const Scene& scene, std::uint64_t seed) {
    const Rect whole{0, 0, scene.size.width, scene.size.height};
    for (const BoxShape& box : scene.boxes)
        EXPECT_TRUE(isInside(box.rect, whole)) << "seed " << seed;
    for (const TextShape& text : scene.texts)
        EXPECT_TRUE(isInside(areaOf(text), whole)) << text.text << ", seed " << seed;
}

void expectSamePlaces(const Scene& a, const Scene& b, std::uint64_t seed) {
    EXPECT_EQ(a.size, b.size) << "seed " << seed;
    ASSERT_EQ(a.boxes.size(), b.boxes.size()) << "seed " << seed;
    for (std::size_t i = 0; i < a.boxes.size(); ++i)
        EXPECT_EQ(a.boxes[i].rect, b.boxes[i].rect) << "box " << i << ", seed " << seed;
    ASSERT_EQ(a.lines.size(), b.lines.size()) << "seed " << seed;
    for (std::size_t i = 0; i < a.lines.size(); ++i) {
        ASSERT_EQ(a.lines[i].stretches.size(), b.lines[i].stretches.size());
        for (std::size_t k = 0; k < a.lines[i].stretches.size(); ++k)
            EXPECT_EQ(a.lines[i].stretches[k].start, b.lines[i].stretches[k].start) << "seed " << seed;
    }
}

TEST(DrawScene, TextsOfRandomDiagramsStayInTheirBoxes) {
    std::map<TextRole, int> seen;  // the diagrams have texts of all kinds
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        const variant_bag_t bag = randomDrawing(seed);
        for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
            const Scene scene = makeScene(bag, {direction, nullptr});
            expectTextsInBoxes(scene, seed);
            expectTextsApart(scene, seed);
            expectInsideDrawing(scene, seed);
            for (const TextShape& text : scene.texts)
                ++seen[text.role];
        }
    }
    for (const TextRole role : {TextRole::heading, TextRole::name, TextRole::rowName, TextRole::rowValue,
                                TextRole::labelName, TextRole::labelValue})
        EXPECT_GT(seen[role], tessera_test::effort(100)) << static_cast<int>(role);
}

TEST(DrawScene, LongNamesStayInTheirBoxes) {
    std::string name;
    for (int i = 0; i < 40; ++i)
        name += "long names in ΕΛΛΗΝΙΚΑ and 漢字 ";
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        const variant_bag_t bag = withNames(randomDrawing(seed), name);
        const Scene scene = makeScene(bag, {});
        expectTextsInBoxes(scene, seed);
        expectTextsApart(scene, seed);
        expectInsideDrawing(scene, seed);
    }
}

TEST(DrawScene, ValuesMoveNothing) {
    const std::string wide(200, 'W');
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        const variant_bag_t bag = randomDrawing(seed);
        const Scene scene = makeScene(bag, {});
        for (const std::string& value : {std::string(), std::string("1"), wide, std::string("漢字😀")}) {
            const variant_bag_t other = withValues(bag, value);
            const Scene otherScene = makeScene(other, {});
            expectSamePlaces(scene, otherScene, seed);
            expectTextsInBoxes(otherScene, seed);
            expectTextsApart(otherScene, seed);
        }
    }
}

TEST(DrawScene, EveryNodeThatPeopleKnowIsDrawnOnce) {
    DrawnBag drawn;
    drawn.node("g", "Group", 0, "group");
    drawn.node("a", "A", 0, "node", "g");
    drawn.node("b", "B", 1, "node", "g");
    drawn.node("x", "", 1, "dummy", "g");
    drawn.row(drawn.node("g_info", "", 0, "groupInfo", "g"), "Load", "12 %");
    drawn.link("l", "a", "b", "forward");
    const Scene scene = makeScene(drawn.bag, {});
    EXPECT_EQ(scene.nodeCount, 2U);
    EXPECT_EQ(scene.groupCount, 1U);
    EXPECT_EQ(scene.lineCount, 1U);
    const auto groups = elementsOf(scene, Element::Kind::group);
    ASSERT_EQ(groups.size(), 1U);
    const auto headers = elementsOf(scene, Element::Kind::header);
    ASSERT_EQ(headers.size(), 1U);
    EXPECT_EQ(textsOf(scene, *headers.front()), (std::vector<std::string>{"Group", "Load", "12 %"}));
    EXPECT_TRUE(elementsOf(scene, Element::Kind::label).empty());
}

TEST(DrawScene, ANodeWithoutANameIsCalledByItsId) {
    DrawnBag drawn;
    drawn.node("the id", "");
    const Scene scene = makeScene(drawn.bag, {});
    const auto nodes = elementsOf(scene, Element::Kind::node);
    ASSERT_EQ(nodes.size(), 1U);
    EXPECT_EQ(textsOf(scene, *nodes.front()), std::vector<std::string>{"the id"});
}

TEST(DrawScene, RowsBeyondTheSpaceAreCountedAndReported) {
    DrawnBag drawn;
    variant_bag_t& node = drawn.node("n", "Node");
    for (int i = 1; i <= 5; ++i)
        drawn.row(node, "r" + std::to_string(i), std::to_string(i));
    const Scene scene = makeScene(drawn.bag, {});
    const Element& element = *elementsOf(scene, Element::Kind::node).front();
    EXPECT_EQ(textsOf(scene, element), (std::vector<std::string>{"Node", "r1", "1", "+4 more"}));
    EXPECT_EQ(tooltipOf(scene, element), "Node\ninfo\nr1: 1\nr2: 2\nr3: 3\nr4: 4\nr5: 5");

    Reservation reservation;
    reservation.node("n") = {5, 0, 2, 2};
    const Scene roomy = makeScene(drawn.bag, {Direction::leftToRight, &reservation});
    EXPECT_EQ(textsOf(roomy, *elementsOf(roomy, Element::Kind::node).front()).size(), 11U);
}

TEST(DrawScene, WhatIsReservedIsKept) {
    DrawnBag drawn;
    drawn.node("n", "Node");
    const auto rectWith = [&](const RowSpace& space) {
        Reservation reservation;
        reservation.node("n") = space;
        return makeScene(drawn.bag, {Direction::leftToRight, &reservation}).boxes.back().rect;
    };
    EXPECT_LT(rectWith({0, 0, 0, 0}).height, rectWith({1, 0, 3, 3}).height);
    EXPECT_LT(rectWith({1, 0, 3, 3}).height, rectWith({3, 0, 3, 3}).height);
    EXPECT_LT(rectWith({1, 0, 3, 3}).width, rectWith({1, 0, 8, 8}).width);
    // Nothing that a document says makes a card boundless.
    EXPECT_LE(rectWith({1000000, 0, 1e9, 1e9}).width, 300);
    EXPECT_LE(rectWith({1000000, 0, 1e9, 1e9}).height, 300);
}

TEST(DrawScene, ArrowHeadsStandWhereTheDirectionSays) {
    DrawnBag drawn;
    drawn.node("a", "A", 0);
    drawn.node("b", "B", 1);
    const std::map<std::string, std::pair<bool, bool>> heads = {{"forward", {false, true}},
                                                                {"back", {true, false}},
                                                                {"both", {true, true}},
                                                                {"none", {false, false}},
                                                                {"", {false, false}}};
    for (const auto& [direction, ends] : heads) {
        DrawnBag with;
        with.node("a", "A", 0);
        with.node("b", "B", 1);
        with.link("l", "a", "b", direction);
        const Scene scene = makeScene(with.bag, {});
        ASSERT_EQ(scene.lines.size(), 1U);
        const LineShape& line = scene.lines.front();
        EXPECT_EQ(std::pair(line.hasFromHead, line.hasToHead), ends) << direction;
        const auto nodes = elementsOf(scene, Element::Kind::node);
        const Rect& from = scene.boxes[nodes[0]->boxes.first].rect;
        const Rect& to = scene.boxes[nodes[1]->boxes.first].rect;
        if (ends.first) {
            EXPECT_NEAR(line.fromHead.tip.x, from.right(), 0.01);
            EXPECT_EQ(line.fromHead.direction, (Point{-1, 0}));
        }
        if (ends.second) {
            EXPECT_NEAR(line.toHead.tip.x, to.x, 0.01);
            EXPECT_EQ(line.toHead.direction, (Point{1, 0}));
        }
    }
}

TEST(DrawScene, TopToBottomPutsLayersBelowEachOther) {
    DrawnBag drawn;
    drawn.node("a", "A", 0);
    drawn.node("b", "B", 1);
    drawn.link("l", "a", "b", "forward");
    const Scene scene = makeScene(drawn.bag, {Direction::topToBottom, nullptr});
    const auto nodes = elementsOf(scene, Element::Kind::node);
    EXPECT_GT(scene.boxes[nodes[1]->boxes.first].rect.y, scene.boxes[nodes[0]->boxes.first].rect.bottom());
    EXPECT_EQ(scene.lines.front().toHead.direction, (Point{0, 1}));
}

TEST(DrawScene, DisplayTypesHaveSignsAndALegend) {
    DrawnBag drawn;
    drawn.node("a", "A").put("displayType", "process");
    drawn.node("b", "B").put("displayType", "storage");
    drawn.node("c", "C").put("displayType", "process");
    drawn.node("d", "D");
    const Scene scene = makeScene(drawn.bag, {});
    const auto nodes = elementsOf(scene, Element::Kind::node);
    const auto lookOf = [&](std::size_t at) { return scene.symbols[nodes[at]->symbols.first].look; };
    EXPECT_EQ(lookOf(0).symbol, lookOf(2).symbol);
    EXPECT_NE(lookOf(0).symbol, lookOf(1).symbol);
    EXPECT_NE(lookOf(0).accent, lookOf(1).accent);
    EXPECT_EQ(nodes[3]->symbols.count, 0U);
    const auto legends = elementsOf(scene, Element::Kind::legend);
    ASSERT_EQ(legends.size(), 1U);
    EXPECT_EQ(textsOf(scene, *legends.front()), (std::vector<std::string>{"process", "storage"}));
}

TEST(DrawScene, TheLegendStandsInTheHeadingWhereItHasRoom) {
    DrawnBag drawn;
    drawn.node("a", "A").put("displayType", "process");
    drawn.node("b", "A second node beside the first one", 1);
    drawn.link("l", "a", "b", "forward");
    const auto legendLine = [](const Scene& scene) {
        return scene.texts[elementsOf(scene, Element::Kind::legend).front()->texts.first].at.y;
    };
    const Scene wide = makeScene(drawn.bag, {});
    EXPECT_LT(legendLine(wide),
              wide.boxes[elementsOf(wide, Element::Kind::node).front()->boxes.first].rect.y);
    drawn.node("c", "C").put("displayType", "a type with a name that is much too long for any heading");
    const Scene narrow = makeScene(drawn.bag, {});
    EXPECT_GT(legendLine(narrow), narrow.size.height - 40) << "below everything";
}

TEST(DrawScene, TwelveDisplayTypesLookDifferent) {
    Diagram diagram;
    std::vector<std::string> names;
    names.reserve(12);
    for (int i = 0; i < 12; ++i)
        names.push_back("type " + std::to_string(i));
    for (const std::string& name : names) {
        diagram.nodes.emplace_back().displayType = name;
    }
    const DisplayTypes types(diagram);
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (std::size_t k = i + 1; k < names.size(); ++k) {
            const TypeLook a = types.lookOf(names[i]);
            const TypeLook b = types.lookOf(names[k]);
            EXPECT_FALSE(a.symbol == b.symbol && a.accent == b.accent) << i << " and " << k;
        }
    }
}

TEST(DrawScene, AnEmptyDiagramSaysSo) {
    for (const variant_bag_t& bag : {variant_bag_t(), DrawnBag().bag}) {
        const Scene scene = makeScene(bag, {});
        const auto notes = elementsOf(scene, Element::Kind::note);
        ASSERT_EQ(notes.size(), 1U);
        EXPECT_EQ(textsOf(scene, *notes.front()).front(), "Nothing to show yet");
        EXPECT_GT(scene.size.width, 200);
        EXPECT_GT(scene.size.height, 100);
    }
}

TEST(DrawScene, TheSameBagGivesTheSameBytes) {
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        const variant_bag_t bag = randomDrawing(seed);
        tessera_test::StringOutput first;
        tessera_test::StringOutput second;
        EXPECT_TRUE(writeSvg(makeScene(bag, {}), {}, first));
        EXPECT_TRUE(writeSvg(makeScene(variant_bag_t(bag), {}), {}, second));
        EXPECT_EQ(first.text, second.text);
    }
}

TEST(DrawScene, DeepNestingNeedsNoStack) {
    DrawnBag drawn;
    constexpr int depth = 20000;
    for (int i = 0; i < depth; ++i)
        drawn.node("g" + std::to_string(i), "Group", 0, "group", i == 0 ? "" : "g" + std::to_string(i - 1));
    const Scene scene = makeScene(drawn.bag, {});
    EXPECT_EQ(scene.groupCount, static_cast<std::size_t>(depth));
}

TEST(DrawScene, IsEmptyOnceItIsCancelled) {
    DrawnBag drawn;
    drawn.node("a", "A", 0);
    SceneOptions options;
    tessera_support::CancelSource source;
    options.cancel = source.token();
    EXPECT_EQ(makeScene(drawn.bag, options).nodeCount, 1U);
    source.cancel();
    EXPECT_TRUE(makeScene(drawn.bag, options).elements.empty());
}

TEST(DrawScene, ABagThatMakesNoSenseIsDrawn) {
    DrawnBag drawn;
    drawn.node("a", "A", -7, "label", "a").put("isGroup", true);
    drawn.node("a", "A again", 2000000000, "groupInfo", "b");
    drawn.node("b", "B", 3, "groupInfo", "a");
    drawn.node("", "", -1, "dummy", "nobody");
    drawn.node("c", "C", 0, "label", "");
    drawn.node("i", "I", 5, "node", "c").put("displayType", "interface");
    for (const char* end : {"a", "b", "", "c", "nobody", "i"})
        for (const char* other : {"a", "b", "", "c", "i"})
            drawn.link("l", end, other, "both");
    for (const Direction direction : {Direction::leftToRight, Direction::topToBottom}) {
        tessera_test::StringOutput output;
        EXPECT_TRUE(writeSvg(makeScene(drawn.bag, {direction, nullptr}), {}, output));
        EXPECT_TRUE(output.text.ends_with("</svg>\n"));
    }
}

}  // namespace
}  // namespace tessera_draw
