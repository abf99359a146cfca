#include "host/text/json_writer.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;
using namespace std::string_literals;
using basekit2::variant_bag_t;
using basekit2::variant_t;

// A string value on its own, as JSON.
std::string written(std::string_view text) {
    variant_bag_t bag;
    bag.put("k", text);
    const std::string json = toJson(bag);
    return json.substr(5, json.size() - 6);
}

// A bag whose children are empty and have these one-letter names.
variant_bag_t withChildren(std::string_view names) {
    variant_bag_t bag;
    for (std::size_t i = 0; i < names.size(); ++i)
        bag.add_variant_bag(names.substr(i, 1)).put("i", variant_t(static_cast<std::int64_t>(i)));
    return bag;
}

TEST(JsonWriter, ValuesInTheirOrder) {
    variant_bag_t bag;
    bag.put("z", "text");
    bag.put("a", variant_t(std::numeric_limits<std::int64_t>::min()));
    bag.put("m", variant_t(std::numeric_limits<std::int64_t>::max()));
    bag.put("", variant_t(true));
    bag.put("no", variant_t(false));
    bag.put("nothing", variant_t());
    bag.put("z", "again");
    EXPECT_EQ(
        toJson(bag),
        R"({"z":"again","a":-9223372036854775808,"m":9223372036854775807,"":true,"no":false,"nothing":null})");
}

TEST(JsonWriter, EmptyBags) {
    variant_bag_t bag;
    EXPECT_EQ(toJson(bag), "{}");
    bag.add_variant_bag("x");
    EXPECT_EQ(toJson(bag), R"({"x":{}})");
}

TEST(JsonWriter, ChildrenAreGroupedByNameInOrderOfFirstAppearance) {
    EXPECT_EQ(toJson(withChildren("ab")), R"({"a":{"i":0},"b":{"i":1}})");
    EXPECT_EQ(toJson(withChildren("aa")), R"({"a":[{"i":0},{"i":1}]})");
    EXPECT_EQ(toJson(withChildren("aba")), R"({"a":[{"i":0},{"i":2}],"b":{"i":1}})");
    EXPECT_EQ(toJson(withChildren("aabb")), R"({"a":[{"i":0},{"i":1}],"b":[{"i":2},{"i":3}]})");
    EXPECT_EQ(toJson(withChildren("cbabca")),
              R"({"c":[{"i":0},{"i":4}],"b":[{"i":1},{"i":3}],"a":[{"i":2},{"i":5}]})");
}

TEST(JsonWriter, ManyNamesAreGroupedLikeFew) {
    // 26 names, each twice: once down the alphabet, once up.
    std::string names = "abcdefghijklmnopqrstuvwxyz";
    names += std::string(names.rbegin(), names.rend());
    std::string expected = "{";
    for (int i = 0; i < 26; ++i) {
        expected += i == 0 ? "" : ",";
        expected += "\""s + names[static_cast<std::size_t>(i)] + R"(":[{"i":)" + std::to_string(i) +
                    R"(},{"i":)" + std::to_string(51 - i) + "}]";
    }
    EXPECT_EQ(toJson(withChildren(names)), expected + "}");
}

TEST(JsonWriter, ValuesComeBeforeChildrenOfTheSameName) {
    variant_bag_t bag = withChildren("a");
    bag.put("a", "value");
    EXPECT_EQ(toJson(bag), R"({"a":"value","a":{"i":0}})");
}

TEST(JsonWriter, ArrayOfMakesAnArrayAlways) {
    variant_bag_t none;
    none.put("arrayOf", "x");
    EXPECT_EQ(toJson(none), R"({"arrayOf":"x","x":[]})");

    variant_bag_t one = withChildren("x");
    one.put("arrayOf", "x");
    EXPECT_EQ(toJson(one), R"({"arrayOf":"x","x":[{"i":0}]})");

    variant_bag_t amid = withChildren("axbx");
    amid.put("arrayOf", "x");
    EXPECT_EQ(toJson(amid), R"({"arrayOf":"x","a":{"i":0},"x":[{"i":1},{"i":3}],"b":{"i":2}})");

    variant_bag_t others = withChildren("aabc");
    others.put("arrayOf", "x");
    EXPECT_EQ(toJson(others), R"({"arrayOf":"x","a":[{"i":0},{"i":1}],"b":{"i":2},"c":{"i":3},"x":[]})")
        << "an empty array comes last";
}

TEST(JsonWriter, ArrayOfConcernsItsOwnBagAndOnlyAsText) {
    variant_bag_t bag;
    bag.put("arrayOf", "x");
    bag.add_variant_bag("x").add_variant_bag("x");
    EXPECT_EQ(toJson(bag), R"({"arrayOf":"x","x":[{"x":{}}]})");

    variant_bag_t number;
    number.put("arrayOf", variant_t(std::int64_t{1}));
    EXPECT_EQ(toJson(number), R"({"arrayOf":1})");

    variant_bag_t nested;
    nested.put("arrayOf", "x");
    nested.add_variant_bag("x").put("arrayOf", "y");
    EXPECT_EQ(toJson(nested), R"({"arrayOf":"x","x":[{"arrayOf":"y","y":[]}]})");
}

TEST(JsonWriter, Escapes) {
    EXPECT_EQ(written("\"\\/\b\f\n\r\t"), R"("\"\\/\b\f\n\r\t")");
    EXPECT_EQ(written("\0\x01\x1F\x7F"s), "\"\\u0000\\u0001\\u001f\x7F\"");
    EXPECT_EQ(written("\u00E9\u20AC\U0001F600\u2028"), "\"\u00E9\u20AC\U0001F600\u2028\"");
    variant_bag_t bag;
    bag.put("a\"b", "");
    EXPECT_EQ(toJson(bag), R"({"a\"b":""})") << "keys too";
}

TEST(JsonWriter, EscapesAtEveryPlaceOfAText) {
    for (const auto& [c, escape] :
         {std::pair{'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}, {'\x02', "\\u0002"}}) {
        for (std::size_t length = 1; length < 30; ++length) {
            for (std::size_t at = 0; at < length; ++at) {
                std::string text(length, 'x');
                text[at] = c;
                std::string expected = text;
                expected.replace(at, 1, escape);
                ASSERT_EQ(written(text), '"' + expected + '"');
            }
        }
    }
}

TEST(JsonWriter, InvalidUtf8IsRepaired) {
    EXPECT_EQ(written("a\xFFz\xC3"), "\"a\xEF\xBF\xBDz\xEF\xBF\xBD\"");
    EXPECT_EQ(written("\xED\xA0\x80\n"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\\n\"");
    variant_bag_t bag;
    bag.put("\xFF", "");
    bag.add_variant_bag("\xFE");
    EXPECT_EQ(toJson(bag), "{\"\xEF\xBF\xBD\":\"\",\"\xEF\xBF\xBD\":{}}");
}

TEST(JsonWriter, IndentedForm) {
    variant_bag_t bag = withChildren("abb");
    bag.put("v", "x");
    bag.put("arrayOf", "none");
    bag.add_variant_bag("c");
    EXPECT_EQ(toJson(bag, JsonForm::indented), R"({
  "v": "x",
  "arrayOf": "none",
  "a": {
    "i": 0
  },
  "b": [
    {
      "i": 1
    },
    {
      "i": 2
    }
  ],
  "c": {},
  "none": []
})");
    EXPECT_EQ(toJson(variant_bag_t(), JsonForm::indented), "{}");
}

TEST(JsonWriter, BothFormsSayTheSame) {
    const variant_bag_t bag = fromXml("<r a='1'><x b='2'>t</x><y/><x><z/></x></r>");
    std::string squeezed;
    for (const char c : toJson(bag, JsonForm::indented))
        if (c != ' ' && c != '\n') squeezed += c;
    EXPECT_EQ(squeezed, toJson(bag));
}

// Takes so many blocks.
class LimitedSink final : public TextSink {
  public:
    explicit LimitedSink(int blocks) : m_blocks(blocks) {}
    int calls = 0;

  protected:
    bool deliver(std::string_view) override { return ++calls <= m_blocks; }

  private:
    int m_blocks;
};

TEST(JsonWriter, StopsWhenTheSinkFails) {
    const variant_bag_t bag = withChildren(std::string(200000, 'x'));
    LimitedSink sink(2);
    EXPECT_FALSE(writeJson(bag, sink));
    EXPECT_EQ(sink.calls, 3);
}

}  // namespace
}  // namespace tessera_host
