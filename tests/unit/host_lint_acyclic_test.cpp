// Documents whose links form cycles: what is reversed in them, and what is reported.
#include <gtest/gtest.h>

#include "tests/support/bag_reading.h"
#include "tests/support/memory_host.h"
#include "tests/unit/host_lint_acyclic_support.h"

namespace tessera_host {
namespace {

using namespace acyclic_support;
using tessera_support::CancelSource;
using tessera_test::bagOf;
using tessera_test::jsonOf;

std::vector<std::string> textsOf(const std::vector<Problem>& problems) {
    std::vector<std::string> texts;
    for (const auto& [position, text, severity] : problems)
        texts.push_back((position.line == 0
                             ? ""
                             : std::to_string(position.line) + ":" + std::to_string(position.column) + ": ") +
                        text);
    return texts;
}

// What the document becomes, expressed as another document. The original viewpoint stays unchanged.
void expectReversed(const std::string& before, const std::string& after) {
    const Viewpoint::Pointer viewpoint = viewpointOf(before);
    const auto made = makeAcyclic(viewpoint, CancelToken());
    ASSERT_TRUE(made);
    EXPECT_EQ(jsonOf(made->viewpoint->bag()), jsonOf(bagOf(after)));
    const auto fixed = fixDocument(before, viewpoint, CancelToken());
    ASSERT_TRUE(fixed) << fixed.error().text;
    EXPECT_EQ(fixed->text, after);
    EXPECT_EQ(jsonOf(viewpoint->bag()), jsonOf(bagOf(before)));
}

const std::string abc = "<node id='a'/><node id='b'/><node id='c'/>";

TEST(AcyclicDocument, LastLinkOfACycleIsReversed) {
    expectReversed(diagram(abc + "<link id='1' from='a' to='b'/><link id='2' from='b' to='c'/>"
                                 "<link id='3' from='c' to='a'/>"),
                   diagram(abc + "<link id='1' from='a' to='b'/><link id='2' from='b' to='c'/>"
                                 "<link id='3' from='a' to='c'/>"));
}

TEST(AcyclicDocument, DirectionIsReversedWithTheLink) {
    const auto withDirection = [&](const std::string& ends, const std::string& direction) {
        return diagram(abc + "<link id='1' from='a' to='b'/><link id='2' from='a' to='b'/><link id='3' " +
                       ends + " direction='" + direction + "'/>");
    };
    for (const auto& [before, after] : {std::pair{"forward", "back"},
                                        {"back", "forward"},
                                        {"both", "both"},
                                        {"none", "none"},
                                        {"", ""},
                                        {"Forward", "Forward"},
                                        {"from", "from"}})
        expectReversed(withDirection("from='b' to='a'", before), withDirection("from='a' to='b'", after));
}

TEST(AcyclicDocument, LabelsAtTheEndsAreExchanged) {
    const std::string circle = "<link id='1' from='a' to='b'/><link id='1b' from='a' to='b'/>";
    const std::string label = "<dataTransfer><size><rowSet/></size></dataTransfer></label>";
    const std::string others =
        "<link id='1'><label location='to'/></link><node id='2'><label location='to'/></node>";
    expectReversed(
        diagram(abc + circle + "<link id='2' from='b' to='a'/>",
                others + "<link id='2' displayName='x'><label location='from'>" + label +
                    "<label location='center'/><label/><label location='to'/><label location='To'/>"
                    "<other location='to'/></link>"),
        diagram(abc + circle + "<link id='2' from='a' to='b'/>",
                others + "<link id='2' displayName='x'><label location='to'>" + label +
                    "<label location='center'/><label/><label location='from'/><label location='To'/>"
                    "<other location='to'/></link>"));
}

TEST(AcyclicDocument, EntriesBelongToTheLinkThatTheyReach) {
    // The first entry comes before its link and reaches nothing; it would mean it. The second reaches the
    // first link of that id, which is not reversed, the third the second one.
    const auto document = [](const std::string& link, const std::string& from, const std::string& to) {
        return "<v><diagram><display><link id='2'><label location='" + from + "'/></link></display><graph>" +
               abc +
               "<link id='x' from='a' to='b'/><link id='y' from='a' to='b'/></graph><display><link id='x'>"
               "<label location='from'/></link></display><graph><link id='x' " +
               link + "/><link id='2' " + link + "/></graph><display><link id='x'><label location='" + to +
               "'/></link></display></diagram></v>";
    };
    const std::string two = document("from='a' to='b'", "from", "to");
    EXPECT_EQ(jsonOf(acyclic(two)), jsonOf(bagOf(two)));
    // Three against two: with one more link, fewer go the other way.
    const std::string more = "<link id='z' from='a' to='b'/></graph><display>";
    const auto withMore = [&](std::string text) {
        return text.replace(text.find("</graph><display>"), 17, more);
    };
    expectReversed(withMore(document("from='b' to='a'", "from", "to")),
                   withMore(document("from='a' to='b'", "to", "from")));
}

TEST(AcyclicDocument, LinksBetweenGroupsCountForTheGroups) {
    const std::string groups =
        "<node id='G'><node id='a'/></node><node id='H'><node id='b'/><node id='c'/></node>";
    expectReversed(
        diagram(groups + "<link id='1' from='a' to='b'/><link id='2' from='c' to='a' direction='forward'/>"
                         "<link id='3' from='b' to='c'/><link id='4' from='G' to='c'/>"),
        diagram(groups + "<link id='1' from='a' to='b'/><link id='2' from='a' to='c' direction='back'/>"
                         "<link id='3' from='b' to='c'/><link id='4' from='G' to='c'/>"));
}

TEST(AcyclicDocument, AnEndWithoutIdIsReversedToo) {
    expectReversed(diagram("<node/><node id='a'/><link id='1' to='a'/><link id='2' from='a'/>"),
                   diagram("<node/><node id='a'/><link id='1' to='a'/><link id='2' to='a'/>"));
}

TEST(AcyclicDocument, LoopsStayAndAreReported) {
    const std::string document = diagram(
        "<node id='G'><node id='a'/></node>\n<link id='1' from='a' to='a'/>\n<link id='2' from='a' to='G'/>\n"
        "<link id='3' from='G' to='a'/>");
    const AcyclicViewpoint made = madeAcyclic(document);
    EXPECT_EQ(jsonOf(made.viewpoint->bag()), jsonOf(bagOf(document)));
    EXPECT_EQ(textsOf(made.messages),
              (std::vector<std::string>{"2:1: link \"1\" from \"a\" to itself forms a cycle inside group "
                                        "\"G\": a -> a; reversing the link does not help"}));
}

TEST(AcyclicDocument, TextKeepsEveryOtherByte) {
    const std::string head =
        "\xEF\xBB\xBF<?xml version='1.0'?>\r\n<!-- <link id='2'> --><v><diagram><graph>\n"
        "<node id='\xC3\xA9'/><node id='\"'/><node id=\"'\"/>\r<![CDATA[<link]]>";
    const std::string tail = "<!-- end --></graph><display/></diagram></v>\n\n";
    const std::string first =
        "<link id='1' from='\xC3\xA9' to='&#34;'/><link id='1b' to='\"' from='&#233;'/>";
    const std::string before =
        head + first + "<link\n  to = \"\xC3\xA9\"\tdirection='&#102;orward' id='2'\n from='\"' ></link>" +
        tail;
    const std::string after =
        head + first + "<link\n  to = '\"'\tdirection='back' id='2'\n from=\"\xC3\xA9\" ></link>" + tail;
    expectReversed(before, after);
}

TEST(AcyclicDocument, OtherEncodingsAreFixedWhereTheyCanBe) {
    const auto document = [](const std::string& name, const std::string& link) {
        return "<?xml version='1.0' encoding='ISO-8859-1'?><v><diagram><graph>" + name +
               "<link id='1' from='a' to='b'/><link id='1b' from='a' to='b'/>\n" + link +
               "</graph></diagram></v>";
    };
    const std::string nodes = "<node id='a'/><node id='b' name='\xE9'/>";
    expectReversed(document(nodes, "<link id='2' from='b' to='a'/>"),
                   document(nodes, "<link id='2' from='a' to='b'/>"));
    // A byte that continues a character in UTF-8, and is one here, in front of it on its line.
    const std::string text = document(nodes, "<!-- \xBB --><link id='2' from='b' to='a'/>");
    const auto fixed = fixDocument(text, viewpointOf(text), CancelToken());
    ASSERT_FALSE(fixed);
    EXPECT_EQ(fixed.error().kind, ErrorKind::failed);
}

TEST(AcyclicDocument, MessagesAreFew) {
    std::string graph;
    for (int i = 0; i < 30; ++i) {
        const std::string a = "'a" + std::to_string(i) + "'", b = "'b" + std::to_string(i) + "'";
        graph += "<node id=" + a + "/><node id=" + b + "/><link id=" + a + " from=" + a + " to=" + b +
                 "/><link id=" + b + " from=" + b + " to=" + a + "/><link id='x' from=" + a + " to=" + a +
                 "/>";
    }
    const auto reported = describeCycles(*viewpointOf(diagram(graph)), CancelToken());
    ASSERT_EQ(reported.size(), 22U);
    EXPECT_EQ(reported[10].text, "and 20 more cycles of links; --acyclic helps there, too");
    EXPECT_EQ(reported[21].text, "and 20 more links between a node and itself");
    const auto messages = madeAcyclic(diagram(graph)).messages;
    ASSERT_EQ(messages.size(), 12U);
    EXPECT_TRUE(messages[0].text.starts_with("30 links \"b0\" (line 1), \"b1\" (line 1), "));
    EXPECT_TRUE(
        messages[0].text.ends_with("\"b7\" (line 1) and 22 more were reversed, because links formed cycles"));
}

TEST(AcyclicDocument, CyclesAreReportedByTheirLinks) {
    const auto viewpoint = viewpointOf(diagram(
        "<node id='G'>" + abc +
        "</node>\n<link id='1' from='a' to='b'/>\n<link id='2' from='b' to='a'/>"
        "<link id='3' from='b' to='c'/><link id='4' from='c' to='a'/>\n<link id='5' from='G' to='a'/>"));
    EXPECT_EQ(
        textsOf(describeCycles(*viewpoint, CancelToken())),
        (std::vector<std::string>{
            "2:1: links \"1\" (line 2) and \"2\" (line 3) form a cycle inside group \"G\": a -> b -> a; "
            "cycles connected with it hold 1 more node and 2 more links; pictures follow the links anyway; "
            "for "
            "the levels in the data, --acyclic reverses as few links as possible"}));
}

TEST(AcyclicDocument, WithoutCyclesTheViewpointIsTheSame) {
    const auto viewpoint = viewpointOf(diagram(abc + "<link id='1' from='a' to='b'/>"));
    const auto made = makeAcyclic(viewpoint, CancelToken());
    ASSERT_TRUE(made);
    EXPECT_EQ(made->viewpoint, viewpoint);
    EXPECT_TRUE(made->messages.empty());
}

TEST(AcyclicDocument, ACancelledCallHasNoResult) {
    CancelSource source;
    source.cancel();
    const std::string text = diagram(abc + "<link id='1' from='a' to='b'/><link id='2' from='b' to='a'/>");
    const auto made = makeAcyclic(viewpointOf(text), source.token());
    ASSERT_FALSE(made);
    EXPECT_TRUE(made.error().isCancelled());
    const auto fixed = fixDocument(text, viewpointOf(text), source.token());
    ASSERT_FALSE(fixed);
    EXPECT_TRUE(fixed.error().isCancelled());
    EXPECT_TRUE(describeCycles(*viewpointOf(text), source.token()).empty());
}

}  // namespace
}  // namespace tessera_host
