// Values that are shortened: numbers keep what they begin with, and headers of groups use their width.
#include "draw/scene/fitted_value.h"

#include <gtest/gtest.h>

#include <string>

#include "draw/scene.h"
#include "tests/support/drawn_diagram.h"

namespace tessera_draw {
namespace {

double widthOf(std::string_view text) {
    return measureText(text, 11, Weight::bold).width;
}

// What is shown of the value in the space that `space` takes.
std::string shownIn(std::string_view value, std::string_view space) {
    const double width = widthOf(space);
    const FittedText fitted = fitValue(value, width, 11, Weight::bold);
    std::string shown(fitted.kept);
    if (fitted.isShortened) shown += "…";
    EXPECT_NEAR(fitted.width, widthOf(shown), 0.001);
    EXPECT_LE(fitted.width, width) << shown;
    return shown;
}

TEST(DrawFittedValue, WordsOfTheUnitGoFirst) {
    EXPECT_EQ(shownIn("47.3 MB/s", "47.3 MB/s"), "47.3 MB/s");
    EXPECT_EQ(shownIn("47.3 MB/s", "47.3 MB/"), "47.3 …");
    EXPECT_EQ(shownIn("-47.3 MB/s", "-47.3 …"), "-47.3 …");
    EXPECT_EQ(shownIn("12 min 35 s", "12 min 3…"), "12 min …");
    EXPECT_EQ(shownIn("  47.3 MB/s ", "47.3 MB/"), "47.3 …") << "white space around it does not count";
}

TEST(DrawFittedValue, ThenTheSpaceAndDigitsAfterThePoint) {
    EXPECT_EQ(shownIn("47.3 MB/s", "47.3…"), "47.3…");
    EXPECT_EQ(shownIn("0.3333333333333", "0.333…"), "0.333…");
    EXPECT_EQ(shownIn("47.3 MB/s", "47…"), "47…") << "without the point";
}

TEST(DrawFittedValue, TheFirstDigitsStay) {
    EXPECT_EQ(shownIn("123456 items", "12345…"), "12345…");
    EXPECT_EQ(shownIn("9223372036854775807", "92…"), "92…");
    EXPECT_EQ(shownIn("-9223372036854775808 B", "-9…"), "-9…");
    EXPECT_EQ(shownIn("1.2345e+15", "1.23…"), "1.23…");
}

TEST(DrawFittedValue, AnExponentIsWholeOrHasNoDigits) {
    EXPECT_EQ(shownIn("1.2345e+15 B", "1.2345e+15…"), "1.2345e+15…");
    EXPECT_EQ(shownIn("1.2345e+150", "1.2345e+1…"), "1.2345e…");
    EXPECT_EQ(shownIn("1.2345e+15", "1.2345e…"), "1.2345e…");
}

TEST(DrawFittedValue, OtherValuesAreTexts) {
    EXPECT_EQ(shownIn("2024-01-05 12:30", "2024-01-…"), "2024-01-…");
    EXPECT_EQ(shownIn("192.168.0.1", "192.168…"), "192.168…");
    EXPECT_EQ(shownIn("running since yesterday", "running si…"), "running si…");
    EXPECT_EQ(shownIn("", "…"), "");
    EXPECT_EQ(shownIn("- none", "- no…"), "- no…");
}

// A group that is much wider than its title, with one row.
Scene groupWith(std::string_view name, std::string_view value) {
    tessera_test::DrawnBag drawn;
    drawn.node("g", "G", 0, "group");
    drawn.row(drawn.node("i", "", 0, "groupInfo", "g"), name, value);
    for (int i = 0; i < 6; ++i) {
        drawn.node("m" + std::to_string(i), "A member", i, "node", "g");
        if (i > 0)
            drawn.link("l" + std::to_string(i), "m" + std::to_string(i - 1), "m" + std::to_string(i),
                       "forward");
    }
    // Without values, so that nothing but the usual space is reserved.
    const LayoutPointer layout = layOut(tessera_test::withNames(drawn.bag, "n"), {});
    return fill(layout, drawn.bag);
}

const TextShape& valueOf(const Scene& scene) {
    for (const Element& element : scene.elements)
        if (element.kind == Element::Kind::header)
            return scene.texts[scene.rows[element.rows.first].valueText];
    ADD_FAILURE() << "no header";
    return scene.texts.front();
}

TEST(DrawFittedValue, AHeadersRowsTakeTheWidthOfTheirGroup) {
    const std::string name = "Average time since the first message of a case";
    const Scene scene = groupWith(name, "17 days and 4 hours");
    for (const Element& element : scene.elements)
        for (std::uint32_t i = 0; element.kind == Element::Kind::header && i < element.texts.count; ++i)
            EXPECT_FALSE(scene.texts[element.texts.first + i].isShortened);
    // Short texts stand where they would without room: close to each other.
    EXPECT_LT(valueOf(groupWith("Load", "17 %")).at.x + 200, valueOf(scene).at.x);
}

}  // namespace
}  // namespace tessera_draw
