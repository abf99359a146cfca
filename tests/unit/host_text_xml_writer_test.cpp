#include "host/text/xml_writer.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;
using namespace std::string_literals;
using basekit2::variant_bag_t;
using basekit2::variant_t;

const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string mark = "\xEF\xBF\xBD";

std::string withText(std::string_view text) {
    variant_bag_t bag;
    bag.put("", text);
    return toXml(bag);
}

std::string withAttribute(std::string_view text) {
    variant_bag_t bag;
    bag.put("a", text);
    return toXml(bag);
}

TEST(XmlWriter, ValuesChildrenAndIndentation) {
    variant_bag_t bag;
    bag.put("text", "x");
    bag.put("number", variant_t(std::int64_t{-9223372036854775807 - 1}));
    bag.put("yes", variant_t(true));
    bag.put("no", variant_t(false));
    bag.put("nothing", variant_t());
    variant_bag_t& child = bag.add_variant_bag("child");
    child.add_variant_bag("leaf").put("", "text");
    child.add_variant_bag("leaf");
    bag.add_variant_bag("last");
    EXPECT_EQ(toXml(bag),
              head +
                  "<bag text=\"x\" number=\"-9223372036854775808\" yes=\"true\" no=\"false\" nothing=\"\">\n"
                  "  <child>\n"
                  "    <leaf>text</leaf>\n"
                  "    <leaf/>\n"
                  "  </child>\n"
                  "  <last/>\n"
                  "</bag>\n");
}

TEST(XmlWriter, RootName) {
    std::string text;
    StringSink sink(text);
    EXPECT_TRUE(writeXml(variant_bag_t(), sink, "diagram"));
    EXPECT_EQ(text, head + "<diagram/>\n");
}

TEST(XmlWriter, NoWhiteSpaceIsAddedAroundText) {
    variant_bag_t bag;
    variant_bag_t& mixed = bag.add_variant_bag("mixed");
    mixed.put("", "text");
    mixed.add_variant_bag("x").add_variant_bag("y");
    mixed.add_variant_bag("z");
    EXPECT_EQ(toXml(bag), head + "<bag>\n  <mixed>text<x><y/></x><z/></mixed>\n</bag>\n");
}

TEST(XmlWriter, ANumberAsOwnText) {
    variant_bag_t bag;
    bag.put("", variant_t(std::int64_t{42}));
    EXPECT_EQ(toXml(bag), head + "<bag>42</bag>\n");
}

TEST(XmlWriter, AnEmptyOwnTextIsLeftOut) {
    EXPECT_EQ(withText(""), head + "<bag/>\n");
}

TEST(XmlWriter, Escapes) {
    EXPECT_EQ(withText("<&>\"'\r\n\tx"), head + "<bag>&lt;&amp;&gt;\"'&#13;\n\tx</bag>\n");
    EXPECT_EQ(withText("]]>"), head + "<bag>]]&gt;</bag>\n");
    EXPECT_EQ(withAttribute("<&>\"'\r\n\tx"), head + "<bag a=\"&lt;&amp;&gt;&quot;'&#13;&#10;&#9;x\"/>\n");
}

TEST(XmlWriter, EscapesAtEveryPlaceOfAText) {
    for (std::size_t length = 1; length < 30; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, 'x');
            text[at] = '&';
            std::string expected = text;
            expected.replace(at, 1, "&amp;");
            ASSERT_EQ(withAttribute(text), head + "<bag a=\"" + expected + "\"/>\n");
        }
    }
}

TEST(XmlWriter, NonAsciiStaysAsItIs) {
    EXPECT_EQ(withText("\u00E9\u20AC\U0001F600\u0085\u2028"),
              head + "<bag>\u00E9\u20AC\U0001F600\u0085\u2028</bag>\n");
}

TEST(XmlWriter, WhatXmlCannotHoldIsReplaced) {
    EXPECT_EQ(withText("a\0b\x01\x1F"s), head + "<bag>a" + mark + "b" + mark + mark + "</bag>\n");
    EXPECT_EQ(withText("\xEF\xBF\xBE|\xEF\xBF\xBF"), head + "<bag>" + mark + "|" + mark + "</bag>\n");
    EXPECT_EQ(withAttribute("\xFF|\xC3|\xED\xA0\x80"),
              head + "<bag a=\"" + mark + "|" + mark + "|" + mark + mark + mark + "\"/>\n");
    EXPECT_EQ(withText("\x7F"), head + "<bag>\x7F</bag>\n") << "discouraged, but allowed";
}

TEST(XmlWriter, NamesBeyondAsciiAreWhatTheReaderTakes) {
    variant_bag_t bag;
    bag.put("gr\u00F6\u00DFe", "1");
    bag.add_variant_bag("\u0416").put("x:y-z.1_", "2");
    EXPECT_EQ(toXml(bag), head + "<bag gr\u00F6\u00DFe=\"1\">\n  <\u0416 x:y-z.1_=\"2\"/>\n</bag>\n");
    EXPECT_EQ(fromXml(toXml(bag)), bag);
}

std::string errorFor(const variant_bag_t& bag, std::string_view root = "bag") {
    std::string text;
    StringSink sink(text);
    const auto written = writeXml(bag, sink, root);
    return written ? "no error" : written.error().text;
}

TEST(XmlWriter, NamesThatXmlDoesNotAllowAreErrors) {
    for (const std::string& name : {"two words"s, "1st"s, "-a"s, "a<b"s, "a=b"s, "a/"s, "a&amp;"s, "a\nb"s,
                                    "\u20AC"s, "a\u20AC"s, "\u00D7"s, "\xC2\xA0"s, "a>"s}) {
        variant_bag_t attribute;
        attribute.put("ok", "1");
        attribute.put(name, "1");
        EXPECT_EQ(errorFor(attribute), "'" + name + "' cannot be the name of an XML attribute");
        variant_bag_t element;
        element.add_variant_bag("ok").add_variant_bag(name);
        EXPECT_EQ(errorFor(element), "'" + name + "' cannot be the name of an XML element");
        EXPECT_EQ(errorFor(variant_bag_t(), name), "'" + name + "' cannot be the name of an XML element");
    }
    variant_bag_t nameless;
    nameless.add_variant_bag("");
    EXPECT_EQ(errorFor(nameless), "'' cannot be the name of an XML element");
    variant_bag_t broken;
    broken.put("a\xFF", "1");
    EXPECT_EQ(errorFor(broken), "'a" + mark + "' cannot be the name of an XML attribute");
    variant_bag_t withNul;
    withNul.put("a\0b"s, "1");
    EXPECT_NE(errorFor(withNul), "no error");
}

// A sink whose first write fails.
class ClosedSink final : public TextSink {
  public:
    int calls = 0;

  protected:
    bool deliver(std::string_view) override {
        ++calls;
        return false;
    }
};

TEST(XmlWriter, StopsWhenTheSinkFails) {
    variant_bag_t bag;
    for (int i = 0; i < 100000; ++i)
        bag.add_variant_bag("child");
    ClosedSink sink;
    EXPECT_TRUE(writeXml(bag, sink));
    EXPECT_FALSE(sink.good());
    EXPECT_EQ(sink.calls, 1);
}

}  // namespace
}  // namespace tessera_host
