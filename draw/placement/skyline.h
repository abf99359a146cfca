// How far to the right something reaches at each height, while columns are placed from left to right.
#pragma once

#include <map>

namespace tessera_draw::placing {

// The least x at which something may begin, by its kind.
struct Reach {
    double box = 0;
    double label = 0;
    double bend = 0;
};

class Skyline {
  public:
    // At all heights.
    explicit Skyline(const Reach& start);

    // The largest between two heights.
    [[nodiscard]] Reach over(double top, double bottom) const;

    // Raises what is between the two heights to the same value: at least `reach`, and at least what over() returns. log n
    // time for each range of heights between that was raised before; all of them are one afterwards.
    void raise(double top, double bottom, const Reach& reach);

  private:
    using Ranges = std::map<double, Reach>;

    [[nodiscard]] Ranges::const_iterator at(double height) const;

    Ranges m_ranges;  // by where they begin
};

}  // namespace tessera_draw::placing
