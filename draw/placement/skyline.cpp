#include "draw/placement/skyline.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tessera_draw::placing {
namespace {

Reach largest(const Reach& a, const Reach& b) {
    return {std::max(a.box, b.box), std::max(a.label, b.label), std::max(a.bend, b.bend)};
}

}  // namespace

Skyline::Skyline(const Reach& start) {
    m_ranges.emplace(-std::numeric_limits<double>::infinity(), start);
}

Skyline::Ranges::const_iterator Skyline::at(double height) const {
    return std::prev(m_ranges.upper_bound(height));
}

Reach Skyline::over(double top, double bottom) const {
    auto range = at(top);
    Reach reach = range->second;
    for (++range; range != m_ranges.end() && range->first < bottom; ++range)
        reach = largest(reach, range->second);
    return reach;
}

void Skyline::raise(double top, double bottom, const Reach& reach) {
    if (!(top < bottom)) return;
    const Reach raised = largest(reach, over(top, bottom));
    const Reach below = at(bottom)->second;
    const auto begin = m_ranges.lower_bound(top);
    const auto end = m_ranges.lower_bound(bottom);
    const bool goesOn = end != m_ranges.end() && end->first == bottom;
    const auto after = m_ranges.erase(begin, end);
    m_ranges.emplace_hint(after, top, raised);
    if (!goesOn) m_ranges.emplace_hint(after, bottom, below);
}

}  // namespace tessera_draw::placing
