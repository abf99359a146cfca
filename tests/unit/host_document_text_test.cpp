// Text of documents in messages.
#include <gtest/gtest.h>

#include "host/document/text.h"

namespace tessera_host {
namespace {

TEST(OneLine, KeepsWhatIsNotAControlCharacter) {
    EXPECT_EQ(oneLine("a \xC3\xA4 \xE2\x82\xAC ~\xC2\xA0"), "a \xC3\xA4 \xE2\x82\xAC ~\xC2\xA0");
}

TEST(OneLine, ControlCharactersBecomeSpaces) {
    EXPECT_EQ(oneLine(std::string_view("a\nb\r\tc\0d\x1B[1m\x7F|", 14)), "a b  c d [1m |");
}

TEST(OneLine, ControlCharactersBeyondAsciiBecomeSpaces) {
    EXPECT_EQ(oneLine("a\xC2\x80"
                      "b\xC2\x85"
                      "c\xC2\x9F"
                      "d"),
              "a b c d");
}

TEST(OneLine, LineAndParagraphSeparatorsBecomeSpaces) {
    EXPECT_EQ(oneLine("a\xE2\x80\xA8"
                      "b\xE2\x80\xA9"
                      "c"),
              "a b c");
    EXPECT_EQ(oneLine("\xE2\x80\xA7|\xE2\x80\xAA"), "\xE2\x80\xA7|\xE2\x80\xAA") << "their neighbours stay";
}

TEST(OneLine, InvalidUtf8IsReplaced) {
    EXPECT_EQ(oneLine("a\xFF"
                      "b"),
              "a\xEF\xBF\xBD"
              "b");
}

TEST(OneLine, LongTextIsTruncatedBetweenCharacters) {
    std::string text(299, 'x');
    text += "\xE2\x82\xAC and more";
    EXPECT_EQ(oneLine(text), std::string(299, 'x') + "\xE2\x82\xAC...");
    EXPECT_EQ(oneLine(std::string(300, 'x')), std::string(300, 'x'));
}

TEST(Quoted, StandsBetweenQuotes) {
    EXPECT_EQ(quoted("a\nb"), "\"a b\"");
    EXPECT_EQ(quoted(""), "\"\"");
}

}  // namespace
}  // namespace tessera_host
