// Documents whose links form cycles: what is reversed in them, and what the layering makes of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "host/lint/cycles/cycle_finder.h"
#include "host/lint/reversal/acyclic_viewpoint.h"
#include "host/lint/reversal/fixed_document.h"
#include "tests/support/bag_reading.h"
#include "tests/support/effort.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"
#include "tests/support/model_building.h"
#include "tests/support/random_diagram.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using tessera_support::CancelSource;
using tessera_support::CancelToken;
using tessera_test::bagOf;
using tessera_test::jsonOf;
using tessera_test::LogCapture;
using tessera_test::MemoryHost;
using tessera_test::textOf;

std::string diagram(const std::string& graph, const std::string& display = {}) {
    return "<v><diagram><graph id='g'>" + graph + "</graph>" +
           (display.empty() ? "" : "<display>" + display + "</display>") + "</diagram></v>";
}

Viewpoint::Pointer viewpointOf(const std::string& xml) {
    return *Viewpoint::fromBag(bagOf(xml), "x.xml", CancelToken());
}

AcyclicViewpoint madeAcyclic(const std::string& xml) {
    return *makeAcyclic(viewpointOf(xml), CancelToken());
}

variant_bag_t acyclic(const std::string& xml) {
    return madeAcyclic(xml).viewpoint->bag();
}

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
                                        "\"G\": a -> a; reversing the link does not help",
                                        "3:1: link \"2\" from \"a\" to group \"G\" around it forms a cycle "
                                        "at the top level: G -> G; reversing the link does not help",
                                        "4:1: link \"3\" from group \"G\" to \"a\" inside it forms a cycle "
                                        "at the top level: G -> G; reversing the link does not help"}));
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
    EXPECT_EQ(reported[21].text,
              "and 20 more links between a node and itself, or a group and what is inside it");
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
            "cycles connected with it hold 1 more node and 2 more links; --acyclic reverses as few links as "
            "possible",
            "4:1: link \"5\" from group \"G\" to \"a\" inside it forms a cycle at the top level: G -> G; "
            "reversing the link does not help"}));
}

TEST(AcyclicDocument, WithoutCyclesTheViewpointIsTheSame) {
    const auto viewpoint = viewpointOf(diagram(abc + "<link id='1' from='a' to='b'/>"));
    const auto made = makeAcyclic(viewpoint, CancelToken());
    ASSERT_TRUE(made);
    EXPECT_EQ(made->viewpoint, viewpoint);
    EXPECT_TRUE(made->messages.empty());
}

TEST(AcyclicDocument, CancelledThereIsNoResult) {
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

// A document of nodes in groups and of links anywhere, some of them wrong.
class RandomDocument {
  public:
    explicit RandomDocument(unsigned seed) : m_random(seed), m_isAcyclic(seed % 4 == 0) {}

    std::string text() {
        addNodes(below(4));
        const std::string nodes = m_text;
        m_text.clear();
        const std::size_t count = below(3 * m_ids.size() + 1);
        std::string display;
        for (std::size_t i = 0; i < count; ++i)
            addLink(i, display);
        return diagram(nodes + m_text, display);
    }

  private:
    std::size_t below(std::size_t n) { return m_random() % n; }

    // Ids that ascend in the order of the document, groups in front of what is in them.
    void addNodes(std::size_t depth) {
        for (std::size_t i = 1 + below(4); i > 0; --i) {
            m_ids.push_back("n" + std::to_string(m_ids.size()));
            m_depths.push_back(m_depth);
            if (!m_isAcyclic && below(30) == 0) m_ids.back() = m_ids[below(m_ids.size())];
            m_text += "<node id='" + m_ids.back() + "'>";
            ++m_depth;
            if (depth > 0 && below(2) == 0) addNodes(depth - 1);
            --m_depth;
            m_text += "</node>";
        }
    }

    [[nodiscard]] bool isInside(std::size_t node, std::size_t group) const {
        for (std::size_t i = group + 1; i <= node; ++i)
            if (m_depths[i] <= m_depths[group]) return false;
        return true;
    }

    void addLink(std::size_t number, std::string& display) {
        static const std::vector<std::string> directions{"forward", "back", "both", "none"};
        std::size_t from = below(m_ids.size());
        std::size_t to = below(m_ids.size());
        if (m_isAcyclic && from > to) std::swap(from, to);
        if (isInside(std::max(from, to), std::min(from, to))) return;  // a loop
        const std::string id = "l" + std::to_string(below(20) == 0 ? below(number + 1) : number);
        const std::string end = !m_isAcyclic && below(40) == 0 ? "nowhere" : m_ids[to];
        m_text += "<link id='" + id + "' from='" + m_ids[from] + "' to='" + end + "' direction='" +
                  directions[below(4)] + "'/>" + (below(3) == 0 ? "\n" : "");
        if (below(2) == 0) return;
        display += "<link id='" + id + "'>";
        for (const char* location : {"from", "to", "center"})
            if (below(2) == 0)
                display += "<label location='" + std::string(location) + "'><dataTransfer displayName='" +
                           id + location +
                           "'><bandwidth><rowSet><queryRef>/q</queryRef></rowSet></bandwidth></"
                           "dataTransfer></label>";
        display += "</link>";
    }

    std::mt19937 m_random;
    const bool m_isAcyclic;
    std::size_t m_depth = 0;
    std::string m_text;
    std::vector<std::string> m_ids;
    std::vector<std::size_t> m_depths;
};

// What the layering reports, and how many nodes of the document got no layer.
struct Layered {
    bool isBrokenOff = false;
    std::size_t withoutLayer = 0;
};

Layered layered(const std::string& text) {
    const LogCapture log;
    MemoryHost host(text);
    host.result->values["q"] = "1";
    const auto handler = host.makeHandler();
    variant_bag_t out;
    EXPECT_TRUE(handler->handleRequest("create", {}, out, nullptr).succeeded());
    Layered layered;
    for (const std::string& report : log.reports())
        layered.isBrokenOff = layered.isBrokenOff || report == "ERROR check nextLevel <= m_nodes.size()";
    const variant_bag_t* nodes = out.get_variant_bag("nodes");
    for (auto node = nodes->begin(); !node.at_end(); node.next())
        if (node.get_value().get("hierarchicalLevel")->get<std::int64_t>() < 0) ++layered.withoutLayer;
    return layered;
}

// A random diagram of the layout's tests, as the document that describes it.
std::string randomDiagram(std::uint64_t seed) {
    tessera_1::view_model::Graph graph;
    tessera_test::fillRandomDiagram(graph, seed);
    std::string text;
    const std::function<void(const tessera_test::NodePtr&)> write = [&](const tessera_test::NodePtr& node) {
        text += "<node id='" + node->m_id + "'>";
        for (const auto& member : node->m_groupChildren)
            write(member);
        text += "</node>";
    };
    for (const auto& node : graph.m_nodeList)
        if (!node->m_group) write(node);
    for (const auto& link : graph.m_linkList)
        text += "<link id='" + link->m_id + "' from='" + (link->m_from ? link->m_from->m_id : "nowhere") +
                "' to='" + (link->m_to ? link->m_to->m_id : "nowhere") + "' direction='" + link->m_direction +
                "'/>";
    return diagram(text);
}

// How many of the documents that were met are of each kind.
struct Met {
    int untouched = 0;
    int cyclic = 0;
    int brokenOff = 0;
    int layeredWhole = 0;
};

void expectLayeredToTheEnd(const std::string& text, Met& met) {
    const auto fixed = fixDocument(text, viewpointOf(text), CancelToken());
    ASSERT_TRUE(fixed);
    ASSERT_EQ(jsonOf(acyclic(text)), jsonOf(fixed->viewpoint->bag()));
    if (fixed->reversed.empty()) {
        ++met.untouched;
        ASSERT_EQ(fixed->text, text);
    } else {
        ++met.cyclic;
        const Layered before = layered(text);
        met.brokenOff += before.isBrokenOff ? 1 : 0;
        ASSERT_TRUE(before.isBrokenOff || before.withoutLayer > 0) << "there was nothing to fix";
    }
    const auto left = findCyclicLinks(fixed->viewpoint->structure(), CancelToken());
    ASSERT_TRUE(left.components.empty());
    if (!left.loops.empty()) return;
    ++met.layeredWhole;
    ASSERT_FALSE(layered(fixed->text).isBrokenOff);
}

TEST(AcyclicDocument, RandomDocumentsAreLayeredToTheEnd) {
    Met met;
    for (unsigned seed = 0; seed < tessera_test::effort(1500U); ++seed) {
        SCOPED_TRACE(seed);
        const int cyclicBefore = met.cyclic;
        ASSERT_NO_FATAL_FAILURE(expectLayeredToTheEnd(RandomDocument(seed).text(), met));
        const bool isSound = seed % 4 == 0;
        ASSERT_TRUE(!isSound || met.cyclic == cyclicBefore) << "there is no cycle";
    }
    EXPECT_GT(met.cyclic, tessera_test::effort(300));
    EXPECT_GT(met.brokenOff, tessera_test::effort(100));
    EXPECT_GT(met.untouched, tessera_test::effort(400));
    EXPECT_GT(met.layeredWhole, tessera_test::effort(600));
}

TEST(AcyclicDocument, RandomDiagramsAreLayeredToTheEnd) {
    Met met;
    for (std::uint64_t seed = 0; seed < tessera_test::effort(1000U); ++seed) {
        SCOPED_TRACE(seed);
        ASSERT_NO_FATAL_FAILURE(expectLayeredToTheEnd(randomDiagram(seed), met));
    }
    EXPECT_GT(met.cyclic, tessera_test::effort(100));
    EXPECT_GT(met.layeredWhole, tessera_test::effort(300));
}

// What a drawing shows: between which nodes, which way arrows point, what stands at which end.
std::vector<std::string> shown(const variant_bag_t& viewpoint) {
    const DocumentStructure structure(viewpoint, CancelToken());
    std::vector<std::string> shown;
    for (std::size_t index = 0; index < structure.links().size(); ++index) {
        const DocumentStructure::Element link = structure.links()[index].element;
        const std::string from = textOf(*link, "from");
        const std::string to = textOf(*link, "to");
        const std::string direction = textOf(*link, "direction");
        const bool atFrom = direction == "back" || direction == "both";
        const bool atTo = direction == "forward" || direction == "both";
        std::string ends[2] = {from + (atFrom ? "<" : ""), to + (atTo ? "<" : "")};
        std::string center;
        for (const auto& entry : structure.linkEntries()) {
            const auto reached =
                entry.link != DocumentStructure::none ? entry.link : structure.findLink(entry.id);
            if (reached != index) continue;
            for (auto label = entry.element->begin(); !label.at_end(); label.next()) {
                const std::string location = textOf(label.get_value(), "location");
                const std::string name =
                    textOf(*label.get_value().get_variant_bag("dataTransfer"), "displayName");
                (location == "from" ? ends[0] : location == "to" ? ends[1] : center) += " " + name;
            }
        }
        shown.push_back(std::min(ends[0], ends[1]) + " - " + std::max(ends[0], ends[1]) + center);
    }
    return shown;
}

TEST(AcyclicDocument, PictureMeansTheSame) {
    int reversed = 0;
    for (unsigned seed = 0; seed < tessera_test::effort(1500U); ++seed) {
        SCOPED_TRACE(seed);
        const std::string text = RandomDocument(seed).text();
        const variant_bag_t viewpoint = bagOf(text);
        const variant_bag_t changed = acyclic(text);
        if (!(changed == viewpoint)) ++reversed;
        ASSERT_EQ(shown(changed), shown(viewpoint));
    }
    EXPECT_GT(reversed, tessera_test::effort(300));
}

TEST(AcyclicDocument, DeepNestingAndManyLinks) {
    constexpr int count = 100'000;
    std::string graph;
    for (int i = 0; i < count; ++i)
        graph += "<node id='n" + std::to_string(i) + "'>";
    graph += "<node id='a'/><node id='b'/>";
    for (int i = 0; i < count; ++i)
        graph += "</node>";
    graph += "<node id='c'/><link id='1' from='a' to='b'/><link id='2' from='b' to='a'/>";
    for (int i = 0; i < count; ++i)  // every group and a node outside, both ways
        graph += "<link from='c' to='n" + std::to_string(i) + "'/><link from='n" + std::to_string(i) +
                 "' to='c'/>";
    const auto messages = madeAcyclic(diagram(graph)).messages;
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_TRUE(messages[0].text.starts_with("100001 links \"2\""));
}

}  // namespace
}  // namespace tessera_host
