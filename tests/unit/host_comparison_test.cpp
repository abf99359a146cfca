// Values beside those of another result.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/layout_watch.h"
#include "host/meaning/comparison.h"
#include "host/meaning/described_values.h"
#include "host/pane/pane.h"
#include "tests/support/json_text.h"
#include "tests/support/memory_engine.h"

namespace tessera_test {
namespace {

using namespace tessera_host;
using basekit2::variant_bag_t;

constexpr const char* document = R"xml(<viewpoint>
  <queries><query id="Bytes" from="flows" key="src" unit="B">SUM bytes</query></queries>
  <diagram>
    <graph><node id="a"/><node id="b"/><link id="l" from="a" to="b"/></graph>
    <display>
      <node id="a" displayName="Web shop"><rowSet><queryRef displayName="one">/Bytes/1</queryRef><queryRef displayName="two">/Bytes/2</queryRef></rowSet></node>
      <node id="b"><rowSet><queryRef displayName="one again">/Bytes/1</queryRef><queryRef>/Bytes/3</queryRef></rowSet></node>
      <link id="l"><label><dataTransfer displayName="sent"><bandwidth><rowSet><queryRef displayName="four">/Bytes/4</queryRef></rowSet></bandwidth></dataTransfer></label></link>
    </display>
  </diagram>
</viewpoint>)xml";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

const Viewpoint::Pointer& viewpoint() {
    static const Viewpoint::Pointer read = *Viewpoint::readText(document, "v.xml", {});
    return read;
}

// A diagram whose layout stops after the values, as comparisons need it.
struct Side {
    class Stop final : public tessera_1::ILayoutWatcher {
      public:
        bool stageEnded(const tessera_1::LayoutStage& stage) override { return stage.name != "data"; }
    };

    explicit Side(std::vector<std::vector<int>> rows) {
        Stop stop;
        PaneOptions options;
        options.layout.watcher = &stop;
        options.record = record;
        Pane pane(
            viewpoint(),
            std::make_shared<MemoryResultStore>(MemoryTables{{"flows", {{"src", "bytes"}, std::move(rows)}}}),
            {}, options);
        EXPECT_TRUE(pane.request("create", {}, bag, {}).is_success());
    }
    [[nodiscard]] TaggedDiagram diagram() const { return {bag, *record}; }

    std::shared_ptr<CellRecord> record = std::make_shared<CellRecord>();
    variant_bag_t bag;
};

RecordedCell cell(std::optional<double> number, std::string text = "x") {
    static const auto pool = std::make_shared<ReferencePool>(viewpoint()->declarations());
    static const auto reference = basekit2::make_counted<ReferenceQuery>(
        pool, *viewpoint()->declarations()->parseReference("/Bytes/1"), "Bytes/1");
    return {reference, std::move(text), number};
}

ValueChange change(const RecordedCell& here, const RecordedCell& there) {
    return changeOf(&here, &there);
}

TEST(ValueChange, ComparesNumbersBeforeTheyAreFormatted) {
    const ValueChange more = change(cell(150), cell(100));
    EXPECT_EQ(more.kind, ChangeKind::more);
    EXPECT_EQ(more.difference, "+50 B");
    EXPECT_EQ(more.percent(), "+50.0 %");
    const ValueChange less = change(cell(-30), cell(-20));
    EXPECT_EQ(less.kind, ChangeKind::less);
    EXPECT_EQ(less.difference, "-10 B");
    EXPECT_EQ(less.percent(), "-50.0 %");  // in relation to its size
    EXPECT_EQ(change(cell(5), cell(5)).kind, ChangeKind::same);
    EXPECT_EQ(change(cell(500), cell(100)).percent(), "+400 %");
    EXPECT_EQ(change(cell(1.0001), cell(1)).percent(), "+0.01 %");
}

TEST(ValueChange, FromZeroThereIsNoRelativeChange) {
    const ValueChange added = change(cell(3), cell(0));
    EXPECT_EQ(added.difference, "+3 B");
    EXPECT_FALSE(added.relative);
    EXPECT_EQ(added.percent(), "");
}

TEST(ValueChange, TextsAndSpecialNumbersHaveNoDifference) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(change(cell({}, "a"), cell({}, "b")).kind, ChangeKind::text);
    EXPECT_EQ(change(cell({}, "a"), cell({}, "a")).kind, ChangeKind::same);
    EXPECT_EQ(change(cell(1, "1"), cell({}, "b")).kind, ChangeKind::text);
    EXPECT_EQ(change(cell(infinity, "inf"), cell(infinity, "inf")).kind, ChangeKind::same);
    EXPECT_EQ(change(cell(std::nan(""), "nan"), cell(1, "1")).kind, ChangeKind::text);
    EXPECT_FALSE(change(cell(infinity), cell(1)).relative);
    const RecordedCell one = cell(1);
    EXPECT_EQ(changeOf(&one, nullptr).kind, ChangeKind::here);
    EXPECT_EQ(changeOf(nullptr, &one).kind, ChangeKind::there);
}

TEST(ValueChange, LargerChangesComeFirst) {
    const RecordedCell one = cell(1);
    const std::vector<ValueChange> order = {changeOf(&one, nullptr),
                                            change(cell(7), cell(0)),
                                            change(cell(5), cell(0)),
                                            change(cell(10), cell(100)),
                                            change(cell(108), cell(100)),
                                            change(cell(108), cell(100.5)),
                                            change(cell({}, "a"), cell({}, "b"))};
    for (std::size_t i = 0; i + 1 < order.size(); ++i) {
        EXPECT_TRUE(order[i].isLargerThan(order[i + 1])) << i;
        EXPECT_FALSE(order[i + 1].isLargerThan(order[i])) << i;
    }
}

TEST(Comparison, TheTableHasEachChangeOnceTheLargestFirst) {
    const Side here({{1, 200}, {2, 50}, {3, 7}});
    const Side there({{1, 100}, {2, 60}, {3, 7}, {4, 9}});
    std::vector<std::string> lines;
    for (const ChangedValue& value : changesOf(here.diagram(), there.diagram()))
        lines.push_back(value.name + "|" + value.here + "|" + value.there + "|" + value.change.difference +
                        "|" + value.change.percent());
    EXPECT_EQ(lines, (std::vector<std::string>{"four of Web shop -> b||9 B||",
                                               "one of Web shop|200 B|100 B|+100 B|+100 %",
                                               "two of Web shop|50 B|60 B|-10 B|-16.7 %"}));
    EXPECT_TRUE(changesOf(here.diagram(), here.diagram()).empty());
}

TEST(Comparison, RowsAreDescribedAndMissingOnesAdded) {
    const Side here({{1, 200}, {2, 50}});
    const Side there({{1, 100}, {2, 50}, {3, 7}, {4, 9}});
    Comparison comparison(*here.record, there.diagram(), "old.db");
    const std::string text =
        textOf(describeValues(here.bag, *here.record, viewpoint()->meaning(), *viewpoint()->declarations(),
                              Description::full, &comparison)
                   .bag);
    EXPECT_TRUE(has(text,
                    R"({"name":"one","value":"200 B","change":"more","other":"100 B","difference":"+100 B",)"
                    R"("percent":"+100 %","width":4})"))
        << text;
    EXPECT_TRUE(has(text, R"({"name":"two","value":"50 B","change":"same","other":"50 B","width":1})"))
        << text;
    EXPECT_TRUE(has(text, R"({"name":"","value":"–","change":"there","other":"7 B","width":5})")) << text;
    // The link has no values at all here.
    EXPECT_TRUE(has(text, R"("totalInfo":{"rows":{"arrayOf":"row","row":[{"name":"four","value":"–",)"))
        << text;
    EXPECT_TRUE(has(text, "compared with old.db: 1 more, 2 only there, 1 the same")) << text;
    EXPECT_TRUE(has(text, R"("name":"change","step":[{"text":"no change"},)")) << text;
}

}  // namespace
}  // namespace tessera_test
