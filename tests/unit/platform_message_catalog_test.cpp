// Messages and where their catalogues come from.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/RTBASE_2_18/i18n/message.h"
#include "platform/optstore2/message_catalog_source.h"
#include "tests/support/memory_host.h"

namespace tessera_test {
namespace {

using RTBASE_2_18::generic::varg_list;

std::string render(const std::string& pattern, const varg_list& arguments) {
    return RTBASE_2_18::i18n::message_t(pattern).as_ustring(arguments).str();
}

TEST(Message, EmptyArgumentListRendersItUnchanged) {
    for (const char* pattern : {"", "plain", "%1 of %2", "100%", "%%1", "%"})
        EXPECT_EQ(render(pattern, {}), pattern);
}

TEST(Message, ArgumentsTakeTheirPlacesInAnyOrderAndAsOftenAsNamed) {
    EXPECT_EQ(render("%2 and %1 and %2", {"a", "b"}), "b and a and b");
}

TEST(Message, PlaceWithoutArgumentStaysAsItStands) {
    EXPECT_EQ(render("%1 %2 %9 %0 %x", {"a"}), "a %2 %9 %0 %x");
}

TEST(Message, ArgumentIsNotRenderedAgain) {
    EXPECT_EQ(render("%1 %2", {"%2", "b"}), "%2 b");
}

TEST(Message, TextOfTheRuntimeKeepsItsBytes) {
    EXPECT_EQ(_U("Größe").str(), "Größe");
    EXPECT_STREQ(_U("x").c_str(), "x");
    EXPECT_TRUE(_U("").empty());
    EXPECT_FALSE(_U(" ").empty());
    EXPECT_EQ(_U("a"), _U(std::string("a")));
    EXPECT_FALSE(_U("a") == _U("b"));
}

struct CatalogSource : testing::Test {
    ~CatalogSource() override { optstore2::setMessageCatalogSource(nullptr); }
};

TEST_F(CatalogSource, WithoutAHostsOwnThereAreNoCatalogues) {
    const auto source = optstore2::getMessageCatalogSource();
    ASSERT_NE(source, nullptr);
    for (const char* name : {"slicer2", "viewpoint", "storeiface1", ""})
        EXPECT_EQ(source->getCatalog(name), nullptr);
}

TEST_F(CatalogSource, InstalledSourceIsReturnedUntilNullRemovesIt) {
    const auto mine = std::make_shared<MemoryCatalogSource>();
    optstore2::setMessageCatalogSource(mine);
    EXPECT_EQ(optstore2::getMessageCatalogSource(), mine);
    optstore2::setMessageCatalogSource(nullptr);
    const auto none = optstore2::getMessageCatalogSource();
    ASSERT_NE(none, nullptr);
    EXPECT_NE(none, mine);
}

TEST_F(CatalogSource, ReaderKeepsTheEarlierSourceAlive) {
    auto mine = std::make_shared<MemoryCatalogSource>();
    mine->catalogs["viewpoint"] =
        std::make_shared<MemoryCatalog>(std::map<std::string, std::string>{{"k", "text"}});
    const std::weak_ptr<MemoryCatalogSource> watched = mine;
    optstore2::setMessageCatalogSource(std::move(mine));
    auto reader = optstore2::getMessageCatalogSource();
    optstore2::setMessageCatalogSource(nullptr);
    EXPECT_TRUE(reader->getCatalog("viewpoint")->has_message("k"));
    reader = nullptr;
    EXPECT_TRUE(watched.expired());
}

}  // namespace
}  // namespace tessera_test
