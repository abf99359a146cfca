#include "support/xml_escape.h"

#include <gtest/gtest.h>

#include <string>

namespace tessera_support {
namespace {

std::string escaped(std::string_view text, XmlPlace place) {
    std::string result;
    writeXmlEscaped(text, place, [&](std::string_view piece) { result += piece; });
    return result;
}

TEST(XmlEscape, WritesWhatEachPlaceNeeds) {
    const std::string_view text = "<a b=\"1\" c='2'>\t&\r\n]]>";
    EXPECT_EQ(escaped(text, XmlPlace::text), "&lt;a b=\"1\" c='2'&gt;\t&amp;&#13;\n]]&gt;");
    EXPECT_EQ(escaped(text, XmlPlace::attribute), "&lt;a b=&quot;1&quot; c='2'&gt;&#9;&amp;&#13;&#10;]]&gt;");
    EXPECT_EQ(escaped(text, XmlPlace::drawing), "&lt;a b=&quot;1&quot; c=&#39;2&#39;&gt; &amp;  ]]&gt;");
}

TEST(XmlEscape, ReplacesWhatXmlCannotCarry) {
    const std::string text = std::string("a\0b", 3) + "\x1B\xEF\xBF\xBE\xEF\xBF\xBF\xED\xA0\x80\xC3";
    for (const XmlPlace place : {XmlPlace::text, XmlPlace::attribute, XmlPlace::drawing})
        EXPECT_EQ(escaped(text, place), "a\uFFFDb\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(XmlEscape, DrawingsShowNoControlCharacters) {
    EXPECT_EQ(escaped("\x7F\u0085\u009F\u2028\u2029\U0001FFFE", XmlPlace::drawing), "\uFFFD \uFFFD  \uFFFD");
    EXPECT_EQ(escaped("\x7F\u009F\U0001FFFE", XmlPlace::text), "\x7F\u009F\U0001FFFE");
    EXPECT_EQ(escaped("\uFDCF\uFDD0\uFDEF\uFDF0", XmlPlace::drawing), "\uFDCF\uFFFD\uFFFD\uFDF0");
}

// Wherever a character stands among others, whether they are read one by one or eight at once.
TEST(XmlEscape, FindsEveryCharacterAtEveryPlace) {
    for (const XmlPlace place : {XmlPlace::text, XmlPlace::attribute, XmlPlace::drawing})
        for (int value = 0; value < 128; ++value) {
            const std::string alone = escaped(std::string(1, static_cast<char>(value)), place);
            for (std::size_t length = 1; length < 20; ++length)
                for (std::size_t at = 0; at < length; ++at) {
                    std::string text(length, 'x');
                    text[at] = static_cast<char>(value);
                    const std::string expected =
                        std::string(at, 'x') + alone + std::string(length - at - 1, 'x');
                    ASSERT_EQ(escaped(text, place), expected) << value << " at " << at << " of " << length;
                }
        }
}

TEST(XmlEscape, TextThatNeedsNoEscapeIsOnePiece) {
    int pieces = 0;
    writeXmlEscaped<XmlPlace::drawing>("Größe 漢字 😀, and some more of it",
                                       [&](std::string_view) { ++pieces; });
    EXPECT_EQ(pieces, 1);
    writeXmlEscaped<XmlPlace::drawing>("", [&](std::string_view) { ++pieces; });
    EXPECT_EQ(pieces, 1);
}

}  // namespace
}  // namespace tessera_support
