#include "host/text/xml_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/cpu_time.h"
#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using tessera_support::CancelSource;

using namespace text_support;
using basekit2::source_position_t;
using basekit2::variant_bag_t;

// The bag in one line; the order of everything shows. Reading is tested apart from writing bags as XML.
std::string read(std::string_view xml) {
    return toJson(fromXml(xml));
}

std::string textOf(std::string_view content) {
    const variant_bag_t bag = fromXml("<a>" + std::string(content) + "</a>");
    const basekit2::variant_t* text = bag.get("");
    return text ? text->get<const char*>() : "none";
}

TEST(XmlReader, ElementsAreBagsAndAttributesAreValues) {
    EXPECT_EQ(read("<root b='2' a='1'><x/><y i='7'>seven</y><x k=''/></root>"),
              R"({"b":"2","a":"1","x":[{},{"k":""}],"y":{"i":"7","":"seven"}})");
    EXPECT_EQ(read("<whatever/>"), "{}");
}

TEST(XmlReader, ChildrenKeepTheirOrder) {
    const variant_bag_t bag = fromXml("<r><b/><a/><b/><p:c/></r>");
    std::vector<std::string> names;
    for (auto it = bag.begin(); !it.at_end(); it.next())
        names.emplace_back(it.get_name());
    EXPECT_EQ(names, (std::vector<std::string>{"b", "a", "b", "p:c"}));
}

TEST(XmlReader, TextPiecesAndCdataAreJoined) {
    EXPECT_EQ(textOf("one<x>inner</x> two<!-- no --><![CDATA[<3>]]>&amp;<?pi no?>!"), "one two<3>&!");
    EXPECT_EQ(textOf("a<![CDATA[b]]><![CDATA[]]>c"), "abc");
    EXPECT_EQ(read("<r>1<a>2<b>3</b>4</a>5</r>"), R"({"":"15","a":{"":"24","b":{"":"3"}}})");
}

TEST(XmlReader, TextIsTrimmedAtItsEndsOnly) {
    EXPECT_EQ(textOf(" \t\r\n two  words \n"), "two  words");
    EXPECT_EQ(textOf("\n  <x/>\n  late\n  <x/>\n"), "late");
    EXPECT_EQ(textOf(" <![CDATA[ \n]]> x <![CDATA[ ]]>\n"), "x");
    EXPECT_EQ(textOf("&#32;&#9;x&#13;&#10;"), "x");
    EXPECT_EQ(textOf("first\nsecond"), "first\nsecond");
}

TEST(XmlReader, OtherWhiteSpaceIsText) {
    EXPECT_EQ(textOf("\u00A0x\u2003"), "\u00A0x\u2003");  // no-break space, em space
    EXPECT_EQ(textOf("&#xA0;"), "\u00A0");
    EXPECT_EQ(textOf("&#x85;x"), "\u0085x");
}

TEST(XmlReader, NoTextNoValue) {
    for (const char* content : {"", " \n\t ", "<!-- x -->", "<![CDATA[]]>", "<![CDATA[  ]]>", "&#32;"})
        EXPECT_EQ(textOf(content), "none") << content;
}

TEST(XmlReader, CharacterReferencesAndLineEnds) {
    EXPECT_EQ(textOf("&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;&#x1F600;"), "<>&\"'A\u20AC\U0001F600");
    EXPECT_EQ(textOf("a\r\nb\rc"), "a\nb\nc");
    EXPECT_EQ(read("<a b=' x&#10;y\tz '/>"), R"({"b":" x\ny z "})") << "attributes are not trimmed";
}

TEST(XmlReader, EveryBagHasThePositionOfItsStartTag) {
    const variant_bag_t bag = fromXml(
        "<?xml version='1.0'?>\n"
        "<!-- a comment -->  <r a='\n'>\n"
        "\t<x>\u00E9\u20AC<y/></x>\r\n"
        "<z/>\r<z/></r>");
    EXPECT_EQ(bag.position(), (source_position_t{2, 21}));
    const variant_bag_t* x = bag.get_variant_bag("x");
    EXPECT_EQ(x->position(), (source_position_t{4, 2}))
        << "the attribute's line end counts, a tab is one column";
    EXPECT_EQ(x->get_variant_bag("y")->position(), (source_position_t{4, 7})) << "columns count characters";
    auto z = bag.begin();
    z.next();
    EXPECT_EQ(z.get_value().position(), (source_position_t{5, 1}));
    z.next();
    EXPECT_EQ(z.get_value().position(), (source_position_t{6, 1}));
}

TEST(XmlReader, ByteOrderMarkIsSkipped) {
    const variant_bag_t bag = fromXml("\xEF\xBB\xBF<r><x/></r>");
    EXPECT_EQ(bag.position(), (source_position_t{1, 1}));
    EXPECT_EQ(bag.get_variant_bag("x")->position(), (source_position_t{1, 4}));
}

// The document in UTF-16, for texts in the basic plane.
std::string utf16(std::u16string_view text, bool isLittleEndian) {
    std::string bytes;
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += isLittleEndian ? low : high;
        bytes += isLittleEndian ? high : low;
    }
    return bytes;
}

TEST(XmlReader, ReadsUtf16) {
    const std::u16string_view text = u"\uFEFF<r n='\u00E9\u20AC'>\n <x/>\u4E2D</r>";
    for (const bool isLittleEndian : {true, false}) {
        const variant_bag_t bag = fromXml(utf16(text, isLittleEndian));
        EXPECT_EQ(toJson(bag), "{\"n\":\"\u00E9\u20AC\",\"\":\"\u4E2D\",\"x\":{}}");
        EXPECT_EQ(bag.position(), (source_position_t{1, 1}));
        EXPECT_EQ(bag.get_variant_bag("x")->position(), (source_position_t{2, 2}));
    }
}

TEST(XmlReader, ReadsDeclaredEncodings) {
    const variant_bag_t latin =
        fromXml("<?xml version='1.0' encoding='ISO-8859-1'?><r n='\xE9'>\xFC\xFC<x/></r>");
    EXPECT_EQ(toJson(latin), "{\"n\":\"\u00E9\",\"\":\"\u00FC\u00FC\",\"x\":{}}");
    EXPECT_EQ(latin.get_variant_bag("x")->position(), (source_position_t{1, 55}));
    EXPECT_EQ(read("<?xml version='1.0' encoding='utf-8'?><r>\u00FC</r>"), "{\"\":\"\u00FC\"}");
    EXPECT_EQ(read("<?xml version='1.0' encoding='US-ASCII'?><r>u</r>"), R"({"":"u"})");
}

TEST(XmlReader, DoctypeAddsNothing) {
    EXPECT_EQ(
        read("<!DOCTYPE r [<!ELEMENT r ANY><!ATTLIST r a CDATA 'default' b CDATA #FIXED 'fixed' c CDATA 'c'>"
             "<!NOTATION n SYSTEM 'n'><!-- %no; <!ENTITY no 'no'> --><?p %no; ?>]><r c='given'/>"),
        R"({"c":"given"})");
    EXPECT_EQ(read("<!DOCTYPE r SYSTEM 'file:///etc/passwd'><r a='&lt;&#65;'>&amp;</r>"),
              R"({"a":"<A","":"&"})");
    EXPECT_EQ(read("<!DOCTYPE r PUBLIC '-//x//y' 'http://localhost:9/x.dtd' []><r/>"), "{}");
}

std::string manyElements(int count) {
    std::string xml = "<r>";
    for (int i = 0; i < count; ++i)
        xml += "<x>text</x>\n";
    return xml + "</r>";
}

TEST(XmlReader, CancellationStopsTheReading) {
    CancelSource source;
    const std::string large = manyElements(100000);
    const auto begin = tessera_test::threadCpuTime();
    EXPECT_TRUE(readXmlText(large, source.token()));
    const auto whole = tessera_test::threadCpuTime() - begin;
    source.cancel();
    for (const std::string& text : {std::string("<r/>"), large}) {
        const auto start = tessera_test::threadCpuTime();
        const auto read = readXmlText(text, source.token());
        ASSERT_FALSE(read);
        EXPECT_TRUE(read.error().isCancelled());
        EXPECT_EQ(read.error().position.line, 0U);
        EXPECT_LT(tessera_test::threadCpuTime() - start, whole / 5);
    }
}

// At any place of the document.
TEST(XmlReader, CancellationStopsARunningReading) {
    const std::string large = manyElements(1000000);
    CancelSource source;
    std::thread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        source.cancel();
    });
    const auto read = readXmlText(large, source.token());
    canceller.join();
    ASSERT_FALSE(read) << "it takes many times as long";
    EXPECT_TRUE(read.error().isCancelled());
}

}  // namespace
}  // namespace tessera_host
