// Random changes to property bags, compared with a simple tree that is changed in the same way.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "platform/basekit2/variant_bag.h"

namespace tessera_test {
namespace {

using basekit2::variant_bag_t;
using basekit2::variant_t;

// What a bag is meant to be.
struct Plain {
    std::vector<std::pair<std::string, variant_t>> values;
    std::vector<std::pair<std::string, std::unique_ptr<Plain>>> children;
    std::uint32_t line = 0;

    Plain() = default;
    Plain(const Plain& other) : values(other.values), line(other.line) {
        for (const auto& [name, child] : other.children)
            children.emplace_back(name, std::make_unique<Plain>(*child));
    }
    Plain(Plain&&) = default;
    Plain& operator=(Plain&&) = default;

    void put(const std::string& name, const variant_t& value) {
        const auto it = std::find_if(values.begin(), values.end(),
                                     [&](const auto& entry) { return entry.first == name; });
        if (it == values.end())
            values.emplace_back(name, value);
        else
            it->second = value;
    }
};

// "" when the two agree, otherwise what differs.
std::string difference(const variant_bag_t& bag, const Plain& plain) {
    if (bag.position().line != plain.line) return "position";
    if (bag.value_count() != plain.values.size()) return "number of values";
    auto value = bag.begin_values();
    for (const auto& [name, expected] : plain.values) {
        if (value.at_end() || value.get_name() != name || !(value.get_value() == expected))
            return "value " + name;
        if (bag.get(name) != &value.get_value()) return "look-up of value " + name;
        value.next();
    }
    auto child = bag.begin();
    for (const auto& [name, expected] : plain.children) {
        if (child.at_end() || child.get_name() != name) return "child " + name;
        if (std::string inside = difference(child.get_value(), *expected); !inside.empty())
            return name + ": " + inside;
        child.next();
    }
    return value.at_end() && child.at_end() ? "" : "something after the end";
}

class RandomTree {
  public:
    explicit RandomTree(unsigned seed) : m_random(seed) {}

    std::string difference() const { return tessera_test::difference(m_bag, m_plain); }

    void change() {
        const auto [bag, plain] = anyBag();
        switch (number(12)) {
            case 0:
            case 1:
            case 2:
            case 3: {
                const std::string name = anyName();
                const variant_t value = anyValue();
                bag->put(name, value);
                plain->put(name, value);
                return;
            }
            case 4:
            case 5:
            case 6: {
                const std::string name = anyName();
                bag->add_variant_bag(name);
                plain->children.emplace_back(name, std::make_unique<Plain>());
                return;
            }
            case 7:
                plain->line = static_cast<std::uint32_t>(number(1000));
                bag->set_position({plain->line, 1});
                return;
            case 8: {  // any part of the tree, also one that contains the other
                const auto [source, plainSource] = anyBag();
                if (bagsIn(m_plain) > 300) return;
                const variant_bag_t& from = *source;
                Plain copy(*plainSource);
                *bag = from;
                *plain = std::move(copy);
                return;
            }
            case 9: {  // a copy that replaces the tree
                variant_bag_t copy(*bag);
                Plain plainCopy(*plain);
                m_bag = std::move(copy);
                m_plain = std::move(plainCopy);
                return;
            }
            case 10: {
                variant_bag_t moved(std::move(m_bag));
                m_bag = std::move(moved);
                return;
            }
            default:
                if (bag != &m_bag || number(10) == 0) {
                    *bag = variant_bag_t();
                    *plain = Plain();
                }
                return;
        }
    }

  private:
    int number(int below) { return std::uniform_int_distribution(0, below - 1)(m_random); }
    std::string anyName() {
        return std::string(static_cast<std::size_t>(number(4)), 'n') + std::to_string(number(40));
    }
    variant_t anyValue() {
        switch (number(4)) {
            case 0:
                return variant_t(number(1000));
            case 1:
                return variant_t(number(2) == 0);
            case 2:
                return variant_t(std::string(static_cast<std::size_t>(number(30)), 't'));
            default:
                return variant_t(std::string(static_cast<std::size_t>(number(700)), 'l'));
        }
    }
    static std::size_t bagsIn(const Plain& plain) {
        std::size_t count = 1;
        for (const auto& [name, child] : plain.children)
            count += bagsIn(*child);
        return count;
    }
    // A bag of the tree, and what it is meant to be. A walk down that may end at each bag.
    std::pair<variant_bag_t*, Plain*> anyBag() {
        variant_bag_t* bag = &m_bag;
        Plain* plain = &m_plain;
        while (!plain->children.empty() && number(4) != 0) {
            const int place = number(static_cast<int>(plain->children.size()));
            auto child = bag->begin();
            for (int i = 0; i < place; ++i)
                child.next();
            bag = const_cast<variant_bag_t*>(&child.get_value());  // the tree is ours to change
            plain = plain->children[static_cast<std::size_t>(place)].second.get();
        }
        return {bag, plain};
    }

    std::mt19937 m_random;
    variant_bag_t m_bag;
    Plain m_plain;
};

TEST(VariantBagRandom, ChangesLeaveWhatThePlainTreeSays) {
    for (unsigned seed = 1; seed <= 150; ++seed) {
        RandomTree tree(seed);
        for (int i = 0; i < 300; ++i) {
            tree.change();
            ASSERT_EQ(tree.difference(), "") << "seed " << seed << ", change " << i;
        }
    }
}

// A copy is laid out for what it holds; then it must grow like any other.
TEST(VariantBagRandom, CopiesOfEverySizeCanGrow) {
    for (std::size_t size = 0; size < 6000; size += 37) {
        variant_bag_t bag;
        bag.put("odd", std::string(size % 7, 'o'));
        bag.put("text", std::string(size, 't'));
        bag.add_variant_bag("child").put("v", "1");
        variant_bag_t copy(bag);
        ASSERT_EQ(copy, bag);
        for (int i = 0; i < 20; ++i) {
            copy.put("more" + std::to_string(i), std::string(size % 50, 'm'));
            copy.add_variant_bag("child").put("v", variant_t(i));
        }
        ASSERT_EQ(copy.value_count(), 22U);
        ASSERT_EQ(copy.get("text")->get<std::string_view>(), std::string(size, 't'));
        ASSERT_EQ(copy.get("more19")->get<std::string_view>(), std::string(size % 50, 'm'));
    }
}

}  // namespace
}  // namespace tessera_test
