// Finds rectangles that overlap a given one.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "draw/geometry.h"

namespace tessera_test {

// A tree of rectangles packed in strips. Building it takes n log n time. For rectangles spread as in drawings, a
// search takes time in proportion to log n and to the number of results.
class RectIndex {
  public:
    struct Entry {
        tessera_draw::Rect rect;
        std::size_t number = 0;
    };

    explicit RectIndex(std::vector<Entry> entries) : m_entries(std::move(entries)) {
        const std::size_t leaves = (m_entries.size() + fanOut - 1) / fanOut;
        const auto strips = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(leaves))));
        const std::size_t perStrip = strips == 0 ? 1 : (leaves + strips - 1) / strips * fanOut;
        std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
            return a.rect.x + a.rect.right() < b.rect.x + b.rect.right();
        });
        for (std::size_t i = 0; i < m_entries.size(); i += perStrip)
            std::sort(at(i), at(std::min(i + perStrip, m_entries.size())),
                      [](const Entry& a, const Entry& b) {
                          return a.rect.y + a.rect.bottom() < b.rect.y + b.rect.bottom();
                      });
        std::vector<Bounds> bounds;
        for (const Entry& entry : m_entries)
            bounds.emplace_back().include(
                {entry.rect.x, entry.rect.y, entry.rect.right(), entry.rect.bottom()});
        while (bounds.size() > 1 || m_levels.empty()) {
            std::vector<Bounds> above((bounds.size() + fanOut - 1) / fanOut);
            for (std::size_t i = 0; i < bounds.size(); ++i)
                above[i / fanOut].include(bounds[i]);
            m_levels.push_back(above);
            bounds = std::move(above);
        }
    }

    // Calls `take` with the number of every rectangle that shares more than a border with `rect`.
    template <class Take>
    void search(const tessera_draw::Rect& rect, Take take) const {
        const Bounds wanted{rect.x, rect.y, rect.right(), rect.bottom()};
        struct Step {
            std::size_t level;
            std::size_t at;
        };
        std::vector<Step> open;
        if (!m_entries.empty()) open.push_back({m_levels.size(), 0});
        while (!open.empty()) {
            const auto [level, at] = open.back();
            open.pop_back();
            if (level == 0) {
                const Entry& entry = m_entries[at];
                const tessera_draw::Rect& r = entry.rect;
                if (wanted.meets({r.x, r.y, r.right(), r.bottom()})) take(entry.number);
                continue;
            }
            if (!wanted.meets(m_levels[level - 1][at])) continue;
            const std::size_t below = level == 1 ? m_entries.size() : m_levels[level - 2].size();
            for (std::size_t i = at * fanOut; i < std::min((at + 1) * fanOut, below); ++i)
                open.push_back({level - 1, i});
        }
    }

  private:
    static constexpr std::size_t fanOut = 8;

    struct Bounds {
        double left = std::numeric_limits<double>::infinity();
        double top = std::numeric_limits<double>::infinity();
        double right = -std::numeric_limits<double>::infinity();
        double bottom = -std::numeric_limits<double>::infinity();

        void include(const Bounds& other) {
            left = std::min(left, other.left);
            top = std::min(top, other.top);
            right = std::max(right, other.right);
            bottom = std::max(bottom, other.bottom);
        }
        [[nodiscard]] bool meets(const Bounds& other) const {
            return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
        }
    };

    std::vector<Entry>::iterator at(std::size_t i) {
        return m_entries.begin() + static_cast<std::ptrdiff_t>(i);
    }

    std::vector<Entry> m_entries;
    std::vector<std::vector<Bounds>> m_levels;  // the lowest first
};

}  // namespace tessera_test
