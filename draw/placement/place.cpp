#include <algorithm>
#include <utility>

#include "draw/placement/container_geometry.h"
#include "draw/placement/ordering.h"
#include "draw/placement/paths.h"
#include "draw/placement/placement.h"
#include "draw/placement/route_segments.h"

namespace tessera_draw {
namespace {

using namespace placing;  // NOLINT(google-build-using-namespace): the steps of this one function

// Converts positions in containers to positions in the drawing. Members are listed after their containers.
std::vector<Rect> inDrawing(const Nesting& nesting, const EndLabels& endLabels,
                            const ContainerGeometry& geometry) {
    std::vector<Rect> boxes(geometry.boxes.begin(), geometry.boxes.end() - 1);
    const auto move = [&](Index box) {
        const Index around = nesting.tree.parent(box);
        if (around == nesting.drawing) return;
        boxes[box].x += boxes[around].x;
        boxes[box].y += boxes[around].y;
    };
    std::for_each(nesting.members.begin(), nesting.members.end(), move);
    for (Index box = 0; box < boxes.size(); ++box)
        if (endLabels.isOne[box] != 0) move(box);
    return boxes;
}

}  // namespace

Placement place(const PlacementInput& input, const Spacing& spacing, const CancelToken& cancel) {
    Nesting nesting = nestingOf(input.boxes);
    EndLabels endLabels = endLabelsOf(input, nesting);
    const std::vector<RouteSegment> routeSegments = routeSegmentsOf(input, nesting, endLabels);
    removeFromMembers(endLabels, nesting);
    LayeredGraph graph = layeredGraphOf(input.boxes, nesting, routeSegments,
                                        layersOf(input.boxes, nesting, routeSegments), endLabels);
    orderLayers(graph, nesting, cancel);
    const ContainerGeometry geometry = containerGeometryOf(input.boxes, nesting, graph, spacing, cancel);
    Placement placement;
    if (cancel.isCancelled()) return placement;
    placement.size = {geometry.boxes.back().width, geometry.boxes.back().height};
    placement.boxes = inDrawing(nesting, endLabels, geometry);
    placement.lines = pathsOf(input, nesting, routeSegments, graph, geometry, placement.boxes, spacing);
    return placement;
}

}  // namespace tessera_draw
