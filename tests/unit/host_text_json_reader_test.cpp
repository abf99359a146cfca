#include "host/text/json_reader.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;
using namespace std::string_literals;
using basekit2::variant_bag_t;

std::string errorOf(std::string_view json) {
    const auto read = readJson(json);
    EXPECT_FALSE(read);
    return problem(read);
}

TEST(JsonReader, ValuesHaveTheirTypes) {
    const variant_bag_t bag = fromJson(
        R"( {"s":"text", "i":-5, "max":9223372036854775807, "min":-9223372036854775808, "zero":-0, "t":true, "f":false} )");
    EXPECT_EQ(bag.get("s")->get<std::string_view>(), "text");
    EXPECT_EQ(bag.get("i")->get<std::int64_t>(), -5);
    EXPECT_EQ(bag.get("max")->get<std::int64_t>(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(bag.get("min")->get<std::int64_t>(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(bag.get("zero")->get<std::int64_t>(), 0);
    EXPECT_TRUE(bag.get("t")->get<bool>());
    EXPECT_FALSE(bag.get("f")->get<bool>());
    EXPECT_EQ(bag.value_count(), 7U);
}

TEST(JsonReader, ObjectsAndArraysAreChildren) {
    const std::string json = R"({"v":"1","x":[{"a":{}},{"b":[{},{}]},{}],"y":{"":""}})";
    const variant_bag_t bag = fromJson(json);
    EXPECT_EQ(toJson(bag), json);
    auto child = bag.begin();
    EXPECT_EQ(child.get_name(), "x");
    EXPECT_NE(child.get_value().get_variant_bag("a"), nullptr);
    EXPECT_EQ(bag.position().line, 0U);
}

TEST(JsonReader, EmptyArraysHaveNoChildren) {
    EXPECT_EQ(toJson(fromJson(R"({"x":[],"y":{"z":[ ]}})")), R"({"y":{}})");
    EXPECT_EQ(toJson(fromJson(R"({"arrayOf":"x","x":[]})")), R"({"arrayOf":"x","x":[]})");
}

TEST(JsonReader, RepeatedKeys) {
    EXPECT_EQ(toJson(fromJson(R"({"a":1,"b":2,"a":"last"})")), R"({"a":"last","b":2})");
    EXPECT_EQ(toJson(fromJson(R"({"a":{"n":1},"b":{},"a":[{"n":2},{"n":3}]})")),
              R"({"a":[{"n":1},{"n":2},{"n":3}],"b":{}})");
    EXPECT_EQ(toJson(fromJson(R"({"a":{},"a":1})")), R"({"a":1,"a":{}})") << "a value and a child";
}

TEST(JsonReader, Escapes) {
    const variant_bag_t bag = fromJson(R"({"k\n":"\"\\\/\b\f\n\r\t\u00e9\u20AC\ud83d\ude00\u0000."})");
    EXPECT_EQ(bag.get("k\n")->get<std::string_view>(), "\"\\/\b\f\n\r\t\u00E9\u20AC\U0001F600\0."s);
}

TEST(JsonReader, ByteOrderMarkIsSkipped) {
    EXPECT_EQ(toJson(fromJson("\xEF\xBB\xBF{\"a\":1}")), R"({"a":1})");
    EXPECT_EQ(errorOf("\xEF\xBB\xBF{\"a\":?}"), "1:6: a value is expected");
    EXPECT_EQ(errorOf("\xEF\xBB\xBF{\"a\":null}"), "1:6: null is not accepted as a value");
}

TEST(JsonReader, OutermostValueMustBeAnObject) {
    for (const char* json : {"[", "[{}]", "1", "\"x\"", "true", "null"})
        EXPECT_EQ(errorOf(json), "1:1: the outermost value must be an object") << json;
    EXPECT_EQ(errorOf(" \n 1.5"), "2:2: the outermost value must be an object");
}

TEST(JsonReader, WhatABagCannotHold) {
    EXPECT_EQ(errorOf("{\n \"\u00E9\" : null}"), "2:8: null is not accepted as a value");
    EXPECT_EQ(errorOf(R"({"a":1.5})"), "1:6: a number must be an integer, without fraction and exponent");
    EXPECT_EQ(errorOf(R"({"a":1.0})"), "1:6: a number must be an integer, without fraction and exponent");
    EXPECT_EQ(errorOf(R"({"a":1E3})"), "1:6: a number must be an integer, without fraction and exponent");
    EXPECT_EQ(errorOf(R"({"b":1, "a":9223372036854775808})"), "1:13: the number does not fit into 64 bits");
    EXPECT_EQ(errorOf(R"({"a":-9223372036854775809})"), "1:6: the number does not fit into 64 bits");
    EXPECT_EQ(errorOf("{\"a\":" + std::string(1000, '9') + "}"), "1:6: the number does not fit into 64 bits");
}

TEST(JsonReader, ArraysHoldObjectsOnly) {
    EXPECT_EQ(errorOf(R"({"a":[1]})"), "1:7: an array may hold objects only");
    EXPECT_EQ(errorOf(R"({"a":[{}, "a\"b,"]})"), "1:11: an array may hold objects only");
    EXPECT_EQ(errorOf(R"({"a":[{"b":1} , null]})"), "1:17: an array may hold objects only");
    EXPECT_EQ(errorOf(R"({"a":[{},true]})"), "1:10: an array may hold objects only");
    EXPECT_EQ(errorOf(R"({"a":[[]]})"), "1:7: an array may hold objects only");
}

TEST(JsonReader, NotWellFormed) {
    EXPECT_EQ(errorOf(R"({a:1})"), "1:2: a member's name in double quotes is expected");
    EXPECT_EQ(errorOf(R"({"a":1,})"), "1:8: a member's name in double quotes is expected");
    EXPECT_EQ(errorOf(R"({"a" 1})"), "1:6: ':' is expected after a member's name");
    EXPECT_EQ(errorOf(R"({"a":1 "b":2})"), "1:8: ',' or '}' is expected");
    EXPECT_EQ(errorOf(R"({"a":01})"), "1:7: ',' or '}' is expected");
    EXPECT_EQ(errorOf(R"({"a":[{} {}]})"), "1:10: ',' or ']' is expected");
    EXPECT_EQ(errorOf(R"({"a":[{},]})"), "1:10: a value is expected");
    EXPECT_EQ(errorOf(R"({"a":})"), "1:6: a value is expected");
    EXPECT_EQ(errorOf(R"({"a":NaN})"), "1:6: a value is expected");
    EXPECT_EQ(errorOf("// no\n{}"), "1:1: a value is expected");
    EXPECT_EQ(errorOf(R"({"a":1.})"), "1:8: a digit is expected after the decimal point");
    EXPECT_EQ(errorOf("{}\nx"), "2:1: something follows the object");
    EXPECT_EQ(errorOf("{}{}"), "1:3: something follows the object");
    EXPECT_EQ(errorOf("]"), "1:1: an object is expected");
}

TEST(JsonReader, EndsTooEarly) {
    const std::string early = ": the text ends too early: ";
    EXPECT_EQ(errorOf(""), "1:1" + early + "an object is expected");
    EXPECT_EQ(errorOf(" \n"), "2:1" + early + "an object is expected");
    EXPECT_EQ(errorOf("{"), "1:2" + early + "a member's name in double quotes is expected");
    EXPECT_EQ(errorOf(R"({"a")"), "1:5" + early + "':' is expected after a member's name");
    EXPECT_EQ(errorOf(R"({"a":)"), "1:6" + early + "a value is expected");
    EXPECT_EQ(errorOf(R"({"a":{})"), "1:8" + early + "',' or '}' is expected");
    EXPECT_EQ(errorOf(R"({"a":[{})"), "1:9" + early + "',' or ']' is expected");
    EXPECT_EQ(errorOf(R"({"a":"x)"), "1:8" + early + "a string is not closed");
}

TEST(JsonReader, WrongStrings) {
    EXPECT_EQ(errorOf(R"({"a":"\q"})"), "1:7: a string holds a control character or a wrong escape");
    EXPECT_EQ(errorOf("{\"a\":\"\n\"}"), "1:7: a string holds a control character or a wrong escape");
    EXPECT_EQ(errorOf(R"({"a":"\u12"})"), "1:7: four hexadecimal digits must follow '\\u'");
    EXPECT_EQ(errorOf(R"({"a":"\ud800x"})"), "1:7: half of a surrogate pair stands alone");
    EXPECT_EQ(errorOf(R"({"a":"\udc00"})"), "1:6: half of a surrogate pair stands alone");
    EXPECT_EQ(errorOf(R"({"\udc00":1})"), "1:2: half of a surrogate pair stands alone");
    EXPECT_EQ(errorOf("{\"a\":\"\u00E9\xFF\"}"), "1:8: this is not valid UTF-8");
    EXPECT_EQ(errorOf("{}\0"s), "1:3: a NUL character must be written as an escape");
    EXPECT_EQ(errorOf("{\"a\0\":1}"s), "1:4: a NUL character must be written as an escape");
}

// Deep nesting without meaning is rejected quickly and without exhausting the stack.
TEST(JsonReader, DeepNestingOfTheWrongKind) {
    EXPECT_EQ(errorOf(std::string(1000000, '[')), "1:1: the outermost value must be an object");
    EXPECT_EQ(errorOf("{\"a\":" + std::string(1000000, '[')), "1:7: an array may hold objects only");
    std::string open;
    for (int i = 0; i < 1000000; ++i)
        open += "{\"a\":";
    EXPECT_EQ(errorOf(open), "1:5000001: the text ends too early: a value is expected");
    std::string arrays;
    for (int i = 0; i < 1000000; ++i)
        arrays += "{\"a\":[";
    EXPECT_EQ(errorOf(arrays + "1"), "1:6000001: an array may hold objects only");
}

}  // namespace
}  // namespace tessera_host
