// A check can be interrupted wherever it walks through a large document.
#include <gtest/gtest.h>

#include "host/check/document_check.h"
#include "host/check/watch.h"
#include "host/text/xml_reader.h"
#include "tests/support/memory_host.h"

namespace tessera_host {
namespace {

using tessera_test::CountingProgress;

constexpr int count = 20 * Watch::stepsBetweenQuestions;

std::string repeated(const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

// A document that is large in one respect, and how often each of what is repeated makes the walks ask.
struct Large {
    const char* name;
    std::string text;
    int questions;
};

std::string diagram(const std::string& graph, const std::string& display = {}) {
    return "<v><diagram><graph><node id='a'/><node id='b'/>" + graph + "</graph><display>" + display +
           "</display></diagram></v>";
}

// clang-format off
const std::vector<Large>& largeDocuments() {
    static const std::vector<Large> documents{
        // vocabulary: the element and each attribute; collecting ids, reading the section, leaving the node,
        // depths, components, telling the circles
        {"nodes", diagram(repeated("<node id='n'/>")), 2 + 6},
        // the same, but entering the node takes the place of reading the section
        {"nesting", diagram(repeated("<node id='n'>") + repeated("</node>")), 2 + 6},
        // collecting ids, reading, edges, components, circles, which ends have incoming links, what leads where
        {"links", diagram(repeated("<link id='l' from='a' to='b'/>")), 4 + 7},
        // nothing leads there, but there is a way round
        {"circles", diagram("<link from='a' to='b'/>" + repeated("<link id='l' from='b' to='b'/>") +
                            "<link from='b' to='a'/>"), 4 + 7},
        // reading
        {"display nodes", diagram("", repeated("<node id='a'/>")), 2 + 1},
        {"display links", diagram("<link id='l' from='a' to='b'/>", repeated("<link id='l'/>")), 2 + 1},
        {"labels", diagram("", "<link id='l'>" + repeated("<label/>") + "</link>"), 1 + 1},
        {"transfers", diagram("", "<link id='l'><label>" + repeated("<dataTransfer/>") + "</label></link>"), 1 + 1},
        {"modes", diagram("", "<link id='l'><label><dataTransfer>" + repeated("<size/>") +
                              "</dataTransfer></label></link>"), 1 + 1},
        // reading, references
        {"row sets", diagram("", "<node id='a'>" + repeated("<rowSet/>") + "</node>"), 1 + 2},
        // references
        {"references", diagram("", "<node id='a'><rowSet>" + repeated("<queryRef>/q</queryRef>") +
                                   "</rowSet></node>"), 2 + 1},
        // ids, SQL
        {"queries", "<v><queries>" + repeated("<query id='q' from='t'>1</query>") + "</queries></v>", 4 + 2},
        // names
        {"filters", "<v><filters>" + repeated("<filter name='global'>1</filter>") + "</filters></v>", 3 + 1},
        // finding the sections, reading them
        {"diagrams", "<v>" + repeated("<diagram/>") + "</v>", 1 + 1},
        {"sections", "<v><diagram>" + repeated("<display/>") + "</diagram></v>", 1 + 2},
    };
    return documents;
}
// clang-format on

class CheckWatch : public testing::TestWithParam<int> {
  protected:
    CheckWatch() : large(largeDocuments()[static_cast<std::size_t>(GetParam())]) {
        EXPECT_FALSE(readXmlText(large.text, viewpoint));
        declarations = Declarations::read(viewpoint);
    }
    auto check(const CountingProgress& progress) const {
        return checkDocument(viewpoint, *declarations, declarations->filters(), nullptr, &progress);
    }

    const Large large;
    basekit2::variant_bag_t viewpoint;
    std::shared_ptr<const Declarations> declarations;
};

TEST_P(CheckWatch, EveryWalkAsks) {
    const CountingProgress progress;
    EXPECT_TRUE(check(progress));
    EXPECT_GE(progress.calls(), large.questions * count / Watch::stepsBetweenQuestions) << large.name;
}

TEST_P(CheckWatch, CancelledAnywhereThereIsNoAnswer) {
    const CountingProgress never;
    ASSERT_TRUE(check(never));
    for (int call = 1; call <= never.calls(); call += 1 + never.calls() / 8) {
        const CountingProgress progress(call);
        EXPECT_FALSE(check(progress)) << large.name << ", call " << call << " of " << never.calls();
    }
    const CountingProgress atLast(never.calls());
    EXPECT_FALSE(check(atLast)) << large.name;
}

INSTANTIATE_TEST_SUITE_P(LargeDocuments, CheckWatch,
                         testing::Range(0, static_cast<int>(largeDocuments().size())));

TEST(Watch, PassesEveryManiethQuestionOn) {
    const CountingProgress progress;
    Watch watch(&progress);
    for (int i = 0; i < 3 * Watch::stepsBetweenQuestions; ++i)
        EXPECT_FALSE(watch.mustStop());
    EXPECT_EQ(progress.calls(), 3);
}

TEST(Watch, OnceStoppedAsksNoMore) {
    const CountingProgress progress(2);
    Watch watch(&progress);
    EXPECT_FALSE(watch.mustStop());
    EXPECT_TRUE(watch.mustStopNow());
    for (int i = 0; i < 2 * Watch::stepsBetweenQuestions; ++i)
        EXPECT_TRUE(watch.mustStop());
    EXPECT_EQ(progress.calls(), 2);
}

TEST(Watch, WithoutProgressNeverStops) {
    Watch watch(nullptr);
    EXPECT_FALSE(watch.mustStopNow());
    EXPECT_FALSE(watch.mustStop());
}

}  // namespace
}  // namespace tessera_host
