// The driver that reads documents, attributes, and the message catalogues for display names.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/viewpointparser.h"
#include "tests/support/assertion_capture.h"
#include "tests/support/log_capture.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using tessera_1::DViewpointParser;
using tessera_1::getAttrAndLocalize;
using tessera_1::getMessageFromCatalog;
using tessera_1::hasAttr;
using tessera_1::view_model::Graph;
using Reports = std::vector<std::string>;
using Texts = std::map<std::string, std::string>;

struct ParserDriver : testing::Test {
    void parse(const std::string& viewpointXml) {
        host = std::make_unique<MemoryHost>(viewpointXml);
        parser.parseViewpoint(host->base->config, host->library, &host->messenger, host->inputData, graph);
    }
    bool graphIsNewAndEmpty() const {
        return graph && graph->m_id.empty() && graph->m_name.empty() && graph->m_nodeList.empty() &&
               graph->m_linkList.empty() && graph->m_nodes.empty() && graph->m_links.empty();
    }

    LogCapture log;
    std::unique_ptr<MemoryHost> host;
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
};

TEST_F(ParserDriver, NewParserHoldsNothing) {
    EXPECT_EQ(parser.m_messenger, nullptr);
    EXPECT_TRUE(parser.m_library.is_null());
    EXPECT_TRUE(parser.m_result.is_null());
    EXPECT_EQ(parser.m_targetGraph, nullptr);
}

TEST_F(ParserDriver, OnlyTheDestructorIsVirtual) {
    static_assert(std::has_virtual_destructor_v<DViewpointParser>);
    struct Extended : DViewpointParser {
        virtual void next() {}
    };
    // In the Itanium C++ ABI a pointer to a virtual member starts with its slot's byte offset plus one; the
    // destructor takes two slots.
    std::ptrdiff_t offset = 0;
    const auto member = &Extended::next;
    std::memcpy(&offset, &member, sizeof offset);
    EXPECT_EQ(offset, static_cast<std::ptrdiff_t>(2 * sizeof(void*)) + 1);
}

TEST_F(ParserDriver, EmptyRootGivesANewEmptyGraph) {
    parse("<v/>");
    EXPECT_TRUE(graphIsNewAndEmpty());
    EXPECT_EQ(parser.m_targetGraph, graph);
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ParserDriver, RootWithoutDiagramGivesAnEmptyGraphWithoutAWord) {
    parse(
        "<v name='x'><queries><query id='q'/></queries><Diagram><graph id='g'/></Diagram><graph "
        "id='g'/></v>");
    EXPECT_TRUE(graphIsNewAndEmpty());
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ParserDriver, SectionNameInOtherCaseIsUnknownAndItsSiblingsAreRead) {
    parse(R"(<v><diagram>
      <Graph id="wrong"><node id="no"/></Graph>
      <graph id="g"><node id="a"/></graph>
      <display><node id="a" displayName="A"/></display>
    </diagram></v>)");
    EXPECT_EQ(graph->m_id, "g");
    ASSERT_EQ(graph->m_nodeList.size(), 1U);
    EXPECT_EQ(graph->m_nodeList[0]->m_displayName, "A");
    EXPECT_EQ(
        log.reports(),
        (Reports{"ERROR alert Unknown element <Graph> found under <diagram>. Expected <graph>, <display>.",
                 "INFO Unknown element <Graph> found under <diagram>. Expected <graph>, <display>."}));
}

TEST_F(ParserDriver, SeveralDiagramsAreReadIntoOneGraph) {
    parse(R"(<v>
      <diagram><graph id="1"><node id="a"/></graph></diagram>
      <other/>
      <diagram><graph id="2"><node id="b"/><link id="l" from="a" to="b"/></graph></diagram>
    </v>)");
    EXPECT_EQ(graph->m_id, "2");
    EXPECT_EQ(graph->m_nodeList.size(), 2U);
    EXPECT_EQ(graph->m_linkList[0]->m_from, graph->findNode("a"));
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ParserDriver, MessengerAndLibraryAreKeptAndInputDataIsNot) {
    parse("<v/>");
    EXPECT_EQ(parser.m_messenger, &host->messenger);
    EXPECT_EQ(parser.m_library, host->library);
    EXPECT_TRUE(parser.m_result.is_null());
}

TEST_F(ParserDriver, EmptyLibraryOrInputDataBreaksThePreconditionAndTouchesNothing) {
    host = std::make_unique<MemoryHost>("<v><diagram><graph id='g'/></diagram></v>");
    for (const bool withLibrary : {false, true}) {
        sptr_t<qlib_1::IQueryLibrary> library;
        sptr_t<qlib_1::IInputData> inputData;
        if (withLibrary)
            library = host->library;
        else
            inputData = host->inputData;
        parser.parseViewpoint(host->base->config, library, &host->messenger, inputData, graph);
        EXPECT_EQ(graph, nullptr);
        EXPECT_EQ(parser.m_messenger, nullptr);
        EXPECT_TRUE(parser.m_library.is_null());
    }
    EXPECT_EQ(log.reports(), (Reports{"ERROR check library && result", "ERROR check library && result"}));
}

TEST_F(ParserDriver, EmptyLibraryLeavesAGraphThatIsSetAlone) {
    host = std::make_unique<MemoryHost>("<v><diagram><graph id='g'/></diagram></v>");
    graph = std::make_shared<Graph>();
    const auto before = graph;
    parser.parseViewpoint(host->base->config, nullptr, nullptr, nullptr, graph);
    EXPECT_EQ(graph, before);
    EXPECT_EQ(graph->m_id, "");
}

TEST_F(ParserDriver, GraphThatIsSetIsNotReadIntoButServicesAreRefreshed) {
    parse("<v><diagram><graph id='first'/></diagram></v>");
    const auto first = graph;
    MemoryHost second("<v><diagram><graph id='second'><node id='a'/></graph><unknown/></diagram></v>");
    parser.parseViewpoint(second.base->config, second.library, &second.messenger, second.inputData, graph);
    EXPECT_EQ(graph, first);
    EXPECT_EQ(graph->m_id, "first");
    EXPECT_TRUE(graph->m_nodeList.empty());
    EXPECT_EQ(parser.m_messenger, &second.messenger);
    EXPECT_EQ(parser.m_library, second.library);
    EXPECT_EQ(parser.m_targetGraph, first);
    EXPECT_EQ(log.reports(), Reports{});
}

TEST_F(ParserDriver, StoringALibraryReleasesTheFormerOne) {
    struct Ending final : ForwardingQueryLibrary {
        Ending(bool& ended, sptr_t<IQueryLibrary> target)
            : ForwardingQueryLibrary(std::move(target)), hasEnded(ended) {}
        ~Ending() override { hasEnded = true; }
        bool& hasEnded;
    };
    bool ended = false;
    host = std::make_unique<MemoryHost>("<v/>");
    parser.parseViewpoint({}, basekit2::make_counted<Ending>(ended, host->library), nullptr, host->inputData,
                          graph);
    EXPECT_FALSE(ended);
    parser.parseViewpoint({}, host->library, nullptr, host->inputData, graph);
    EXPECT_TRUE(ended);
}

TEST_F(ParserDriver, DisplaySectionBeforeTheGraphSectionReachesNothing) {
    parse(R"(<v><diagram>
      <display><graph displayName="Name"/><node id="a" displayName="A"/><link id="l" displayName="L"/></display>
      <graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b"/></graph>
    </diagram></v>)");
    EXPECT_EQ(graph->m_name, "Name");
    EXPECT_EQ(graph->findNode("a")->m_displayName, "");
    EXPECT_EQ(graph->findNode("a")->m_info, nullptr);
    EXPECT_EQ(graph->findLink("l")->m_displayName, "");
    EXPECT_EQ(log.reports(), Reports{});
}

TEST(Attribute, AbsentOneReadsAsNoText) {
    const variant_bag_t bag = bagOf("<e present='x'><child/></e>");
    EXPECT_EQ(getAttrAndLocalize(bag, "absent", false), "");
    EXPECT_EQ(getAttrAndLocalize(bag, "absent", true), "");
    EXPECT_EQ(getAttrAndLocalize(bag, "Present", false), "");
    EXPECT_EQ(getAttrAndLocalize(bag, "child", false), "");
    EXPECT_EQ(getAttrAndLocalize(bag, "present", false), "x");
}

TEST(Attribute, EmptyNameIsTheElementsOwnText) {
    EXPECT_EQ(getAttrAndLocalize(bagOf("<e> own text </e>"), "", false), "own text");
    EXPECT_EQ(getAttrAndLocalize(bagOf("<e/>"), "", false), "");
}

TEST(Attribute, NumberInsteadOfAStringFailsTheHostsAssertion) {
    variant_bag_t bag;
    bag.put("id", basekit2::variant_t(7));
    bag.put("flag", basekit2::variant_t(true));
    const AssertionCapture assertions;
    EXPECT_EQ(getAttrAndLocalize(bag, "id", false), "");
    EXPECT_EQ(getAttrAndLocalize(bag, "flag", true), "");
    EXPECT_EQ(assertions.messages(), (Reports{"can_get<const char*>()", "can_get<const char*>()"}));
}

TEST(AttributeDeathTest, NumberInsteadOfAStringEndsTheProgramUnlessTheHostSaysOtherwise) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    variant_bag_t bag;
    bag.put("id", basekit2::variant_t(7));
    EXPECT_DEATH((void)getAttrAndLocalize(bag, "id", false),
                 "assertion failed: can_get<const char\\*>\\(\\)");
}

TEST(Attribute, HasAttrIsTrueForValuesOnly) {
    variant_bag_t bag = bagOf("<e value='' ><child/></e>");
    bag.put("number", basekit2::variant_t(7));
    EXPECT_TRUE(hasAttr(bag, "value"));
    EXPECT_TRUE(hasAttr(bag, "number"));
    EXPECT_FALSE(hasAttr(bag, "child"));
    EXPECT_FALSE(hasAttr(bag, "absent"));
    EXPECT_FALSE(hasAttr(bag, ""));
    EXPECT_TRUE(hasAttr(bagOf("<e>text</e>"), ""));
}

struct Localisation : testing::Test {
    Localisation() { optstore2::setMessageCatalogSource(source); }
    ~Localisation() override { optstore2::setMessageCatalogSource(nullptr); }
    void catalog(const std::string& name, Texts texts) {
        source->catalogs[name] = std::make_shared<MemoryCatalog>(std::move(texts));
    }

    std::shared_ptr<MemoryCatalogSource> source = std::make_shared<MemoryCatalogSource>();
};

TEST_F(Localisation, KeyInSeveralCataloguesTakesTheTextOfSlicer2BeforeViewpointBeforeStoreiface1) {
    catalog("storeiface1", {{"X", "from storeiface1"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "from storeiface1");
    catalog("viewpoint", {{"X", "from viewpoint"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "from viewpoint");
    catalog("slicer2", {{"X", "from slicer2"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "from slicer2");
}

TEST_F(Localisation, MessageThatRendersEmptyFallsThroughToTheNextCatalogue) {
    catalog("slicer2", {{"X", ""}});
    catalog("viewpoint", {{"X", "from viewpoint"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "from viewpoint");
}

TEST_F(Localisation, KeyThatIsNowhereIsItsOwnText) {
    catalog("slicer2", {{"Y", "other"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "X");
    EXPECT_EQ(getMessageFromCatalog(""), "");
    EXPECT_EQ(getMessageFromCatalog("y"), "y") << "keys are case-sensitive";
}

TEST_F(Localisation, KeyThatRendersEmptyEverywhereIsItsOwnText) {
    for (const char* name : {"slicer2", "viewpoint", "storeiface1"})
        catalog(name, {{"X", ""}});
    EXPECT_EQ(getMessageFromCatalog("X"), "X");
}

TEST_F(Localisation, CataloguesOfOtherNamesAreNotRead) {
    catalog("other", {{"X", "wrong"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "X");
}

TEST_F(Localisation, WithoutAHostsSourceEveryKeyIsItsOwnText) {
    optstore2::setMessageCatalogSource(nullptr);
    EXPECT_EQ(getMessageFromCatalog("X"), "X");
}

TEST_F(Localisation, MessageIsRenderedWithoutArguments) {
    catalog("slicer2", {{"X", "%1 of %2"}});
    EXPECT_EQ(getMessageFromCatalog("X"), "%1 of %2");
}

TEST_F(Localisation, CataloguesAreReadInOrderAndOnlyAsFarAsNeeded) {
    struct Recording final : optstore2::IMessageCatalogSource {
        std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(
            const std::string& name) const override {
            requested.push_back(name);
            return name == "viewpoint" ? std::make_shared<MemoryCatalog>(Texts{{"X", "text"}}) : nullptr;
        }
        mutable Reports requested;
    };
    const auto recording = std::make_shared<Recording>();
    optstore2::setMessageCatalogSource(recording);
    EXPECT_EQ(getMessageFromCatalog("X"), "text");
    EXPECT_EQ(recording->requested, (Reports{"slicer2", "viewpoint"}));
    EXPECT_EQ(getMessageFromCatalog("Y"), "Y");
    EXPECT_EQ(recording->requested, (Reports{"slicer2", "viewpoint", "slicer2", "viewpoint", "storeiface1"}));
}

// A source that is replaced by another one while it looks up the first name.
TEST_F(Localisation, SourceIsTakenAnewForEachCatalogueName) {
    struct Leaving final : optstore2::IMessageCatalogSource {
        std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(
            const std::string& name) const override {
            if (name == "slicer2") optstore2::setMessageCatalogSource(next);
            return nullptr;
        }
        std::shared_ptr<MemoryCatalogSource> next;
    };
    catalog("viewpoint", {{"X", "from the next source"}});
    const auto leaving = std::make_shared<Leaving>();
    leaving->next = source;
    optstore2::setMessageCatalogSource(leaving);
    EXPECT_EQ(getMessageFromCatalog("X"), "from the next source");
}

TEST_F(Localisation, AttributeIsLocalisedOnlyOnRequest) {
    catalog("viewpoint", {{"X", "text"}});
    const variant_bag_t bag = bagOf("<e displayName='X'/>");
    EXPECT_EQ(getAttrAndLocalize(bag, "displayName", true), "text");
    EXPECT_EQ(getAttrAndLocalize(bag, "displayName", false), "X");
}

TEST_F(Localisation, DisplayNamesOfADocumentAreKeysOrShownAsWritten) {
    const LogCapture log;
    catalog("slicer2", {{"key", "Text"}});
    MemoryHost host(R"(<v><diagram><graph><node id="a"/><node id="b"/></graph>
      <display><node id="a" displayName="key"/><node id="b" displayName="Plain words"/></display></diagram></v>)");
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
    parser.parseViewpoint(host.base->config, host.library, nullptr, host.inputData, graph);
    EXPECT_EQ(graph->findNode("a")->m_displayName, "Text");
    EXPECT_EQ(graph->findNode("b")->m_displayName, "Plain words");
}

TEST_F(Localisation, OnlyDisplayNamesAreLocalised) {
    const LogCapture log;
    catalog("slicer2", {{"g", "!"},
                        {"a", "!"},
                        {"b", "!"},
                        {"l", "!"},
                        {"both", "!"},
                        {"label", "!"},
                        {"to", "!"},
                        {"/q", "!"}});
    MemoryHost host(R"(<v><diagram>
      <graph id="g"><node id="a"/><node id="b"/><link id="l" from="a" to="b" direction="both"/></graph>
      <display>
        <node id="a" type="label" aligning="to"><rowSet><queryRef>/q</queryRef></rowSet></node>
        <link id="l"><label location="to"><dataTransfer><size/></dataTransfer></label></link>
      </display></diagram></v>)");
    DViewpointParser parser;
    std::shared_ptr<Graph> graph;
    parser.parseViewpoint(host.base->config, host.library, nullptr, host.inputData, graph);
    EXPECT_EQ(graph->m_id, "g");
    const auto& node = *graph->findNode("a");
    EXPECT_EQ(node.m_displayType, "label");
    EXPECT_EQ(node.m_aligning, "to");
    EXPECT_EQ(node.m_info->m_rowSet.rows.at(0).m_query, "/q");
    const auto& link = *graph->findLink("l");
    EXPECT_EQ(link.m_from->m_id, "a");
    EXPECT_EQ(link.m_direction, "both");
    EXPECT_TRUE(link.m_displayInfo.m_toInfo.contains("size"));
}

}  // namespace
}  // namespace tessera_test
