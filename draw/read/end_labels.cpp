#include "draw/read/end_labels.h"

#include <utility>

#include "draw/read/splits.h"

namespace tessera_draw {
namespace {

// Exchanges the nodes; group and level stay with the stops.
void exchange(PathStop& a, PathStop& b) {
    std::swap(a.node, b.node);
}

}  // namespace

void moveEndLabels(const Diagram& diagram, LinkPaths& linkPaths) {
    auto& stops = linkPaths.stops;
    const auto nodeOf = [&](std::size_t stop) -> const Node& { return diagram.nodes[stops[stop].node]; };
    for (const LinkPath& path : linkPaths.paths) {
        const std::size_t begin = path.firstStop;
        const std::size_t end = begin + path.stopCount;
        for (std::size_t i = begin + 1; i < end && !isLabel(nodeOf(begin)); ++i)
            if (isLabel(nodeOf(i), "from")) exchange(stops[begin], stops[i]);
        for (std::size_t i = end; i-- > begin && !isLabel(nodeOf(end - 1));)
            if (isLabel(nodeOf(i), "to")) exchange(stops[i], stops[end - 1]);
    }
}

}  // namespace tessera_draw
