// Every walk of a check through a large document ends soon after the check is cancelled.
#include <gtest/gtest.h>

#include "host/lint/document_check.h"
#include "tests/support/cpu_time.h"

namespace tessera_host {
namespace {

using tessera_support::CancelSource;
using tessera_support::CancelToken;

constexpr int count = 100'000;

std::string repeated(const std::string& text) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

// A document that is large in one dimension.
struct Large {
    const char* name;
    std::string text;
};

std::string diagram(const std::string& graph, const std::string& display = {}) {
    return "<v><diagram><graph><node id='a'/><node id='b'/>" + graph + "</graph><display>" + display +
           "</display></diagram></v>";
}

const std::vector<Large>& largeDocuments() {
    static const std::vector<Large> documents{
        {"nodes", diagram(repeated("<node id='n'/>"))},
        {"nesting", diagram(repeated("<node id='n'>") + repeated("</node>"))},
        {"links", diagram(repeated("<link id='l' from='a' to='b'/>"))},
        {"cycles", diagram("<link from='a' to='b'/>" + repeated("<link id='l' from='b' to='b'/>") +
                           "<link from='b' to='a'/>")},
        {"display nodes", diagram("", repeated("<node id='a'/>"))},
        {"display links", diagram("<link id='l' from='a' to='b'/>", repeated("<link id='l'/>"))},
        {"labels", diagram("", "<link id='l'>" + repeated("<label/>") + "</link>")},
        {"transfers", diagram("", "<link id='l'><label>" + repeated("<dataTransfer/>") + "</label></link>")},
        {"modes", diagram("", "<link id='l'><label><dataTransfer>" + repeated("<size/>") +
                                  "</dataTransfer></label></link>")},
        {"row sets", diagram("", "<node id='a'>" + repeated("<rowSet/>") + "</node>")},
        {"references",
         diagram("", "<node id='a'><rowSet>" + repeated("<queryRef>/q</queryRef>") + "</rowSet></node>")},
        {"queries", "<v><queries>" + repeated("<query id='q' from='t'>1</query>") + "</queries></v>"},
        {"filters", "<v><filters>" + repeated("<filter name='global'>1</filter>") + "</filters></v>"},
        {"diagrams", "<v>" + repeated("<diagram/>") + "</v>"},
        {"sections", "<v><diagram>" + repeated("<display/>") + "</diagram></v>"},
    };
    return documents;
}

class CancelledCheck : public testing::TestWithParam<std::size_t> {
  protected:
    CancelledCheck() : large(largeDocuments()[GetParam()]) {
        auto read = Viewpoint::readText(large.text, large.name, CancelToken());
        EXPECT_TRUE(read);
        viewpoint = *read;
    }
    [[nodiscard]] Expected<std::vector<Problem>> check(const CancelToken& token) const {
        return checkDocument(*viewpoint, {}, token);
    }

    const Large& large;
    Viewpoint::Pointer viewpoint;
};

TEST_P(CancelledCheck, HasNoResultAndTakesNoTime) {
    CancelSource source;
    const auto begin = tessera_test::threadCpuTime();
    EXPECT_TRUE(check(source.token()));
    const auto whole = tessera_test::threadCpuTime() - begin;
    source.cancel();
    const auto again = tessera_test::threadCpuTime();
    const auto cancelled = check(source.token());
    const auto rest = tessera_test::threadCpuTime() - again;
    ASSERT_FALSE(cancelled);
    EXPECT_TRUE(cancelled.error().isCancelled());
    EXPECT_LT(rest, whole / 4) << large.name;
}

INSTANTIATE_TEST_SUITE_P(LargeDocuments, CancelledCheck,
                         testing::Range(std::size_t{0}, largeDocuments().size()));

}  // namespace
}  // namespace tessera_host
