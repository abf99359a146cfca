#include "draw/placement/isolated_grids.h"

#include <algorithm>
#include <cmath>

namespace tessera_draw::placing {
namespace {

constexpr Index fewest = 8;  // fewer look better as one column

// In rows, each as high as its highest box, up to about the width of a square and never narrower than the widest box.
Size arrangeRows(const std::vector<Index>& members, double between, double square, std::vector<Rect>& rects) {
    double widest = square;
    for (const Index box : members)
        widest = std::max(widest, rects[box].width);
    Size size;
    double x = 0;
    double y = 0;
    for (const Index box : members) {
        Rect& rect = rects[box];
        if (x > 0 && x + rect.width > widest) {
            x = 0;
            y = size.height + between;
        }
        rect.x = x;
        rect.y = y;
        x += rect.width + between;
        size.width = std::max(size.width, rect.x + rect.width);
        size.height = std::max(size.height, rect.y + rect.height);
    }
    return size;
}

}  // namespace

IsolatedGrids isolatedGridsOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                              const std::vector<char>& isTouched, const std::vector<Index>& layer,
                              Index layerCount) {
    const auto mayJoinGrid = [&](Index box) {
        return isTouched[box] == 0 && boxes[box].border == BoxToPlace::Border::none;
    };
    std::vector<Index> count(layerCount, 0);
    std::vector<char> hasParts(layerCount, 0);
    for (Index box = 0; box < boxes.size(); ++box) {
        if (!mayJoinGrid(box)) continue;
        ++count[layer[box]];
        if (boxes[box].isPart) hasParts[layer[box]] = 1;
    }
    // The members of a grid take one range, as the numbers of boxes are known.
    IsolatedGrids result;
    result.ofBox.assign(boxes.size(), nothing);
    std::vector<Index> gridOf(layerCount, nothing);
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        result.firstInContainer.push_back(static_cast<Index>(result.grids.size()));
        for (Index i = nesting.memberBegin[container]; i < nesting.memberBegin[container + 1]; ++i) {
            const Index box = nesting.members[i];
            if (!mayJoinGrid(box) || (count[layer[box]] < fewest && hasParts[layer[box]] == 0)) continue;
            Index& grid = gridOf[layer[box]];
            if (grid == nothing) {
                grid = static_cast<Index>(result.grids.size());
                const auto begin = static_cast<Index>(result.members.size());
                result.grids.push_back({begin, begin});
                result.members.resize(begin + count[layer[box]]);
            }
            result.ofBox[box] = grid;
            result.members[result.grids[grid].end++] = box;
        }
    }
    result.firstInContainer.push_back(static_cast<Index>(result.grids.size()));
    return result;
}

Size arrange(const IsolatedGrids& grids, const IsolatedGrid& grid, const std::vector<BoxToPlace>& boxes,
             const Spacing& spacing, std::vector<Rect>& rects) {
    const double between = spacing.betweenBoxes;
    double area = 0;
    for (Index i = grid.begin; i < grid.end; ++i) {
        const Rect& rect = rects[grids.members[i]];
        area += (rect.width + between) * (rect.height + between);
    }
    const double wanted = std::sqrt(area);  // the height of a square of that area
    std::vector<Index> members(grids.members.begin() + grid.begin, grids.members.begin() + grid.end);
    const auto singles =
        std::stable_partition(members.begin(), members.end(), [&](Index box) { return boxes[box].isPart; });
    if (singles != members.begin()) return arrangeRows(members, spacing.betweenLayers, wanted, rects);
    Size size;
    for (Index i = grid.begin; i < grid.end;) {
        const Index first = i;
        double width = 0;
        double y = 0;
        for (; i < grid.end; ++i) {
            Rect& rect = rects[grids.members[i]];
            if (i > first && y + rect.height > wanted) break;
            rect.y = y;
            y += rect.height + between;
            width = std::max(width, rect.width);
        }
        if (first > grid.begin) size.width += between;
        for (Index k = first; k < i; ++k) {
            Rect& rect = rects[grids.members[k]];
            rect.x = size.width + (width - rect.width) * shareBefore(boxes[grids.members[k]]);
        }
        size.width += width;
        size.height = std::max(size.height, y - between);
    }
    return size;
}

double shareBefore(const BoxToPlace& box) noexcept {
    if (box.border != BoxToPlace::Border::none) return box.border == BoxToPlace::Border::start ? 0 : 1;
    if (box.along == BoxToPlace::Along::middle) return 0.5;
    return box.along == BoxToPlace::Along::start ? 0 : 1;
}

}  // namespace tessera_draw::placing
