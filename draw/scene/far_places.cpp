#include <cmath>
#include <vector>

#include "draw/saved_layout.h"

namespace tessera_draw {

std::size_t removeFarPlaces(SavedLayout& layout) {
    // Pixels across the layers. A box of the largest size needs less, with its distance from the next one and the title of
    // its group. What was removed from the diagram may leave space.
    constexpr double perPoint = 1000;
    constexpr double ofRemoved = 20'000;
    std::size_t points = 0;
    for (const SavedGroup& group : layout.groups)
        for (const SavedLayer& layer : group.layers)
            points += layer.points.size();
    const double farthest = ofRemoved + perPoint * static_cast<double>(points);
    const auto isFar = [&](double length) { return !(std::abs(length) <= farthest); };

    std::size_t removed =
        std::erase_if(layout.groups, [&](const SavedGroup& group) { return isFar(group.at); });
    for (SavedGroup& group : layout.groups)
        for (SavedLayer& layer : group.layers)
            removed += std::erase_if(
                layer.points, [&](const SavedPoint& point) { return isFar(point.at) || isFar(point.size); });
    return removed;
}

}  // namespace tessera_draw
