#include "draw/text_width.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_draw {
namespace {

TEST(DrawTextWidth, IsTheSumOfTheFontsAdvances) {
    // DejaVu Sans: a digit is 1303 of 2048, an "i" 569; bold: a digit 1425.
    EXPECT_NEAR(measureText("0", 2048, Weight::regular).width, 1303, 1e-9);
    EXPECT_NEAR(measureText("i", 2048, Weight::regular).width, 569, 1e-9);
    EXPECT_NEAR(measureText("00", 2048, Weight::bold).width, 2 * 1425, 1e-9);
    EXPECT_EQ(measureText("", 11, Weight::bold).width, 0);
}

TEST(DrawTextWidth, DigitsAreAllAsWide) {
    for (const char* digit : {"1", "2", "3", "4", "5", "6", "7", "8", "9"})
        for (const Weight weight : {Weight::regular, Weight::bold})
            EXPECT_EQ(measureText(digit, 11, weight).width, measureText("0", 11, weight).width) << digit;
}

TEST(DrawTextWidth, OtherScriptsAreMeasured) {
    EXPECT_NEAR(measureText("漢", 10, Weight::regular).width, 10, 1e-9);
    EXPECT_TRUE(measureText("Ελληνικά Русский", 10, Weight::bold).isExact);
    EXPECT_GE(measureText("😀", 10, Weight::regular).width, 13);
    EXPECT_FALSE(measureText("😀", 10, Weight::regular).isExact);
    EXPECT_FALSE(measureText("हिन्दी", 10, Weight::regular).isExact);
}

TEST(DrawTextWidth, MarksTakeNoSpace) {
    const double plain = measureText("e", 10, Weight::regular).width;
    EXPECT_EQ(measureText("e\u0301", 10, Weight::regular).width, plain);
    EXPECT_EQ(measureText("e\u200B", 10, Weight::regular).width, plain);
}

TEST(DrawTextWidth, InvalidUtf8IsMeasuredAsItsReplacement) {
    const double sign = measureText("\uFFFD", 10, Weight::regular).width;
    EXPECT_GT(sign, 0);
    for (const char* bytes : {"\xFF", "\xC0", "\xED", "\x01", "\x7F"})
        EXPECT_EQ(measureText(bytes, 10, Weight::regular).width, sign);
    EXPECT_EQ(measureText("\n", 10, Weight::regular).width, measureText(" ", 10, Weight::regular).width);
}

TEST(DrawTextWidth, ATextThatFitsStaysWhole) {
    const double width = measureText("Gateway", 13, Weight::bold).width;
    const FittedText fitted = fitText("Gateway", width, 13, Weight::bold);
    EXPECT_EQ(fitted.kept, "Gateway");
    EXPECT_FALSE(fitted.isShortened);
    EXPECT_EQ(fitted.width, width);
}

TEST(DrawTextWidth, AShortenedTextFitsWithItsDots) {
    const std::string text = "A rather long name that does not fit";
    for (double width = 10; width < 260; width += 7) {
        const FittedText fitted = fitText(text, width, 13, Weight::bold);
        ASSERT_TRUE(fitted.isShortened);
        EXPECT_LE(measureText(std::string(fitted.kept) + "…", 13, Weight::bold).width, std::max(width, 13.0));
        EXPECT_TRUE(text.starts_with(fitted.kept));
        EXPECT_FALSE(fitted.kept.ends_with(' '));
    }
}

TEST(DrawTextWidth, WhatPeopleSeeAsOneCharacterIsNotCut) {
    const std::string letter = "e\u0301";   // with an accent of its own
    const std::string family = "👩\u200D👧";  // two joined
    const std::string flag = "🇩🇪";          // two letters of a flag
    const std::string hand = "👍🏽";    // with a skin tone
    for (const std::string& one : {letter, family, flag, hand}) {
        std::string text;
        for (int i = 0; i < 12; ++i)
            text += one;
        for (double width = 12; width < 300; width += 3) {
            const FittedText fitted = fitText(text, width, 10, Weight::regular);
            EXPECT_EQ(fitted.kept.size() % one.size(), 0U) << one << " in " << width;
        }
    }
}

TEST(DrawTextWidth, WhiteSpaceAtTheEndsIsLeftOut) {
    EXPECT_EQ(fitText("  a b \n", 100, 11, Weight::regular).kept, "a b");
    EXPECT_EQ(fitText(" \t ", 100, 11, Weight::regular).kept, "");
    EXPECT_FALSE(fitText("", 0, 11, Weight::regular).isShortened);
}

TEST(DrawTextWidth, MarksWithoutEndAreCutOff) {
    std::string text = "a";
    for (int i = 0; i < 100000; ++i)
        text += "\u0301";
    EXPECT_LT(fitText(text, 100, 11, Weight::regular).kept.size(), 4096U);
}

}  // namespace
}  // namespace tessera_draw
