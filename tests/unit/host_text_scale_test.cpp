// Deep, wide and long documents: nothing recurses, and work of more than linear time would not finish.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;
using basekit2::variant_bag_t;
using basekit2::variant_t;

constexpr int depth = 100000;

variant_bag_t deepBag() {
    variant_bag_t root;
    variant_bag_t* bag = &root;
    for (int i = 0; i < depth; ++i) {
        bag->put("level", std::to_string(i));
        if (i % 1000 == 0) bag->put("", "text");
        bag = &bag->add_variant_bag("b");
    }
    return root;
}

TEST(TextScale, DeepBagsGoThroughXml) {
    const variant_bag_t bag = deepBag();
    const std::string xml = toXml(bag);
    const variant_bag_t back = fromXml(xml);
    EXPECT_EQ(back, bag);
    EXPECT_EQ(toXml(back), xml);
}

TEST(TextScale, DeepBagsGoThroughJson) {
    const variant_bag_t bag = deepBag();
    for (const JsonForm form : {JsonForm::compact, JsonForm::indented})
        EXPECT_EQ(fromJson(toJson(bag, form)), bag);
}

TEST(TextScale, IndentationStopsGrowing) {
    const variant_bag_t bag = deepBag();
    // A level has at most five lines or two tags, each with no more than 80 spaces.
    EXPECT_LT(toJson(bag, JsonForm::indented).size(), depth * std::size_t{6 * 100});
    EXPECT_LT(toXml(bag).size(), depth * std::size_t{2 * 120});
}

TEST(TextScale, AMillionLevelsOfXml) {
    std::string xml;
    for (int i = 0; i < 1000000; ++i)
        xml += "<a>";
    for (int i = 0; i < 1000000; ++i)
        xml += "</a>";
    int levels = 0;
    const variant_bag_t root = fromXml(xml);
    const variant_bag_t* bag = &root;
    for (; bag; bag = bag->get_variant_bag("a"))
        ++levels;
    EXPECT_EQ(levels, 1000000);
}

TEST(TextScale, AnUnclosedDeepDocumentIsOneError) {
    std::string xml;
    for (int i = 0; i < depth; ++i)
        xml += "<a>";
    EXPECT_EQ(problem(readXmlText(xml)),
              "1:300001: element 'a', opened at line 1, column 299998, is not closed");
}

TEST(TextScale, ManyAttributesOnOneElement) {
    std::string xml = "<a";
    for (int i = 0; i < 100000; ++i)
        xml += " n" + std::to_string(i) + "='" + std::to_string(i) + '\'';
    xml += "/>";
    const variant_bag_t bag = fromXml(xml);
    EXPECT_EQ(bag.value_count(), 100000U);
    EXPECT_EQ(bag.get("n99999")->get<std::string_view>(), "99999");
    EXPECT_EQ(fromXml(toXml(bag)), bag);
    EXPECT_EQ(fromJson(toJson(bag)), bag);
}

TEST(TextScale, LongTokensAndTexts) {
    const std::string value(20 << 20, 'v');
    std::string text;
    for (int i = 0; i < 1000000; ++i)
        text += "line &amp; line\n";
    const variant_bag_t bag = fromXml("<r><!--" + value + "--><a v='" + value + "'/>" + text + "</r>");
    EXPECT_EQ(bag.get("")->get<std::string_view>().size(),
              1000000 * std::string_view("line & line\n").size() - 1);
    EXPECT_EQ(bag.get_variant_bag("a")->get("v")->get<std::string_view>(), value);
    EXPECT_EQ(bag.get_variant_bag("a")->position().column, 4 + 7 + value.size());
}

TEST(TextScale, AMillionChildrenOfOneNameOfTwoAndOfAllDifferentOnes) {
    const auto bagWith = [](const auto& name) {
        variant_bag_t bag;
        for (int i = 0; i < 1000000; ++i)
            bag.add_variant_bag(name(i)).put("i", variant_t(std::int64_t{i}));
        return bag;
    };
    const variant_bag_t same = bagWith([](int) { return std::string("x"); });
    EXPECT_EQ(fromJson(toJson(same)), same);
    const variant_bag_t different = bagWith([](int i) { return "x" + std::to_string(i); });
    EXPECT_EQ(fromJson(toJson(different)), different);
    const std::string mixed = toJson(bagWith([](int i) { return std::string(1, "xyz"[i % 3]); }));
    EXPECT_TRUE(mixed.starts_with(R"({"x":[{"i":0},{"i":3},)"));
    EXPECT_TRUE(mixed.ends_with(R"({"i":999995},{"i":999998}]})"));
}

TEST(TextScale, AWideBagDoesNotSlowDownTheSmallOnesAfterIt) {
    variant_bag_t bag;
    variant_bag_t& wide = bag.add_variant_bag("wide");
    for (int i = 0; i < 1000000; ++i)
        wide.add_variant_bag("x" + std::to_string(i));
    for (int i = 0; i < 100000; ++i) {
        variant_bag_t& small = bag.add_variant_bag("small");
        for (int n = 0; n < 10; ++n)
            small.add_variant_bag(std::string(1, static_cast<char>('a' + n)));
    }
    EXPECT_EQ(fromJson(toJson(bag)), bag);
}

TEST(TextScale, SiblingsOfUnboundedNumberInXml) {
    std::string xml = "<r>";
    for (int i = 0; i < 500000; ++i)
        xml += "<n" + std::to_string(i % 1000) + ">t</n" + std::to_string(i % 1000) + ">";
    xml += "</r>";
    const variant_bag_t bag = fromXml(xml);
    EXPECT_EQ(fromXml(toXml(bag)), bag);
}

}  // namespace
}  // namespace tessera_host
