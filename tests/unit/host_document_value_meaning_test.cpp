#include "host/document/value_meaning.h"

#include <gtest/gtest.h>

#include <cmath>

#include "host/document/viewpoint.h"
#include "host/lint/document_check.h"

namespace tessera_host {
namespace {

// A document with these elements after its queries, each on a line of its own from line 3 on.
Viewpoint::Pointer read(const std::string& elements) {
    auto viewpoint = Viewpoint::readText(
        "<viewpoint><queries><query id=\"Rate\" from=\"f\" key=\"a b\">SUM(x)</query><query id=\"N\" "
        "from=\"f\">COUNT(*)</query></queries>\n<levels>\n" +
            elements + "\n</levels><diagram><graph><node id=\"n\"/></graph></diagram></viewpoint>",
        "v.xml", {});
    EXPECT_TRUE(viewpoint);
    return *viewpoint;
}

std::vector<std::string> problemsOf(const std::string& elements) {
    const auto viewpoint = read(elements);
    std::vector<std::string> texts;
    for (const Problem& problem : viewpoint->problems())
        texts.push_back(std::to_string(problem.position.line) + ": " + problem.text);
    return texts;
}

std::vector<std::string> namesOf(const ValueMeaning& meaning) {
    std::vector<std::string> names;
    for (const Level& level : meaning.levels())
        names.push_back(level.name);
    return names;
}

TEST(ValueMeaning, ReadsLevelsWithAndWithoutKeys) {
    const auto viewpoint = read(R"(<level name="critical" query="N" above="5e-2"/>
        <level name="warning" query="Rate" key=" web  d%20b " below="-1"/>)");
    const auto& rules = viewpoint->meaning().rules();
    ASSERT_EQ(rules.size(), 2u);
    EXPECT_EQ(rules[0].query, 1u);
    EXPECT_TRUE(rules[0].isAbove);
    EXPECT_EQ(rules[0].bound, 0.05);
    EXPECT_FALSE(rules[0].keys);
    EXPECT_EQ(rules[1].keys, (std::vector<std::string>{"web", "d b"}));
    EXPECT_FALSE(rules[1].isAbove);
    EXPECT_EQ(rules[1].position.line, 4u);
    EXPECT_TRUE(viewpoint->problems().empty());
}

TEST(ValueMeaning, ABoundIsNotAtItsLevel) {
    LevelRule above;
    above.bound = 2;
    EXPECT_FALSE(above.holds(2));
    EXPECT_TRUE(above.holds(2.001));
    LevelRule below = above;
    below.isAbove = false;
    EXPECT_FALSE(below.holds(2));
    EXPECT_TRUE(below.holds(1.999));
    EXPECT_FALSE(above.holds(std::nan("")));
    EXPECT_FALSE(below.holds(std::nan("")));
}

TEST(ValueMeaning, OwnLevelsRankBetweenWarningAndGood) {
    const auto viewpoint = read(R"(<level name="good" query="N" below="1"/>
        <level name="odd" query="N" above="7" colour="#a1B2c3"/>
        <level name="warning" query="N" above="8"/>
        <level name="even" query="N" above="6" colour="#000000"/>
        <level name="critical" query="N" above="9"/>)");
    const ValueMeaning& meaning = viewpoint->meaning();
    EXPECT_EQ(namesOf(meaning), (std::vector<std::string>{"critical", "warning", "odd", "even", "good"}));
    EXPECT_EQ(meaning.findLevel("odd")->colour, "#a1B2c3");
    EXPECT_EQ(meaning.findLevel("odd")->rank, 2u);
    EXPECT_EQ(meaning.findLevel("Odd"), nullptr);
    // Rules keep their order and mean the sorted levels.
    EXPECT_EQ(meaning.levels()[meaning.rules()[0].level].name, "good");
    EXPECT_EQ(meaning.levels()[meaning.rules()[4].level].name, "critical");
}

TEST(ValueMeaning, ReportsEachMistakeAtItsPlace) {
    EXPECT_EQ(
        problemsOf(R"(<level name="critical" query="M" above="1"/>
<level name="critical" query="N"/>
<level name="critical" query="N" above="1" below="0"/>
<level name="critical" query="N" above="1 %"/>
<level name="critical" query="N" key="x" above="1"/>
<level name="critical" query="Rate" key="x" above="1"/>
<level name="critical" query="Rate" key="x %zz" above="1"/>
<level name="slow" query="N" above="1"/>
<level name="slow" query="N" above="1" colour="red"/>
<level query="N" above="1"/>)"),
        (std::vector<std::string>{
            R"(3: level "critical": there is no query "M")",
            R"(4: level "critical" has neither "above" nor "below")",
            R"(5: level "critical" has both "above" and "below"; make it two levels)",
            R"(6: level "critical": "above" is "1 %", which is not a number)",
            R"(7: level "critical": query "N" takes no key values)",
            R"(8: level "critical": query "Rate" needs 2 key values but has 1 here)",
            R"(9: level "critical": the key value "%zz" is not percent-encoded correctly)",
            R"(10: level "slow" needs a colour, such as "#8A4FBF"; only "critical", "warning" and "good" have one)",
            R"(11: level "slow": the colour "red" is not "#rrggbb")",
            R"(12: level without a name)",
        }));
}

TEST(ValueMeaning, OnlySixLevelsCanBeTheDocumentsOwn) {
    std::string elements;
    for (char name = 'a'; name <= 'g'; ++name)
        elements += std::string("<level name=\"") + name + "\" query=\"N\" above=\"1\" colour=\"#112233\"/>";
    EXPECT_EQ(read(elements)->meaning().levels().size(), 6u);
    EXPECT_EQ(problemsOf(elements),
              (std::vector<std::string>{
                  R"(3: level "g" is one too many: a document has at most 6 levels of its own)"}));
}

TEST(ValueMeaning, OnlySixHexadecimalDigitsAreAColour) {
    EXPECT_TRUE(isColour("#00fFaA"));
    for (const char* text :
         {"", "#fff", "00ffaa", "#00ffaa ", "#00ffag", "#+0ffaa", "#00ff\"a", "red;fill:url(x)"})
        EXPECT_FALSE(isColour(text)) << text;
}

TEST(ValueMeaning, WidthsHaveFiveStepsOfEqualSize) {
    const LinkWidths widths{0, 100, 200};
    const std::vector<std::pair<double, int>> steps = {{-5, 1},  {100, 1}, {120, 1},   {120.1, 2}, {140, 2},
                                                       {160, 3}, {180, 4}, {180.1, 5}, {1e9, 5}};
    for (const auto& [number, step] : steps)
        EXPECT_EQ(widths.stepOf(number), step) << number;
    EXPECT_EQ(widths.stepOf(std::nan("")), 0);
    EXPECT_EQ(widths.endOf(1), 120);
    EXPECT_EQ(widths.endOf(4), 180);
    const LinkWidths huge{0, -1.7e308, 1.7e308};
    EXPECT_EQ(huge.stepOf(0), 3);
    EXPECT_TRUE(std::isfinite(huge.endOf(2)));
}

TEST(ValueMeaning, ReportsWrongWidths) {
    const auto viewpoint = Viewpoint::readText(
        "<v><queries><query id='N' from='f'>COUNT(*)</query></queries>\n"
        "<widths query='M' from='0' to='1'/>\n<widths query='N' from='2' to='1'/>\n"
        "<widths query='N' to='x'/>\n<widths query='N' from='1' to='2'/></v>",
        "v.xml", {});
    ASSERT_TRUE(viewpoint);
    std::vector<std::string> texts;
    for (const Problem& problem : (*viewpoint)->problems())
        texts.push_back(std::to_string(problem.position.line) + ": " + problem.text);
    EXPECT_EQ(texts, (std::vector<std::string>{
                         R"(2: <widths>: there is no query "M")",
                         "3: these <widths> replace those of line 2",
                         R"(3: <widths>: "from" must be less than "to")",
                         "4: these <widths> replace those of line 3",
                         R"(4: <widths> has no "from")",
                         R"(4: <widths>: "to" is "x", which is not a number)",
                         "5: these <widths> replace those of line 4",
                     }));
    ASSERT_TRUE((*viewpoint)->meaning().widths());
    EXPECT_EQ((*viewpoint)->meaning().widths()->from, 1);
}

TEST(ValueMeaning, CheckKnowsTheElements) {
    const auto viewpoint = read(R"(<level name="good" query="N" above="1" color="#112233"/><levle/>)");
    const auto problems = checkDocument(*viewpoint, {}, {});
    ASSERT_TRUE(problems);
    std::vector<std::string> texts;
    for (const Problem& problem : *problems)
        texts.push_back(problem.text);
    EXPECT_EQ(
        texts,
        (std::vector<std::string>{
            R"(unknown attribute "color" of <level>; it has "name", "query", "key", "above", "below", "colour")",
            "unknown element <levle> in <levels>; expected <level>"}));
}

}  // namespace
}  // namespace tessera_host
