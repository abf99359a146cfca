// The rows that a drawing must have space for.
#include "host/document/reserved_space.h"

#include <gtest/gtest.h>

#include <map>

#include "host/document/display_mode.h"
#include "host/document/filters.h"
#include "tests/support/memory_host.h"

namespace tessera_host {
namespace {

using tessera_support::CancelToken;

// Catalogues by name, each with texts by key.
class MapCatalogs final : public optstore2::IMessageCatalogSource {
  public:
    using Texts = std::map<std::string, std::string>;

    explicit MapCatalogs(std::map<std::string, Texts> catalogs = {}) {
        for (auto& [name, texts] : catalogs)
            m_catalogs[name] = std::make_shared<Catalog>(std::move(texts));
    }

    [[nodiscard]] std::shared_ptr<const RTBASE_2_18::i18n::catalog_t> getCatalog(
        const std::string& name) const override {
        const auto it = m_catalogs.find(name);
        return it == m_catalogs.end() ? nullptr : it->second;
    }

  private:
    class Catalog final : public RTBASE_2_18::i18n::catalog_t {
      public:
        explicit Catalog(Texts texts) : m_texts(std::move(texts)) {}
        bool has_message(const std::string& key) const override { return m_texts.contains(key); }
        RTBASE_2_18::i18n::message_t message(const std::string& key) const override {
            return RTBASE_2_18::i18n::message_t(m_texts.at(key));
        }

      private:
        const Texts m_texts;
    };

    std::map<std::string, std::shared_ptr<const Catalog>> m_catalogs;
};

Viewpoint::Pointer viewpointOf(const std::string& display) {
    const std::string text =
        "<v><queries><query id='q' from='t' format='si:3' unit='B/s'>1</query><query id='k' from='t' "
        "key='a'>1</query>"
        "</queries><diagram><graph><node id='G'><node id='a'/></node><link id='1' from='a' "
        "to='a'/></graph><display>" +
        display + "</display></diagram></v>";
    return *Viewpoint::readText(text, "x.xml", CancelToken());
}

// A row set with one row.
std::string rows(const std::string& name, const std::string& reference = "/q") {
    return "<rowSet><queryRef displayName='" + name + "'>" + reference + "</queryRef></rowSet>";
}

std::vector<std::string> namesOf(ReservedSpace::Rows rows) {
    std::vector<std::string> names;
    for (const auto& row : rows)
        names.emplace_back(row.name);
    return names;
}

using Names = std::vector<std::string>;

TEST(ReservedSpace, HoldsTheRowsOfNodesAndGroups) {
    const ReservedSpace space(
        viewpointOf("<node id='a'><rowSet><queryRef displayName='x'>/q</queryRef>"
                    "<queryRef displayName='y'>/k/1</queryRef><queryRef displayName='z'/></rowSet></node>"
                    "<node id='G'>" +
                    rows("g") + "</node>"),
        MapCatalogs());
    ASSERT_EQ(space.nodes().size(), 2U);
    EXPECT_EQ(space.nodes()[0].id, "a");
    EXPECT_EQ(namesOf(space.nodes()[0].rows), (Names{"x", "y", "z"}));
    EXPECT_EQ(space.nodes()[0].rows[0].query->unit, "B/s");
    EXPECT_EQ(space.nodes()[0].rows[1].query->id, "k");
    EXPECT_EQ(space.nodes()[0].rows[2].query, nullptr);
    EXPECT_EQ(namesOf(space.nodes()[1].rows), Names{"g"});
}

TEST(ReservedSpace, HoldsEveryModeOfEveryLabel) {
    std::string label;
    for (const std::string_view mode : displayModeNames)
        label += "<" + std::string(mode) + ">" + rows("row of " + std::string(mode)) + "</" +
                 std::string(mode) + ">";
    label = "<dataTransfer displayName='title'>" + label + "</dataTransfer></label>";
    const ReservedSpace space(viewpointOf("<link id='1'><label location='to'>" + label +
                                          "<label location='from'>" + label + "</link>"),
                              MapCatalogs());
    ASSERT_EQ(space.labels().size(), 2 * displayModeNames.size());
    for (std::size_t i = 0; i < space.labels().size(); ++i) {
        const auto& each = space.labels()[i];
        EXPECT_EQ(each.link, "1");
        EXPECT_EQ(each.place, i < displayModeNames.size() ? LabelPlace::to : LabelPlace::from);
        EXPECT_EQ(static_cast<std::size_t>(each.mode), i % displayModeNames.size());
        EXPECT_EQ(each.title, "title");
        EXPECT_EQ(namesOf(each.rows), Names{"row of " + std::string(nameOf(each.mode))});
    }
}

TEST(ReservedSpace, LeavesOutWhatIsNeverShown) {
    const std::string label = "<label location='to'><dataTransfer><size>" + rows("early") +
                              "</size></dataTransfer><dataTransfer><size>" + rows("late") +
                              "</size></dataTransfer></label>";
    const ReservedSpace space(
        viewpointOf("<node id='nowhere'>" + rows("x") + "</node><link id='nowhere'>" + label +
                    "</link>"
                    "<node id='a'>" +
                    rows("first") +
                    "</node>"
                    "<node id='a'>" +
                    rows("second") + rows("third") +
                    "</node>"
                    "<link id='1'>" +
                    label + "</link><link id='1'>" + label + "</link>"),
        MapCatalogs());
    ASSERT_EQ(space.nodes().size(), 1U);
    EXPECT_EQ(namesOf(space.nodes()[0].rows), Names{"third"});
    ASSERT_EQ(space.labels().size(), 1U);
    EXPECT_EQ(namesOf(space.labels()[0].rows), Names{"late"});
}

TEST(ReservedSpace, NamesComeFromTheCataloguesInTheirOrder) {
    const std::map<std::string, MapCatalogs::Texts> catalogs{
        {"slicer2", {{"one", "from slicer2"}, {"two", ""}}},
        {"viewpoint", {{"one", "from viewpoint"}, {"two", "from viewpoint"}, {"title", "Titel"}}},
        {"storeiface1", {{"two", "from storeiface1"}, {"three", "from storeiface1"}}},
        {"other", {{"four", "from other"}}}};
    const ReservedSpace space(
        viewpointOf("<node id='a'><rowSet><queryRef displayName='one'/><queryRef displayName='two'/>"
                    "<queryRef displayName='three'/><queryRef displayName='four'/></rowSet></node>"
                    "<link id='1'><label><dataTransfer displayName='title'><ratio/></dataTransfer>"
                    "</label></link>"),
        MapCatalogs(catalogs));
    EXPECT_EQ(namesOf(space.nodes()[0].rows),
              (Names{"from slicer2", "from viewpoint", "from storeiface1", "four"}));
    EXPECT_EQ(space.labels()[0].title, "Titel");
}

// What the library shows after "create" and each change of the mode is among the reserved rows.
TEST(ReservedSpace, HoldsWhateverTheLibraryShows) {
    std::string label;
    for (const std::string_view mode : displayModeNames)
        label += "<" + std::string(mode) + ">" +
                 rows("row of " + std::string(mode), "/" + std::string(mode)) + "</" + std::string(mode) +
                 ">";
    std::string queries;
    for (const std::string_view mode : displayModeNames)
        queries += "<query id='" + std::string(mode) + "' from='t'>1</query>";
    const std::string text =
        "<v><queries>" + queries +
        "</queries><diagram><graph><node id='a'/><node id='b'/><link id='1' from='a' to='b'/></graph>"
        "<display><link id='1'><label><dataTransfer displayName='t'>" +
        label + "</dataTransfer></label></link></display></diagram></v>";
    const auto viewpoint = *Viewpoint::readText(text, "x.xml", CancelToken());
    const ReservedSpace space(viewpoint, MapCatalogs());
    tessera_test::MemoryHost host(text);
    for (const std::string_view mode : displayModeNames)
        host.result->values[std::string(mode)] = "1";
    const auto handler = host.makeHandler();
    basekit2::variant_bag_t out;
    ASSERT_TRUE(handler->handleRequest("create", {}, out, nullptr).succeeded());
    for (const auto& reserved : space.labels()) {
        basekit2::variant_bag_t in;
        in.add_variant_bag("mode").put("", nameOf(reserved.mode));
        basekit2::variant_bag_t diagram;
        ASSERT_TRUE(handler->handleRequest("changeDisplayMode", in, diagram, nullptr).succeeded());
        EXPECT_NE(tessera_test::jsonOf(diagram).find(std::string(reserved.rows[0].name)), std::string::npos);
    }
}

TEST(Tables, NamesAreFoundInThem) {
    for (std::size_t i = 0; i < displayModeNames.size(); ++i)
        EXPECT_EQ(displayModeOf(displayModeNames[i]), static_cast<DisplayMode>(i));
    EXPECT_EQ(nameOf(DisplayMode::ratio), "ratio");
    EXPECT_FALSE(displayModeOf("Ratio"));
    EXPECT_FALSE(displayModeOf(""));
    EXPECT_TRUE(isFilterName("selection"));
    EXPECT_TRUE(isFilterName("global"));
    EXPECT_FALSE(isFilterName("other"));
    EXPECT_EQ(filterNameList(), "\"selection\" and \"global\"");
}

}  // namespace
}  // namespace tessera_host
