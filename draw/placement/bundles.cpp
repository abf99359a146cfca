#include "draw/placement/bundles.h"

#include <algorithm>
#include <cmath>

namespace tessera_draw::placing {
namespace {

constexpr Index fewest = 8;  // fewer look better as one column

}  // namespace

Bundles bundlesOf(const std::vector<BoxToPlace>& boxes, const Nesting& nesting,
                  const std::vector<char>& isTouched, const std::vector<Index>& layer, Index layerCount) {
    const auto mayBeBundled = [&](Index box) {
        return isTouched[box] == 0 && boxes[box].border == BoxToPlace::Border::none;
    };
    std::vector<Index> count(layerCount, 0);
    for (Index box = 0; box < boxes.size(); ++box)
        if (mayBeBundled(box)) ++count[layer[box]];
    Bundles answer;
    answer.ofBox.assign(boxes.size(), nothing);
    std::vector<Index> bundleOf(layerCount, nothing);
    for (Index container = 0; container < nesting.containerCount(); ++container) {
        answer.firstInContainer.push_back(static_cast<Index>(answer.bundles.size()));
        for (Index i = nesting.memberBegin[container]; i < nesting.memberBegin[container + 1]; ++i) {
            const Index box = nesting.members[i];
            if (!mayBeBundled(box) || count[layer[box]] < fewest) continue;
            Index& bundle = bundleOf[layer[box]];
            if (bundle == nothing) {
                bundle = static_cast<Index>(answer.bundles.size());
                const auto begin = static_cast<Index>(answer.members.size());
                answer.bundles.push_back({begin, begin});
                answer.members.resize(begin + count[layer[box]]);
            }
            answer.ofBox[box] = bundle;
            answer.members[answer.bundles[bundle].end++] = box;
        }
    }
    answer.firstInContainer.push_back(static_cast<Index>(answer.bundles.size()));
    return answer;
}

Size arrange(const Bundles& bundles, const Bundle& bundle, const std::vector<BoxToPlace>& boxes,
             const Spacing& spacing, std::vector<Rect>& rects) {
    const double between = spacing.betweenBoxes;
    double area = 0;
    for (Index i = bundle.begin; i < bundle.end; ++i) {
        const Rect& rect = rects[bundles.members[i]];
        area += (rect.width + between) * (rect.height + between);
    }
    const double wanted = std::sqrt(area);
    Size size;
    for (Index i = bundle.begin; i < bundle.end;) {
        const Index first = i;
        double width = 0;
        double y = 0;
        for (; i < bundle.end; ++i) {
            Rect& rect = rects[bundles.members[i]];
            if (i > first && y + rect.height > wanted) break;
            rect.y = y;
            y += rect.height + between;
            width = std::max(width, rect.width);
        }
        if (first > bundle.begin) size.width += between;
        for (Index k = first; k < i; ++k) {
            Rect& rect = rects[bundles.members[k]];
            rect.x = size.width + (width - rect.width) * shareBefore(boxes[bundles.members[k]]);
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
