#include "host/document/declarations.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

#include "host/document/percent_encoding.h"

namespace tessera_host {
namespace {

using basekit2::variant_bag_t;
using Attributes = std::initializer_list<std::pair<const char*, const char*>>;

variant_bag_t& add(variant_bag_t& parent, const char* name, Attributes attributes, std::uint32_t line = 0) {
    variant_bag_t& child = parent.add_variant_bag(name);
    for (const auto& [key, value] : attributes)
        child.put(key, value);
    child.set_position({line, 1});
    return child;
}

variant_bag_t exampleDocument() {
    variant_bag_t root;
    variant_bag_t& queries = root.add_variant_bag("queries");
    add(queries, "query",
        {{"id", "Rate"},
         {"from", "flows"},
         {"key", " src\tdst "},
         {"format", "si:3"},
         {"unit", "B/s"},
         {"", "SUM(bytes)"}},
        3);
    add(queries, "query", {{"id", "Errors"}, {"from", "flows"}, {"where", "status >= 500"}, {"", "COUNT(*)"}},
        4);
    add(queries, "query", {{"id", "a/b"}, {"from", "flows"}, {"", "COUNT(*)"}}, 5);
    add(queries, "query", {{"id", "One"}, {"from", "flows"}, {"key", "k"}, {"", "COUNT(*)"}}, 6);
    return root;
}

std::string reasonOf(const Declarations& declarations, std::string_view text) {
    const auto reference = declarations.parseReference(text);
    EXPECT_FALSE(reference) << text;
    return reference ? "" : reference.error().text;
}

TEST(Declarations, ReadsEveryAttribute) {
    const auto declarations = Declarations::read(exampleDocument());
    const QueryDeclaration* rate = declarations->find("Rate");
    ASSERT_NE(rate, nullptr);
    EXPECT_EQ(rate->from, "flows");
    EXPECT_EQ(rate->expression, "SUM(bytes)");
    EXPECT_EQ(rate->where, "");
    EXPECT_EQ(rate->keys, (std::vector<std::string>{"src", "dst"}));
    EXPECT_EQ(rate->format, (CellFormat{CellFormat::Kind::si, 3}));
    EXPECT_EQ(rate->unit, "B/s");
    EXPECT_EQ(rate->position.line, 3u);
    EXPECT_EQ(declarations->find("Errors")->where, "status >= 500");
    EXPECT_EQ(declarations->find("rate"), nullptr);
    EXPECT_TRUE(declarations->problems().empty());
    EXPECT_EQ(declarations->queries().size(), 4u);
    EXPECT_EQ(declarations->queries()[1].id, "Errors");
    EXPECT_EQ(declarations->queries()[1].index, 1u);
}

TEST(Declarations, ReadsAllSectionsAndNothingElse) {
    variant_bag_t root = exampleDocument();
    add(root.add_variant_bag("queries"), "query", {{"id", "Late"}, {"from", "t"}, {"", "COUNT(*)"}});
    add(root.add_variant_bag("diagram"), "query", {{"id", "Elsewhere"}, {"from", "t"}, {"", "COUNT(*)"}});
    add(root, "query", {{"id", "Loose"}, {"from", "t"}, {"", "COUNT(*)"}});
    const auto declarations = Declarations::read(root);
    EXPECT_NE(declarations->find("Late"), nullptr);
    EXPECT_EQ(declarations->find("Elsewhere"), nullptr);
    EXPECT_EQ(declarations->find("Loose"), nullptr);
}

TEST(Declarations, LaterDuplicateWins) {
    variant_bag_t root = exampleDocument();
    add(root.add_variant_bag("queries"), "query", {{"id", "Errors"}, {"from", "other"}, {"", "COUNT(*)"}}, 9);
    const auto declarations = Declarations::read(root);
    EXPECT_EQ(declarations->find("Errors")->from, "other");
    EXPECT_EQ(declarations->queries().size(), 5u);  // both are there to be looked at
}

TEST(Declarations, ListsWhatIsWrong) {
    variant_bag_t root;
    variant_bag_t& queries = root.add_variant_bag("queries");
    add(queries, "query", {{"from", "t"}, {"", "COUNT(*)"}}, 1);
    add(queries, "query", {{"id", "F"}, {"from", "t"}, {"format", "hex"}, {"", "COUNT(*)"}}, 2);
    add(queries, "query", {{"id", "x/y"}, {"from", "t"}, {"key", "k"}, {"", "COUNT(*)"}}, 4);
    add(root.add_variant_bag("filters"), "filter", {{"", "1"}}, 5);
    std::vector<std::string> texts;
    std::vector<std::uint32_t> lines;
    const auto declarations = Declarations::read(root);
    for (const Problem& problem : declarations->problems()) {
        texts.push_back(problem.text);
        lines.push_back(problem.position.line);
    }
    EXPECT_EQ(lines, (std::vector<std::uint32_t>{1, 2, 4, 5}));
    EXPECT_EQ(texts, (std::vector<std::string>{
                         "query without an id", "query \"F\" has the unknown format \"hex\"",
                         "query \"x/y\" has keys, so its id may have no \"/\"", "filter without a name"}));
    EXPECT_EQ(declarations->find("F")->format, CellFormat());
}

TEST(Declarations, LaterFilterReplacesAndEmptyOneRemoves) {
    variant_bag_t root;
    variant_bag_t& filters = root.add_variant_bag("filters");
    add(filters, "filter", {{"name", "selection"}, {"", "a = 1"}}, 2);
    add(filters, "filter", {{"name", "global"}, {"", "b = 1"}}, 3);
    add(filters, "filter", {{"name", "selection"}, {"", "a = 2"}}, 4);
    add(root.add_variant_bag("filters"), "filter", {{"name", "global"}}, 5);
    const auto declarations = Declarations::read(root);
    EXPECT_EQ(declarations->filters(), (Filters{{"selection", {"a = 2", {4, 1}}}}));
    Filters changed = declarations->filters();
    setFilter(changed, "selection", {" \n", {}});
    EXPECT_TRUE(changed.empty());
}

TEST(References, NameAQueryAndItsKeys) {
    const auto declarations = Declarations::read(exampleDocument());
    const auto rate = declarations->parseReference("/Rate/web/db");
    ASSERT_TRUE(rate);
    EXPECT_EQ(rate->declaration, declarations->find("Rate"));
    EXPECT_EQ(rate->keys, (std::vector<std::string>{"web", "db"}));
    const auto errors = declarations->parseReference("/Errors");
    ASSERT_TRUE(errors);
    EXPECT_TRUE(errors->keys.empty());
    const auto whole = declarations->parseReference("/a/b");
    ASSERT_TRUE(whole);
    EXPECT_EQ(whole->declaration->id, "a/b");
}

TEST(References, DecodeKeyValues) {
    const auto declarations = Declarations::read(exampleDocument());
    const auto keysOf = [&](std::string_view text) {
        const auto reference = declarations->parseReference(text);
        EXPECT_TRUE(reference) << text;
        return reference ? reference->keys : std::vector<std::string>();
    };
    using Keys = std::vector<std::string>;
    EXPECT_EQ(keysOf("/Rate/a%2Fb/100%25"), (Keys{"a/b", "100%"}));
    EXPECT_EQ(keysOf("/Rate//"), (Keys{"", ""}));
    EXPECT_EQ(keysOf("/One/"), (Keys{""}));
    EXPECT_EQ(keysOf("/One/a+b c"), (Keys{"a+b c"}));
    EXPECT_EQ(keysOf("/One/%c3%A9"), (Keys{"\u00E9"}));
    EXPECT_EQ(keysOf("/One/%00x"), (Keys{std::string("\0x", 2)}));
    EXPECT_EQ(keysOf("/One/O'Hare\"--"), (Keys{"O'Hare\"--"}));
}

TEST(References, SayWhatIsWrongWithThem) {
    const auto declarations = Declarations::read(exampleDocument());
    EXPECT_EQ(reasonOf(*declarations, ""), "it does not begin with \"/\"");
    EXPECT_EQ(reasonOf(*declarations, "Errors"), "it does not begin with \"/\"");
    EXPECT_EQ(reasonOf(*declarations, "/"), "there is no query \"\"");
    EXPECT_EQ(reasonOf(*declarations, "/Rat/e"), "there is no query \"Rat\"");
    EXPECT_EQ(reasonOf(*declarations, "/RootGrouping"), "there is no query \"RootGrouping\"");
    EXPECT_EQ(reasonOf(*declarations, "/Rate/web"),
              "query \"Rate\" needs 2 key values (src, dst) but has 1 here");
    EXPECT_EQ(reasonOf(*declarations, "/Rate"),
              "query \"Rate\" needs 2 key values (src, dst) but has 0 here");
    EXPECT_EQ(reasonOf(*declarations, "/One/a/b"), "query \"One\" needs 1 key value (k) but has 2 here");
    EXPECT_EQ(reasonOf(*declarations, "/Errors/"), "query \"Errors\" takes no key values but has 1 here");
    for (const char* key : {"%", "a%4", "%zz", "%4g", "%-1", "%+1", "% 1"})
        EXPECT_EQ(reasonOf(*declarations, std::string("/One/") + key),
                  std::string("the key value \"") + key + "\" is not percent-encoded correctly");
}

TEST(References, ToADeclaredRootGroupingAreReferences) {
    variant_bag_t root;
    add(root.add_variant_bag("queries"), "query", {{"id", "RootGrouping"}, {"from", "t"}, {"", "COUNT(*)"}});
    EXPECT_TRUE(Declarations::read(root)->parseReference("/RootGrouping"));
}

TEST(References, AreReadInLinearTime) {
    const auto declarations = Declarations::read(exampleDocument());
    EXPECT_FALSE(declarations->parseReference("/Rate" + std::string(4'000'000, '/')));
    EXPECT_TRUE(declarations->parseReference("/One/" + std::string(4'000'000, 'x')));
    EXPECT_LT(reasonOf(*declarations, "/" + std::string(4'000'000, 'x')).size(),
              400u);  // messages stay readable
}

TEST(PercentEncoding, DecodesWhatItEncodes) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<char>(i));
    const std::string encoded = percentEncode(bytes);
    EXPECT_EQ(encoded.find('/'), std::string::npos);
    EXPECT_EQ(percentDecode(encoded), bytes);
    EXPECT_EQ(percentEncode("a-Z.0_~"), "a-Z.0_~");
    EXPECT_EQ(percentEncode("/% \xFF"), "%2F%25%20%FF");
}

}  // namespace
}  // namespace tessera_host
