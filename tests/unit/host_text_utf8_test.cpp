#include "host/text/utf8.h"

#include <gtest/gtest.h>

#include <string>

#include "host/text/byte_words.h"

namespace tessera_host {
namespace {

using namespace std::string_literals;

const std::string mark(replacementCharacter);

TEST(Utf8, AcceptsTheFirstAndLastCodeOfEachLength) {
    for (const std::string& text :
         {"\x00"s, "\x7F"s, "\xC2\x80"s, "\xDF\xBF"s, "\xE0\xA0\x80"s, "\xEF\xBF\xBF"s, "\xF0\x90\x80\x80"s,
          "\xF4\x8F\xBF\xBF"s, "\xED\x9F\xBF"s, "\xEE\x80\x80"s})
        EXPECT_TRUE(isValidUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, RefusesWhatIsNoCharacter) {
    for (const std::string& text :
         {"\x80"s, "\xBF"s, "\xC0\x80"s, "\xC1\xBF"s, "\xE0\x9F\xBF"s, "\xF0\x8F\xBF\xBF"s, "\xED\xA0\x80"s,
          "\xED\xBF\xBF"s, "\xF4\x90\x80\x80"s, "\xF5\x80\x80\x80"s, "\xFF"s, "\xC3"s, "\xE2\x82"s,
          "\xF0\x9F\x98"s, "\xC3("s})
        EXPECT_FALSE(isValidUtf8(text)) << testing::PrintToString(text);
}

TEST(Utf8, DecodesCodeAndLength) {
    const auto check = [](std::string_view text, char32_t code, std::size_t length) {
        const Utf8Character character = decodeUtf8(text);
        EXPECT_TRUE(character.valid);
        EXPECT_EQ(character.code, code);
        EXPECT_EQ(character.length, length);
    };
    check("A", U'A', 1);
    check("\u00E9x", U'\u00E9', 2);
    check("\u20AC", U'\u20AC', 3);
    check("\U0001F600!", U'\U0001F600', 4);
}

TEST(Utf8, FindsABadByteWhereverItStands) {
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

TEST(Utf8, MendsEachPieceWithOneMark) {
    EXPECT_EQ(mendUtf8("all is well, \u00E9\u20AC"), "all is well, \u00E9\u20AC");
    EXPECT_EQ(mendUtf8("a\xFFz"), "a" + mark + "z");
    EXPECT_EQ(mendUtf8("\xE2\x82z"), mark + "z");             // one character that was cut off
    EXPECT_EQ(mendUtf8("\xED\xA0\x80"), mark + mark + mark);  // no character begins like a surrogate
    EXPECT_EQ(mendUtf8("\xF0\x9F\x98"), mark);                // at the end of the text
    EXPECT_EQ(mendUtf8("\xC0\xAF\x80"), mark + mark + mark);
    EXPECT_EQ(mendUtf8(""), "");
}

// The word questions against a look at each byte.
TEST(ByteWords, AnswerForEveryByteAtEveryPlace) {
    for (unsigned value = 0; value < 256; ++value) {
        for (std::size_t place = 0; place < 8; ++place) {
            std::string bytes(8, 'x');
            bytes[place] = static_cast<char>(value);
            const word_t word = loadWord(bytes.data());
            const word_t bit = word_t{0x80} << (8 * place);
            ASSERT_EQ(highBytes(word), value >= 0x80 ? bit : 0);
            ASSERT_EQ(bytesBelow(word, 0x20), value < 0x20 ? bit : 0);
            ASSERT_EQ(bytesEqual(word, '\n'), value == '\n' ? bit : 0);
        }
    }
}

}  // namespace
}  // namespace tessera_host
