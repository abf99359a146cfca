#include "support/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_support {
namespace {

using namespace std::string_literals;

const std::string mark(replacementText);

TEST(Utf8, AcceptsTheFirstAndLastCodeOfEachLength) {
    for (const std::string& text :
         {"\x00"s, "\x7F"s, "\xC2\x80"s, "\xDF\xBF"s, "\xE0\xA0\x80"s, "\xEF\xBF\xBF"s, "\xF0\x90\x80\x80"s,
          "\xF4\x8F\xBF\xBF"s, "\xED\x9F\xBF"s, "\xEE\x80\x80"s})
        EXPECT_TRUE(isValidUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, RefusesWhatIsNotACharacter) {
    for (const std::string& text :
         {"\x80"s, "\xBF"s, "\xC0\x80"s, "\xC1\xBF"s, "\xE0\x9F\xBF"s, "\xF0\x8F\xBF\xBF"s, "\xED\xA0\x80"s,
          "\xED\xBF\xBF"s, "\xF4\x90\x80\x80"s, "\xF5\x80\x80\x80"s, "\xFF"s, "\xC3"s, "\xE2\x82"s,
          "\xF0\x9F\x98"s, "\xC3("s})
        EXPECT_FALSE(isValidUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, DecodesCodeAndLength) {
    const auto check = [](std::string_view text, char32_t code, std::size_t length) {
        const Utf8Character character = decodeUtf8(text);
        EXPECT_TRUE(character.isValid);
        EXPECT_EQ(character.code, code);
        EXPECT_EQ(character.length, length);
    };
    check("A", U'A', 1);
    check("\u00E9x", U'\u00E9', 2);
    check("\u20AC", U'\u20AC', 3);
    check("\U0001F600!", U'\U0001F600', 4);
}

// Each code as the standard's table spells it, and nothing else, is valid.
TEST(Utf8, DecodesEveryCode) {
    for (char32_t code = 0; code < 0x110000; ++code) {
        std::string text;
        const auto trail = [&](int shift) { text += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
        if (code < 0x80)
            text += static_cast<char>(code);
        else if (code < 0x800)
            text += static_cast<char>(0xC0 | code >> 6), trail(0);
        else if (code < 0x10000)
            text += static_cast<char>(0xE0 | code >> 12), trail(6), trail(0);
        else
            text += static_cast<char>(0xF0 | code >> 18), trail(12), trail(6), trail(0);
        const Utf8Character character = decodeUtf8(text);
        const bool isSurrogate = code >= 0xD800 && code < 0xE000;
        ASSERT_EQ(character.isValid, !isSurrogate) << static_cast<std::uint32_t>(code);
        ASSERT_EQ(character.code, isSurrogate ? replacementCode : code);
        ASSERT_EQ(character.length, isSurrogate ? 1 : text.size());
    }
}

TEST(Utf8, FindsAnInvalidByteWhereverItStands) {
    for (std::size_t length = 1; length < 40; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, 'x');
            text[at] = '\xFF';
            ASSERT_EQ(validUtf8Prefix(text), at) << "of " << length;
        }
        EXPECT_TRUE(isValidUtf8(std::string(length, 'x')));
    }
    EXPECT_TRUE(isValidUtf8(""));
}

TEST(Utf8, RepairsEachPieceWithOneMark) {
    EXPECT_EQ(repairUtf8("all is well, \u00E9\u20AC"), "all is well, \u00E9\u20AC");
    EXPECT_EQ(repairUtf8("a\xFFz"), "a" + mark + "z");
    EXPECT_EQ(repairUtf8("\xE2\x82z"), mark + "z");             // one character that was cut off
    EXPECT_EQ(repairUtf8("\xED\xA0\x80"), mark + mark + mark);  // no character begins like a surrogate
    EXPECT_EQ(repairUtf8("\xF0\x9F\x98"), mark);                // at the end of the text
    EXPECT_EQ(repairUtf8("\xF0\x9F\x98\x80"), "\U0001F600");
    EXPECT_EQ(repairUtf8("\xF4\x90\x80"), mark + mark + mark);  // above the last code
    EXPECT_EQ(repairUtf8("\xC0\xAF\x80"), mark + mark + mark);
    EXPECT_EQ(repairUtf8(""), "");
}

TEST(Utf8, ATruncatedTextEndsWithAWholeCharacter) {
    EXPECT_EQ(truncatedUtf8Length("abc", 3), 3U);
    EXPECT_EQ(truncatedUtf8Length("abcd", 3), 3U);
    EXPECT_EQ(truncatedUtf8Length("ab\u20AC", 4), 2U);
    EXPECT_EQ(truncatedUtf8Length("a\U0001F600b", 5), 5U);
    EXPECT_EQ(truncatedUtf8Length("a\U0001F600b", 4), 1U);
    EXPECT_EQ(truncatedUtf8Length("\x80\x80\x80\x80\x80\x80\x80\x80", 6), 2U);  // not a text: some end
    EXPECT_EQ(truncatedUtf8Length("\u20AC", 0), 0U);
}

}  // namespace
}  // namespace tessera_support
