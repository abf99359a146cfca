#include "draw/svg/svg_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "tests/support/drawn_diagram.h"

namespace tessera_draw {
namespace {

std::string numberText(double value) {
    tessera_test::StringOutput output;
    SvgText text(output);
    text.number(value);
    text.finish();
    return output.text;
}

std::string escapedText(std::string_view value) {
    tessera_test::StringOutput output;
    SvgText text(output);
    text.escaped(value);
    text.finish();
    return output.text;
}

TEST(DrawSvgText, NumbersAreShort) {
    EXPECT_EQ(numberText(0), "0");
    EXPECT_EQ(numberText(-0.001), "0");
    EXPECT_EQ(numberText(12), "12");
    EXPECT_EQ(numberText(12.5), "12.5");
    EXPECT_EQ(numberText(-0.25), "-0.25");
    EXPECT_EQ(numberText(3.14159), "3.14");
    EXPECT_EQ(numberText(2.999), "3");
    EXPECT_EQ(numberText(1.05), "1.05");
}

TEST(DrawSvgText, ValuesThatAreNotNumbersAreDrawnToo) {
    EXPECT_EQ(numberText(std::nan("")), "0");
    EXPECT_EQ(numberText(std::numeric_limits<double>::infinity()), "1000000000");
    EXPECT_EQ(numberText(-1e300), "-1000000000");
}

TEST(DrawSvgText, NothingInATextEndsIt) {
    EXPECT_EQ(escapedText("<a href=\"x\" b='&amp;'>"), "&lt;a href=&quot;x&quot; b=&#39;&amp;amp;&#39;&gt;");
    EXPECT_EQ(escapedText("]]>"), "]]&gt;");
}

TEST(DrawSvgText, WhatXmlCannotCarryIsReplaced) {
    EXPECT_EQ(escapedText(std::string_view("a\0b", 3)), "a\uFFFDb");
    EXPECT_EQ(escapedText("\x1B[0m"), "\uFFFD[0m");
    EXPECT_EQ(escapedText("\xEF\xBF\xBE\xEF\xBF\xBF"), "\uFFFD\uFFFD");  // U+FFFE, U+FFFF
    EXPECT_EQ(escapedText("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");        // a surrogate
    EXPECT_EQ(escapedText("ab\xC3"), "ab\uFFFD");
    EXPECT_EQ(escapedText("a\tb\r\nc"), "a b  c");
    EXPECT_EQ(escapedText("Größe 漢字 😀"), "Größe 漢字 😀");
}

class FullOutput final : public Output {
  public:
    bool write(std::string_view) override {
        ++calls;
        return false;
    }

    int calls = 0;
};

TEST(DrawSvgText, AFailureEndsTheWriting) {
    FullOutput output;
    SvgText text(output);
    for (int i = 0; i < 100000; ++i)
        text.raw("0123456789");
    EXPECT_FALSE(text.finish());
    EXPECT_EQ(output.calls, 1);
}

}  // namespace
}  // namespace tessera_draw
