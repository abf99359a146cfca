// Random bags through JSON and XML and back.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

#include "support/utf8.h"
#include "tests/unit/host_text_support.h"

namespace tessera_host {
namespace {

using namespace text_support;
using basekit2::variant_bag_t;
using basekit2::variant_t;

class BagMaker {
  public:
    // Only what XML can hold: strings of its characters, names that it allows, own text trimmed and put last.
    enum class For { json, xml };

    BagMaker(unsigned seed, For use) : m_random(seed), m_use(use) {}

    variant_bag_t make() {
        variant_bag_t root;
        fill(root, 0);
        return root;
    }

  private:
    unsigned below(unsigned bound) { return static_cast<unsigned>(m_random() % bound); }

    std::string name() {
        static constexpr std::array<const char*, 12> names{
            "a",  "b",       "id",           "name",   "x:y", "_z",
            "c-", "\u00E9t", "arrayOf_no.1", "\u0416", "q",   "long_name_of_a_value"};
        static constexpr std::array<const char*, 5> onlyJson{"", "two words", "\"", "1", "\n\x01"};
        if (m_use == For::json && below(4) == 0) return onlyJson[below(onlyJson.size())];
        return names[below(names.size())];
    }

    std::string text() {
        static constexpr std::array<std::string_view, 16> pieces{
            "a", "some plain text", "\"",     "\\",         "<",   ">&amp;", "\n",    "\r\n", "\t",
            " ", "\u00E9",          "\u20AC", "\U0001F600", "]]>", "'",      "\u00A0"};
        std::string result;
        for (unsigned i = below(8); i > 0; --i)
            result += pieces[below(pieces.size())];
        if (m_use == For::json && below(8) == 0) result += '\0';
        return result;
    }

    variant_t value() {
        const unsigned kind = m_use == For::xml ? 0 : below(4);
        if (kind == 1) return below(2) == 0;
        if (kind == 2) return static_cast<std::int64_t>(m_random());
        if (kind == 3) return std::int64_t{below(100)} - 50;
        return variant_t(text());
    }

    void fill(variant_bag_t& bag, int level) {
        for (unsigned i = below(below(10) == 0 ? 40 : 6); i > 0; --i)
            bag.put(i % 7 == 6 ? name() + std::to_string(i) : name(), value());
        if (m_use == For::xml && below(2) == 0) putOwnText(bag);
        std::vector<std::string> names;
        for (unsigned i = level < 6 ? below(6) : 0; i > 0; --i)
            names.push_back(name());
        if (m_use == For::json && below(4) == 0) bag.put("arrayOf", name());
        if (m_use == For::json) group(names);
        for (const std::string& each : names)
            fill(bag.add_variant_bag(each), level + 1);
    }

    void putOwnText(variant_bag_t& bag) {
        std::string own = text();
        own.erase(0, own.find_first_not_of(" \t\r\n"));
        own.erase(own.find_last_not_of(" \t\r\n") + 1);
        if (!own.empty()) bag.put("", own);
    }

    // JSON keeps the order of children within a name and the order of the names.
    static void group(std::vector<std::string>& names) {
        std::vector<std::string> order;
        for (const std::string& each : names)
            if (std::find(order.begin(), order.end(), each) == order.end()) order.push_back(each);
        std::stable_sort(names.begin(), names.end(), [&](const std::string& a, const std::string& b) {
            return std::find(order.begin(), order.end(), a) < std::find(order.begin(), order.end(), b);
        });
    }

    std::mt19937_64 m_random;
    For m_use;
};

// The same bag with its children grouped, found by looking at all of them for each.
variant_bag_t grouped(const variant_bag_t& bag) {
    variant_bag_t result;
    for (auto it = bag.begin_values(); !it.at_end(); it.next())
        result.put(it.get_name(), it.get_value());
    std::vector<std::string_view> done;
    for (auto first = bag.begin(); !first.at_end(); first.next()) {
        if (std::find(done.begin(), done.end(), first.get_name()) != done.end()) continue;
        done.push_back(first.get_name());
        for (auto it = bag.begin(); !it.at_end(); it.next())
            if (it.get_name() == first.get_name())
                result.add_variant_bag(it.get_name()) = grouped(it.get_value());
    }
    return result;
}

TEST(TextRoundTrip, JsonGivesTheSameBagBack) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        const variant_bag_t bag = BagMaker(seed, BagMaker::For::json).make();
        for (const JsonForm form : {JsonForm::compact, JsonForm::indented}) {
            const std::string json = toJson(bag, form);
            ASSERT_TRUE(tessera_support::isValidUtf8(json));
            ASSERT_EQ(fromJson(json), bag) << "seed " << seed << ": " << json;
        }
    }
}

TEST(TextRoundTrip, JsonGroupsChildrenAndChangesNothingElse) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        const variant_bag_t bag = BagMaker(seed, BagMaker::For::xml).make();  // children in any order
        ASSERT_EQ(fromJson(toJson(bag)), grouped(bag)) << "seed " << seed;
    }
}

TEST(TextRoundTrip, XmlGivesTheSameBagBack) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        const variant_bag_t bag = BagMaker(seed, BagMaker::For::xml).make();
        const std::string xml = toXml(bag);
        ASSERT_EQ(fromXml(xml), bag) << "seed " << seed << ": " << xml;
    }
}

// Whatever bytes a bag holds, what is written can be read.
TEST(TextRoundTrip, AnyBytesAreWrittenSoThatTheyCanBeRead) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes;
        for (auto i = random() % 30; i > 0; --i)
            bytes += static_cast<char>(random() % 3 == 0 ? 'x' : random() % 256);
        variant_bag_t bag;
        bag.put("a", bytes);
        bag.put("", bytes);
        const variant_bag_t json = fromJson(toJson(bag));
        ASSERT_EQ(json.get("a")->get<std::string_view>(), tessera_support::repairUtf8(bytes))
            << testing::PrintToString(bytes);
        ASSERT_TRUE(fromXml(toXml(bag)).get("a")) << testing::PrintToString(bytes);
    }
}

// A damaged document is an error or reads as another document; it never crashes the reader.
TEST(TextRoundTrip, DamagedTextsAreReadOrRefused) {
    std::mt19937 random(99);
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const variant_bag_t bag = BagMaker(seed, BagMaker::For::xml).make();
        const std::string xml =
            "<!DOCTYPE bag SYSTEM 'x' [<!ATTLIST bag a CDATA 'd'>]>" + toXml(bag).substr(39);
        const std::string json = toJson(bag);
        for (int round = 0; round < 20; ++round) {
            for (const std::string& whole : {xml, json}) {
                std::string damaged = whole;
                damaged[random() % damaged.size()] = static_cast<char>(random() % 256);
                if (round % 4 == 0) damaged.resize(random() % damaged.size());
                const auto read = whole == xml ? readXmlText(damaged) : readJson(damaged);
                if (read) continue;
                const Error& error = read.error();
                ASSERT_FALSE(error.text.empty());
                ASSERT_GT(error.position.line, 0U);
                ASSERT_TRUE(tessera_support::isValidUtf8(error.text)) << testing::PrintToString(error.text);
            }
        }
    }
}

}  // namespace
}  // namespace tessera_host
