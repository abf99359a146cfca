#include "host/engine/query_library.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/document/text.h"
#include "host/values/number_text.h"
#include "platform/basekit2/object_registry.h"
#include "support/utf8.h"

namespace tessera_host {
namespace {

using basekit2::sptr_t;
using basekit2::variant_bag_t;

struct Post {
    std::string text;
    std::uint32_t line;
};

class Messenger : public relay2::IMessenger {
  public:
    void post(relay2::severity_t severity, const std::string& text,
              basekit2::source_position_t position) override {
        EXPECT_EQ(severity, relay2::severity_t::error);
        posts.push_back({text, position.line});
    }
    std::vector<Post> posts;
};

class QueryLibraryTest : public testing::Test {
  protected:
    QueryLibraryTest() {
        variant_bag_t root;
        variant_bag_t& queries = root.add_variant_bag("queries");
        declare(queries, "Rate", "src dst");
        declare(queries, "Errors", "");
        declare(queries, "RootGrouping", "");
        library = basekit2::make_counted<QueryLibrary>(Declarations::read(root));
    }

    static void declare(variant_bag_t& queries, const char* id, const char* key) {
        variant_bag_t& query = queries.add_variant_bag("query");
        query.put("id", id);
        query.put("from", "t");
        query.put("key", key);
        query.put("", "COUNT(*)");
    }

    static variant_bag_t rowSet(const std::vector<std::string>& references) {
        variant_bag_t definition;
        std::uint32_t line = 10;
        for (const std::string& reference : references) {
            variant_bag_t& child = definition.add_variant_bag("queryRef");
            if (!reference.empty()) child.put("", reference);
            child.set_position({line++, 5});
        }
        return definition;
    }

    sptr_t<qlib_1::IVectorQuery> build(const std::vector<std::string>& references) {
        return qlib_1::IVectorQuery::cast(library->buildQuery(rowSet(references), &messenger));
    }

    static sptr_t<ReferenceQuery> asReference(const sptr_t<qlib_1::IQuery>& query) {
        return basekit2::object_registry_t::process().query<ReferenceQuery>(query);
    }

    Messenger messenger;
    sptr_t<QueryLibrary> library;
};

TEST_F(QueryLibraryTest, MembersAreTheReferencesInOrder) {
    const auto vector = build({"/Rate/a/b%2F", "", "/Errors"});
    ASSERT_FALSE(vector.is_null());
    ASSERT_EQ(vector->size(), 2u);
    EXPECT_EQ(vector->at(0)->getIdentifier(), "Rate/a/b%2F");
    EXPECT_EQ(vector->at(1)->getIdentifier(), "Errors");
    const auto rate = asReference(vector->at(0));
    ASSERT_FALSE(rate.is_null());
    EXPECT_EQ(rate->declaration().id, "Rate");
    EXPECT_EQ(rate->keys(), (std::vector<std::string>{"a", "b/"}));
    EXPECT_TRUE(messenger.posts.empty());
}

TEST_F(QueryLibraryTest, NoMemberIsAVectorWithoutColumns) {
    for (const auto& references : {std::vector<std::string>{}, std::vector<std::string>{"", ""}}) {
        const auto vector = build(references);
        ASSERT_FALSE(vector.is_null());
        EXPECT_EQ(vector->size(), 0u);
    }
    EXPECT_TRUE(messenger.posts.empty());
}

TEST_F(QueryLibraryTest, OtherChildrenAreNotMembers) {
    variant_bag_t definition = rowSet({"/Errors"});
    definition.add_variant_bag("note").put("", "/Nowhere");
    const auto query = qlib_1::IVectorQuery::cast(library->buildQuery(definition, &messenger));
    ASSERT_FALSE(query.is_null());
    EXPECT_EQ(query->size(), 1u);
}

TEST_F(QueryLibraryTest, OneWrongReferenceRejectsTheDefinition) {
    EXPECT_TRUE(build({"/Errors", "/Rate/a", "/Nowhere"}).is_null());
    ASSERT_EQ(messenger.posts.size(), 1u);
    EXPECT_EQ(
        messenger.posts[0].text,
        "The reference \"/Rate/a\" is wrong: query \"Rate\" needs 2 key values (src, dst) but has 1 here.");
    EXPECT_EQ(messenger.posts[0].line, 11u);
    EXPECT_TRUE(library->buildQuery(rowSet({"Errors"}), nullptr).is_null());
}

TEST_F(QueryLibraryTest, MessagesAreOneLineOfValidText) {
    EXPECT_TRUE(build({"/a\nb\xFF"}).is_null());
    ASSERT_EQ(messenger.posts.size(), 1u);
    EXPECT_EQ(messenger.posts[0].text,
              "The reference \"/a b\uFFFD\" is wrong: there is no query \"a b\uFFFD\".");
}

TEST_F(QueryLibraryTest, EqualReferencesShareOneObject) {
    const auto first = build({"/Rate/a/b", "/Rate/a/b"});
    const auto second = build({"/Rate/a/b"});
    EXPECT_EQ(first->at(0), first->at(1));
    EXPECT_EQ(first->at(0), second->at(0));
}

TEST_F(QueryLibraryTest, SiblingsCountDistinctKeysOfOneDeclaration) {
    // The second spelling of the same keys is a query with a name of its own but no further choice of rows.
    const auto vector = build({"/Rate/a/b", "/Rate/%61/b", "/Rate/a/c", "/Errors"});
    EXPECT_NE(vector->at(0), vector->at(1));
    EXPECT_EQ(asReference(vector->at(0))->keyText(), asReference(vector->at(1))->keyText());
    EXPECT_EQ(asReference(vector->at(0))->siblings().size(), 2u);
    EXPECT_EQ(asReference(vector->at(3))->siblings().size(), 1u);
}

TEST_F(QueryLibraryTest, KeyTextsTellKeysApart) {
    EXPECT_NE(keyTextOf({"a", "b"}), keyTextOf({"ab", ""}));
    EXPECT_NE(keyTextOf({"1:a", ""}), keyTextOf({"", "1:a"}));
    EXPECT_NE(keyTextOf({""}), keyTextOf({}));
}

TEST_F(QueryLibraryTest, RootGroupingIsAlwaysTheBuiltInOne) {
    const auto root = library->getQuery("RootGrouping");
    ASSERT_FALSE(root.is_null());
    EXPECT_EQ(root->getIdentifier(), "RootGrouping");
    EXPECT_TRUE(isRootGrouping(root));
    const auto declared = build({"/RootGrouping"});
    ASSERT_FALSE(declared.is_null());
    EXPECT_EQ(declared->at(0)->getIdentifier(), "RootGrouping");
    EXPECT_FALSE(isRootGrouping(declared->at(0)));
}

TEST_F(QueryLibraryTest, FindsDeclaredQueriesWithoutKeysByName) {
    EXPECT_EQ(library->getQuery("Errors"), build({"/Errors"})->at(0));
    EXPECT_TRUE(library->getQuery("Rate").is_null());
    EXPECT_TRUE(library->getQuery("Rate/a/b").is_null());
    EXPECT_TRUE(library->getQuery("").is_null());
}

TEST_F(QueryLibraryTest, QueriesOutliveTheLibrary) {
    const auto vector = build({"/Rate/a/b"});
    library = nullptr;
    EXPECT_EQ(asReference(vector->at(0))->declaration().keys.size(), 2u);
    EXPECT_EQ(asReference(vector->at(0))->siblings().size(), 1u);
}

TEST(NumberText, KnowsNumbersAndTheirCanonicalForm) {
    for (const char* text : {"0", "-5", "+5", "05", "5.", ".5", "1e3", "1E-3", "-1.5e+10"})
        EXPECT_TRUE(isNumeric(text)) << text;
    for (const char* text : {"", " 5", "5 ", "0x1", "1e", "e1", ".", "+", "--1", "1_0", "inf", "nan"})
        EXPECT_FALSE(isNumeric(text)) << text;
    for (const char* text : {"0", "5", "-5", "9223372036854775807", "-9223372036854775808"})
        EXPECT_TRUE(isCanonicalInteger(text)) << text;
    for (const char* text : {"", "-", "-0", "+5", "05", "5.0", "9223372036854775808", "5 ", "a"})
        EXPECT_FALSE(isCanonicalInteger(text)) << text;
}

TEST(QueryText, OneLineIsShortAndValid) {
    EXPECT_EQ(oneLine("a\r\nb\x7F"
                      "c"),
              "a  b c");
    EXPECT_EQ(oneLine(std::string(1000, 'x')), std::string(300, 'x') + "...");
    std::string accents;
    for (int i = 0; i < 1000; ++i)
        accents += "\u20AC";
    EXPECT_EQ(oneLine(accents),
              tessera_support::repairUtf8(oneLine(accents)));  // not truncated inside of a character
    EXPECT_TRUE(isBlank(" \t\r\n"));
    EXPECT_FALSE(isBlank(" x"));
}

}  // namespace
}  // namespace tessera_host
