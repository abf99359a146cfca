#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include "draw/placement/skyline.h"

namespace tessera_draw::placing {
namespace {

bool areEqual(const Reach& a, const Reach& b) {
    return a.box == b.box && a.label == b.label && a.bend == b.bend;
}

// The same with a value for each whole height.
class PlainSkyline {
  public:
    explicit PlainSkyline(const Reach& start) { m_reach.fill(start); }

    [[nodiscard]] Reach over(std::size_t top, std::size_t bottom) const {
        Reach all = m_reach.at(top);
        for (std::size_t i = top; i < bottom; ++i)
            all = {std::max(all.box, m_reach[i].box), std::max(all.label, m_reach[i].label),
                   std::max(all.bend, m_reach[i].bend)};
        return all;
    }
    void raise(std::size_t top, std::size_t bottom, const Reach& reach) {
        const Reach old = over(top, bottom);
        for (std::size_t i = top; i < bottom; ++i)
            m_reach[i] = {std::max(old.box, reach.box), std::max(old.label, reach.label),
                          std::max(old.bend, reach.bend)};
    }

  private:
    std::array<Reach, 101> m_reach;
};

TEST(DrawSkyline, IsTheSameAsOneWithAValueForEachHeight) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t count) { return random() % count; };
    for (int round = 0; round < 50; ++round) {
        const Reach start{static_cast<double>(below(5)), static_cast<double>(below(5)), 0};
        Skyline skyline(start);
        PlainSkyline plain(start);
        for (int step = 0; step < 60; ++step) {
            const std::size_t top = below(100);
            const std::size_t bottom = top + below(101 - top);
            const auto y = [](std::size_t height) { return static_cast<double>(height); };
            ASSERT_TRUE(areEqual(skyline.over(y(top), y(bottom)), plain.over(top, bottom)));
            const Reach reach{static_cast<double>(below(90)), static_cast<double>(below(90)),
                              static_cast<double>(below(90))};
            skyline.raise(y(top), y(bottom), reach);
            plain.raise(top, bottom, reach);
        }
    }
}

}  // namespace
}  // namespace tessera_draw::placing
