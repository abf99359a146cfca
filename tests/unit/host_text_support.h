// What the tests of the text formats share.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "host/text/json_reader.h"
#include "host/text/json_writer.h"
#include "host/text/xml_reader.h"
#include "host/text/xml_writer.h"

namespace tessera_host::text_support {

inline std::string toJson(const basekit2::variant_bag_t& bag, JsonForm form = JsonForm::compact) {
    std::string text;
    StringSink sink(text);
    EXPECT_TRUE(writeJson(bag, sink, form));
    return text;
}

inline std::string toXml(const basekit2::variant_bag_t& bag) {
    std::string text;
    StringSink sink(text);
    EXPECT_TRUE(writeXml(bag, sink));
    return text;
}

inline basekit2::variant_bag_t fromXml(std::string_view text) {
    auto bag = readXmlText(text);
    EXPECT_TRUE(bag) << (bag ? "" : describe(bag.error(), "text"));
    return bag ? *std::move(bag) : basekit2::variant_bag_t();
}

inline basekit2::variant_bag_t fromJson(std::string_view text) {
    auto bag = readJson(text);
    EXPECT_TRUE(bag) << (bag ? "" : describe(bag.error(), "text"));
    return bag ? *std::move(bag) : basekit2::variant_bag_t();
}

// What a reader says about a wrong document: "line:column: text".
inline std::string problem(const Expected<basekit2::variant_bag_t>& read) {
    return read ? "no error" : describe(read.error(), "").substr(1);
}

}  // namespace tessera_host::text_support
