// What the XML reader says about wrong documents, and where.
#include <gtest/gtest.h>

#include <string>

#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;
using namespace std::string_literals;

std::string errorOf(std::string_view xml) {
    const auto read = readXmlText(xml);
    if (!read) {
        EXPECT_EQ(read.error().kind, ErrorKind::failed);
    }
    return problem(read);
}

TEST(XmlErrors, UnclosedElementIsNamedWithItsPlace) {
    EXPECT_EQ(errorOf("<a>\n <b x='1'>\n"), "3:1: element 'b', opened at line 2, column 2, is not closed");
    EXPECT_EQ(errorOf("<a>"), "1:4: element 'a', opened at line 1, column 1, is not closed");
    EXPECT_EQ(errorOf("<a><b/><b/><b>text"), "1:19: element 'b', opened at line 1, column 12, is not closed");
}

TEST(XmlErrors, MismatchedTagNamesBoth) {
    EXPECT_EQ(errorOf("<a>\n  <b>\n  </c>\n</a>"),
              "3:3: the end tag 'c' does not match element 'b', opened at line 2, column 3");
    EXPECT_EQ(errorOf("<a><b><c/></a></b>"),
              "1:11: the end tag 'a' does not match element 'b', opened at line 1, column 4");
    EXPECT_EQ(errorOf("\xEF\xBB\xBF<a>\u00E9</b >"),
              "1:5: the end tag 'b' does not match element 'a', opened at line 1, column 1");
    EXPECT_EQ(errorOf("\xFE\xFF\0<\0a\0>\0\n\0\xE9\0<\0/\0b\0>"s),
              "2:4: the end tag does not match element 'a', opened at line 1, column 1");
}

TEST(XmlErrors, UnfinishedMarkupIsShownWhereItBegins) {
    const std::string markup = ": the document ends within a tag, comment or other markup";
    EXPECT_EQ(errorOf("<a>\n<b x='1"), "2:1" + markup);
    EXPECT_EQ(errorOf("<a>\n <!-- x"), "2:2" + markup);
    EXPECT_EQ(errorOf("<a/>\n<!-- "), "2:1" + markup);
    EXPECT_EQ(errorOf("<?xml version='1.0'"), "1:1" + markup);
    EXPECT_EQ(errorOf("<a>\n <![CDATA[ x\n\n"), "2:2: the document ends within a CDATA section");
}

TEST(XmlErrors, NothingThere) {
    EXPECT_EQ(errorOf(""), "1:1: the document is empty");
    EXPECT_EQ(errorOf("  \n"), "2:1: there is no root element");
    EXPECT_EQ(errorOf("<?xml version='1.0'?><!-- c -->"), "1:32: there is no root element");
    EXPECT_EQ(errorOf("\xEF\xBB\xBF"), "1:1: there is no root element");
}

TEST(XmlErrors, OnlyCommentsSurroundTheRoot) {
    EXPECT_EQ(errorOf("<a/>\nxyz"), "2:1: something follows the end of the root element");
    EXPECT_EQ(errorOf("<a/>\n  <b/>"), "2:3: something follows the end of the root element");
    EXPECT_EQ(errorOf("<a/>\n&amp;"), "2:1: unexpected character '&'");
    EXPECT_EQ(errorOf("abc"), "1:1: this cannot stand before the root element");
    EXPECT_EQ(errorOf("{\"a\":1}"), "1:1: unexpected character '{'");
    EXPECT_EQ(errorOf("<a/><!-- ok --> <?ok?>\n"), "no error");
}

TEST(XmlErrors, NotWellFormed) {
    EXPECT_EQ(errorOf("<a b=1/>"), "1:6: unexpected character '1'");
    EXPECT_EQ(errorOf("<a\n b='x<y'/>"), "2:6: unexpected character '<'");
    EXPECT_EQ(errorOf("<a x='1'y='2'/>"), "1:9: unexpected character 'y'");
    EXPECT_EQ(errorOf("<1/>"), "1:2: unexpected character '1'");
    EXPECT_EQ(errorOf("< a/>"), "1:2: white space is not allowed here");
    EXPECT_EQ(errorOf("<a>]]></a>"), "1:6: unexpected character '>'");
    EXPECT_EQ(errorOf("<a> x & y</a>"), "1:8: '&' must be written as '&amp;'");
    EXPECT_EQ(errorOf("<a b='1' b='2'/>"), "1:10: the attribute 'b' is given twice");
    EXPECT_EQ(errorOf("\n<?xml version='1.0'?><a/>"),
              "2:1: the XML declaration must stand at the very beginning");
}

TEST(XmlErrors, CharactersThatXmlCannotHold) {
    EXPECT_EQ(errorOf("<a>\n\x01</a>"), "2:1: XML does not allow the character U+0001");
    EXPECT_EQ(errorOf("<a>\0</a>"s), "1:4: XML does not allow the character U+0000");
    EXPECT_EQ(errorOf("<a>\xEF\xBF\xBE</a>"), "1:4: XML does not allow the character U+FFFE");
    EXPECT_EQ(errorOf("<a>x&#0;</a>"), "1:5: the reference is to no character of XML");
    EXPECT_EQ(errorOf("<a>x&#xD800;</a>"), "1:5: the reference is to no character of XML");
}

TEST(XmlErrors, BytesThatAreNotUtf8) {
    EXPECT_EQ(errorOf("<a>\n\u00E9\xC3(</a>"), "2:2: this is not valid UTF-8");
    EXPECT_EQ(errorOf("<a>\xE9</a>"), "1:4: this is not valid UTF-8");
    EXPECT_EQ(errorOf("<a b='\xFF'/>"), "1:7: this is not valid UTF-8");
    EXPECT_EQ(errorOf("<a><b\xC0\x80/></a>"), "1:6: this is not valid UTF-8");
    EXPECT_EQ(errorOf("<a>\xED\xA0\x80</a>"), "1:4: this is not valid UTF-8");
    EXPECT_EQ(errorOf("<a>\xC3"), "1:4: the document ends within a character");
}

TEST(XmlErrors, Encodings) {
    EXPECT_EQ(errorOf("<?xml version='1.0' encoding='klingon'?><a/>"),
              "1:31: the encoding 'klingon' is not known");
    EXPECT_EQ(errorOf("<?xml version='1.0' encoding='UTF-16'?><a/>"),
              "1:31: the document is not in the encoding that it declares, 'UTF-16'");
}

TEST(XmlErrors, EntityDeclarationsAreRefused) {
    const std::string refused = ": entity declarations are not accepted";
    EXPECT_EQ(errorOf("<!DOCTYPE a [\n  <!ENTITY x 'y'>\n]><a>&x;</a>"), "2:3" + refused);
    EXPECT_EQ(errorOf("<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>"), "1:14" + refused);
    EXPECT_EQ(errorOf("<!DOCTYPE a [<!ENTITY % x 'y'>]><a/>"), "1:14" + refused);
    EXPECT_EQ(errorOf("<!DOCTYPE a [<!ENTITY lt '&#38;#60;'>]><a/>"), "1:14" + refused);
    EXPECT_EQ(errorOf("<!DOCTYPE a [<!ATTLIST a b CDATA #IMPLIED> <!ENTITY x 'y'>]><a/>"), "1:44" + refused);
    EXPECT_EQ(errorOf("<!DOCTYPE a [ %x; <!ENTITY y 'z'>]><a/>"),
              "1:15: references to parameter entities are not accepted");
    EXPECT_EQ(errorOf("\xFE\xFF\0<\0!\0D\0O\0C\0T\0Y\0P\0E\0 \0a\0 \0[\0<\0!\0E\0N\0T\0I\0T\0Y\0 \0x"s),
              "1:14" + refused);
}

TEST(XmlErrors, EntityBombsAndChainsEndAtOnce) {
    std::string bomb = "<!DOCTYPE a [\n<!ENTITY e0 'ha'>\n";
    for (int i = 1; i < 100; ++i) {
        const std::string reference = "&e" + std::to_string(i - 1) + ';';
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + reference + reference + "'>\n";
    }
    EXPECT_EQ(errorOf(bomb + "]><a>&e99;</a>"), "2:1: entity declarations are not accepted");

    std::string chain = "<!DOCTYPE a [\n";
    for (int i = 200000; i > 0; --i)
        chain += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>\n";
    EXPECT_EQ(errorOf(chain + "]><a b='&e200000;'/>"), "2:1: entity declarations are not accepted");
}

TEST(XmlErrors, UnknownEntities) {
    const std::string unknown = ": the entity 'x' is not known";
    EXPECT_EQ(errorOf("<a>\n&x;</a>"), "2:1" + unknown);
    EXPECT_EQ(errorOf("<a b='1' c='&amp;&x;'/>"), "1:18" + unknown);
    EXPECT_EQ(errorOf("<!DOCTYPE a [<!ATTLIST a b CDATA '&x;'>]><a/>"), "1:35" + unknown);
    // A DTD that is not read might declare it; still it is unknown here.
    EXPECT_EQ(errorOf("<!DOCTYPE a SYSTEM 'x.dtd'><a>\n&x;</a>"), "2:1" + unknown);
    EXPECT_EQ(errorOf("<!DOCTYPE a SYSTEM 'x.dtd'><a>\n<b c='&lt;&#65;&x;'/></a>"), "2:16" + unknown);
}

TEST(XmlErrors, UnknownEntityInUtf16AttributeUnderExternalDoctype) {
    std::string xml = "\xFF\xFE";
    // U+2600 contains the byte of '&', but is not a reference.
    for (const char16_t unit : u"<!DOCTYPE a SYSTEM 'd'><a b='&gt;\u2600;' c='&x;'/>"s) {
        xml += static_cast<char>(unit & 0xFF);
        xml += static_cast<char>(unit >> 8);
    }
    EXPECT_EQ(errorOf(xml), "1:24: the entity 'x' is not known");
}

}  // namespace
}  // namespace tessera_host
