// Levels of values that a pane shows, and the tags that lead from rows to them.
#include <gtest/gtest.h>

#include <random>

#include "host/meaning/described_values.h"
#include "host/meaning/level_finder.h"
#include "host/pane/pane.h"
#include "tests/support/effort.h"
#include "tests/support/json_text.h"
#include "tests/support/memory_engine.h"

namespace tessera_test {
namespace {

using namespace tessera_host;
using basekit2::variant_bag_t;

constexpr const char* document = R"xml(<viewpoint>
  <queries>
    <query id="Bytes" from="flows" key="src" unit="B">SUM bytes</query>
    <query id="All" from="flows" format="si:3">SUM bytes</query>
  </queries>
  <levels>
    <level name="critical" query="Bytes" key="1" above="1000"/>
    <level name="warning" query="Bytes" above="100"/>
    <level name="odd" query="All" below="10000" colour="#112233"/>
  </levels>
  <widths query="Bytes" from="0" to="5000"/>
  <diagram>
    <graph><node id="a"/><node id="b"/><node id="c"/></graph>
    <display>
      <node id="a"><rowSet><queryRef displayName="one">/Bytes/1</queryRef><queryRef displayName="none">/Bytes/9</queryRef></rowSet></node>
      <node id="b"><rowSet><queryRef displayName="one">/Bytes/1</queryRef><queryRef displayName="two">/Bytes/2</queryRef></rowSet></node>
      <node id="c"><rowSet><queryRef displayName="three">/Bytes/3</queryRef><queryRef displayName="all">/All</queryRef></rowSet></node>
    </display>
  </diagram>
</viewpoint>)xml";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class MeaningTest : public testing::Test {
  protected:
    variant_bag_t create(std::shared_ptr<CellRecord> record) const {
        PaneOptions options;
        options.record = std::move(record);
        Pane pane(viewpoint, store, {}, options);
        variant_bag_t out;
        EXPECT_TRUE(pane.request("create", {}, out, {}).is_success());
        return out;
    }
    DescribedDiagram describe(Description description) const {
        const auto record = std::make_shared<CellRecord>();
        const variant_bag_t tagged = create(record);
        return describeValues(tagged, *record, viewpoint->meaning(), *viewpoint->declarations(), description);
    }

    Viewpoint::Pointer viewpoint = *Viewpoint::readText(document, "v.xml", {});
    std::shared_ptr<MemoryResultStore> store = std::make_shared<MemoryResultStore>(
        MemoryTables{{"flows", {{"src", "bytes"}, {{1, 4000}, {1, 1}, {2, 120}, {3, 7}}}}});
};

TEST_F(MeaningTest, WithoutTagsTheDiagramIsAsWithoutARecord) {
    const variant_bag_t plain = create(nullptr);
    EXPECT_TRUE(describe(Description::none).bag == plain);
    // A full description only adds to it.
    const std::string described = textOf(describe(Description::full).bag);
    EXPECT_FALSE(has(described, "\\u001f"));
    EXPECT_TRUE(has(described, R"("value":"4001 B","level":"critical","isWorst":true,"width":5)"));
    EXPECT_TRUE(has(described, R"("value":"120 B","level":"warning","width":1)"));
    EXPECT_TRUE(has(described, R"("value":"7 B","width":1)"));
    EXPECT_TRUE(has(described, R"("value":"4.13 k","level":"odd")"));
}

TEST_F(MeaningTest, TheMeaningListsLevelsAndSteps) {
    const std::string described = textOf(describe(Description::full).bag);
    EXPECT_TRUE(has(described, R"({"name":"critical","count":1},{"name":"warning","count":1},)"
                               R"({"name":"odd","colour":"#112233","count":1})"))
        << described;
    EXPECT_TRUE(has(described, R"("step":[{"text":"≤ 1000 B"},{"text":"≤ 2000 B"},{"text":"≤ 3000 B"},)"
                               R"({"text":"≤ 4000 B"},{"text":"> 4000 B"}])"))
        << described;
}

TEST_F(MeaningTest, AValueThatTwoRowsShowCountsOnce) {
    const LevelSummary summary = describe(Description::full).summary;
    EXPECT_EQ(summary.counts, (std::vector<std::size_t>{1, 1, 1}));
    ASSERT_NE(summary.worstRule, nullptr);
    EXPECT_EQ(summary.worstRule->bound, 1000);
    EXPECT_EQ(summary.countUpTo(0), 1u);
    EXPECT_EQ(summary.countUpTo(1), 2u);
    EXPECT_EQ(summary.countUpTo(9), 3u);
}

TEST_F(MeaningTest, TheLibraryDoesNotGetLevels) {
    // What the library does not know it would keep or report; the diagram of a document without them is equal.
    std::string text = document;
    const std::size_t begin = text.find("<levels>");
    text.erase(begin, text.find("<diagram>") - begin);
    const variant_bag_t with = create(nullptr);
    viewpoint = *Viewpoint::readText(text, "v.xml", {});
    EXPECT_TRUE(viewpoint->meaning().isEmpty());
    EXPECT_TRUE(create(nullptr) == with);
}

TEST_F(MeaningTest, ATextThatLooksLikeATagIsOnlyText) {
    const auto record = std::make_shared<CellRecord>();
    (void)create(record);
    EXPECT_EQ(record->untagged("a\x1F").cell, nullptr);
    EXPECT_EQ(record
                  ->untagged("a\x1F"
                             "7777")
                  .cell,
              nullptr);
    EXPECT_EQ(record
                  ->untagged("a\x1F"
                             "0x")
                  .text,
              "a\x1F"
              "0x");
    const auto both = record->untagged(
        "a\x1F"
        "0\x1F"
        "0");
    EXPECT_EQ(both.text,
              "a\x1F"
              "0");
    EXPECT_NE(both.cell, nullptr);
}

// The first rule that holds, found by trying all of them.
const LevelRule* firstOf(const ValueMeaning& meaning, const ReferenceQuery& reference, double number) {
    for (const LevelRule& rule : meaning.rules())
        if (rule.query == reference.declaration().index && (!rule.keys || *rule.keys == reference.keys()) &&
            rule.holds(number))
            return &rule;
    return nullptr;
}

TEST(LevelFinder, FindsTheFirstRuleThatHolds) {
    std::mt19937 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same cases each time
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    for (int attempt = 0; attempt < effort(200); ++attempt) {
        std::string text = "<v><queries><query id='Q' from='f' key='k'>SUM x</query></queries><levels>";
        for (int i = below(12); i >= 0; --i)
            text += "<level name='good' query='Q' " + std::string(below(2) == 0 ? "above='" : "below='") +
                    std::to_string(below(9)) + "'" +
                    (below(3) == 0 ? " key='" + std::to_string(below(2)) + "'" : "") + "/>";
        const auto viewpoint = *Viewpoint::readText(text + "</levels></v>", "v.xml", {});
        const LevelFinder finder(viewpoint->meaning());
        const auto pool = std::make_shared<ReferencePool>(viewpoint->declarations());
        for (const char* key : {"/Q/0", "/Q/1", "/Q/2"}) {
            const auto reference = basekit2::make_counted<ReferenceQuery>(
                pool, *viewpoint->declarations()->parseReference(key), std::string(key + 1));
            for (double number = -1; number < 10; number += 0.5)
                ASSERT_EQ(finder.find(*reference, number), firstOf(viewpoint->meaning(), *reference, number))
                    << text << key << ' ' << number;
        }
    }
}

}  // namespace
}  // namespace tessera_test
