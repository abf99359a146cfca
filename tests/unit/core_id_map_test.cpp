// The map of objects by id, compared with the standard map.
#include "core/view_model/id_map.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <stdexcept>
#include <string>

namespace tessera_test {
namespace {

using tessera_1::view_model::IdMap;
using Map = IdMap<int>;
using Standard = Map::Standard;

void expectSame(const Map& map, const Standard& standard) {
    ASSERT_EQ(map.size(), standard.size());
    ASSERT_EQ(map.empty(), standard.empty());
    ASSERT_TRUE(std::equal(map.begin(), map.end(), standard.begin(), standard.end()));
    ASSERT_TRUE(std::equal(map.rbegin(), map.rend(), standard.rbegin(), standard.rend()));
}

// Expects both iterators at the same entry, or both at the end.
template <class Iterator, class Other>
void expectSamePlace(const Map& map, Iterator a, const Standard& standard, Other b) {
    ASSERT_EQ(a == map.end(), b == standard.end());
    if (b == standard.end()) return;
    ASSERT_EQ(a->first, b->first);
    ASSERT_EQ(a->second, b->second);
}

TEST(IdMap, DoesWhatTheStandardMapDoes) {
    std::mt19937 random(11);
    Map map;
    Standard standard;
    for (int step = 0; step < 30'000; ++step) {
        const std::string id = std::to_string(random() % 300);
        const auto object = std::make_shared<int>(step);
        switch (random() % 10) {
            case 0:
                map[id] = standard[id] = object;
                break;
            case 1:
                ASSERT_EQ(map.erase(id), standard.erase(id));
                break;
            case 2:
                ASSERT_EQ(map.insert({id, object}).second, standard.insert({id, object}).second);
                break;
            case 3:
                ASSERT_EQ(map.emplace(id, object).second, standard.emplace(id, object).second);
                break;
            case 4:
                ASSERT_EQ(map.try_emplace(id, object).second, standard.try_emplace(id, object).second);
                break;
            case 5:
                map.insert_or_assign(id, object), standard.insert_or_assign(id, object);
                break;
            case 6:
                ASSERT_EQ(map.count(id), standard.count(id));
                break;
            case 7:
                expectSamePlace(map, map.lower_bound(id), standard, standard.lower_bound(id));
                break;
            case 8:
                expectSamePlace(map, map.upper_bound(id), standard, standard.upper_bound(id));
                break;
            default: {
                const auto place = map.find(id);
                const auto expected = standard.find(id);
                expectSamePlace(map, place, standard, expected);
                if (expected != standard.end())
                    expectSamePlace(map, map.erase(place), standard, standard.erase(expected));
            }
        }
        if (step % 1'000 == 0) expectSame(map, standard);
    }
    expectSame(map, standard);
}

TEST(IdMap, IteratorsAndReferencesStayValidWhileEntriesAreAddedAndErased) {
    Map map{{"b", std::make_shared<int>(2)}, {"d", std::make_shared<int>(4)}};
    auto entry = map.find("b");
    const std::string& id = entry->first;
    for (int i = 0; i < 1'000; ++i)
        map["z" + std::to_string(i)] = nullptr;
    map["c"] = std::make_shared<int>(3);
    map["a"] = std::make_shared<int>(1);
    map.erase("d");
    EXPECT_EQ(id, "b");
    EXPECT_EQ(*entry->second, 2);
    EXPECT_EQ(*(++entry)->second, 3);
    EXPECT_EQ(*(--(--entry))->second, 1);
    EXPECT_EQ(entry, map.begin());
}

TEST(IdMap, ConvertsFromAndToTheStandardMap) {
    const Standard standard{{"b", std::make_shared<int>(1)}, {"a", nullptr}};
    const Map map = standard;
    EXPECT_EQ(map.begin()->first, "a");
    const Standard back = map;
    EXPECT_EQ(back, standard);
    EXPECT_EQ(Map(standard.begin(), standard.end()), map);
    Map copy = map;
    copy["c"] = nullptr;
    EXPECT_EQ(map.size(), 2U);
    EXPECT_FALSE(copy == map);
}

TEST(IdMap, AnAbsentIdIsOutOfRange) {
    Map map{{"a", std::make_shared<int>(1)}};
    EXPECT_EQ(*map.at("a"), 1);
    EXPECT_THROW((void)map.at("b"), std::out_of_range);
    EXPECT_EQ(map.size(), 1U);
}

}  // namespace
}  // namespace tessera_test
