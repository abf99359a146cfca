// A viewpoint is read once and shared.
#include "host/document/viewpoint.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/memory_host.h"

namespace tessera_host {
namespace {

using tessera_support::CancelSource;
using tessera_support::CancelToken;
using tessera_test::bagOf;

const std::string document =
    "<v>\n<queries><query id='q' from='t' format='si:3' unit='B'>1</query><query id='x' from='t' "
    "format='no'>1</query>"
    "</queries><filters><filter name='global'>a = 1</filter></filters>"
    "<diagram><graph><node id='a'/><node id='b'/><link id='1' from='a' to='b'/></graph>"
    "<display><node id='a'><rowSet><queryRef>/q</queryRef></rowSet></node></display></diagram></v>";

Viewpoint::Pointer read(const std::string& text) {
    auto viewpoint = Viewpoint::readText(text, "some.xml", CancelToken());
    EXPECT_TRUE(viewpoint) << (viewpoint ? "" : viewpoint.error().text);
    return viewpoint ? *viewpoint : nullptr;
}

TEST(Viewpoint, HoldsEverythingThatTheDocumentSays) {
    const auto viewpoint = read(document);
    EXPECT_EQ(viewpoint->name(), "some.xml");
    EXPECT_EQ(viewpoint->bag(), bagOf(document));
    EXPECT_EQ(viewpoint->structure().links().size(), 1U);
    EXPECT_EQ(viewpoint->declarations()->queries().size(), 2U);
    EXPECT_EQ(viewpoint->filters().at("global").predicate, "a = 1");
    ASSERT_EQ(viewpoint->problems().size(), 1U);
    EXPECT_EQ(viewpoint->problems()[0].position.line, 2U);
    EXPECT_EQ(viewpoint->structure().nodes()[1].element->position().line, 2U);
}

TEST(Viewpoint, MalformedTextIsAnErrorAtItsPosition) {
    const auto viewpoint = Viewpoint::readText("<v>\n<a></v>", "some.xml", CancelToken());
    ASSERT_FALSE(viewpoint);
    EXPECT_EQ(viewpoint.error().kind, ErrorKind::failed);
    EXPECT_EQ(viewpoint.error().position.line, 2U);
}

TEST(Viewpoint, AMissingFileCannotBeOpened) {
    const auto viewpoint = Viewpoint::readFile("/no/such/file.xml", CancelToken());
    ASSERT_FALSE(viewpoint);
    EXPECT_EQ(viewpoint.error().kind, ErrorKind::cannotOpen);
}

TEST(Viewpoint, ACancelledTokenMakesNone) {
    CancelSource source;
    source.cancel();
    for (const auto& viewpoint : {Viewpoint::readText(document, "some.xml", source.token()),
                                  Viewpoint::fromBag(bagOf(document), "some.xml", source.token())}) {
        ASSERT_FALSE(viewpoint);
        EXPECT_TRUE(viewpoint.error().isCancelled());
    }
}

TEST(Viewpoint, DeclarationsOutliveIt) {
    std::shared_ptr<const Declarations> declarations;
    { declarations = read(document)->declarations(); }
    EXPECT_EQ(declarations->find("q")->unit, "B");
}

// The thread sanitizer watches this one.
TEST(Viewpoint, ManyThreadsReadOneViewpoint) {
    const auto viewpoint = read(document);
    const auto use = [](const Viewpoint::Pointer& shared) {
        std::size_t found = 0;
        for (int i = 0; i < 200; ++i) {
            const Viewpoint::Pointer mine = shared;
            found += mine->structure().findNode("b").value_or(0);
            found += mine->declarations()->parseReference("/q") ? 1 : 0;
            const basekit2::variant_bag_t copy = mine->bag();
            found += copy == mine->bag() ? 1 : 0;
        }
        EXPECT_EQ(found, 200U * 4);
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(use, viewpoint);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(viewpoint->bag(), bagOf(document));
}

}  // namespace
}  // namespace tessera_host
