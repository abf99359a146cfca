#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "draw/placement/container_geometry.h"
#include "draw/placement/divided_layers.h"
#include "draw/placement/kept_order.h"
#include "draw/placement/label_sliding.h"
#include "draw/placement/ordering.h"
#include "draw/placement/parts.h"
#include "draw/placement/paths.h"
#include "draw/placement/placement.h"
#include "draw/placement/route_segments.h"
#include "draw/placement/untwisting.h"

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

// Places containers in as few rows of layers as the shape allows.
ContainerGeometry foldedGeometry(const PlacementInput& input, const Nesting& nesting, LayeredGraph& graph,
                                 const Spacing& spacing, const Shape& shape, const CancelToken& cancel) {
    constexpr int mostRows = 8;
    constexpr double spare = 1.1;  // rows are seldom filled
    const auto inRows = [&](double width) {
        return containerGeometryOf(input.boxes, nesting, graph, spacing, width, cancel);
    };
    const auto isTooWide = [&](const ContainerGeometry& geometry) {
        const Rect& drawing = geometry.boxes.back();
        return drawing.width > shape.leastSize &&
               drawing.width + shape.around.width > shape.above * (drawing.height + shape.around.height);
    };
    ContainerGeometry geometry = inRows(std::numeric_limits<double>::infinity());
    const double width = geometry.boxes.back().width;
    for (int rows = 2; rows <= mostRows && !cancel.isCancelled() && isTooWide(geometry); ++rows)
        geometry = inRows(width / rows * spare);
    return geometry;
}

Placement placeBoxes(const PlacementInput& input, const Spacing& spacing, const Shape& shape,
                     const CancelToken& cancel) {
    Nesting nesting = nestingOf(input.boxes);
    EndLabels endLabels = endLabelsOf(input, nesting);
    const std::vector<RouteSegment> routeSegments = routeSegmentsOf(input, nesting, endLabels);
    removeFromMembers(endLabels, nesting);
    LayeredGraph graph = layeredGraphOf(input.boxes, nesting, routeSegments,
                                        layersOf(input.boxes, nesting, routeSegments), endLabels);
    if (input.kept.empty())
        orderLayers(graph, nesting, cancel);
    else
        orderAsKept(graph, nesting, routeSegments, input.kept);
    untwist(graph);
    // What is kept stays in its rows.
    const ContainerGeometry geometry =
        foldedGeometry(input, nesting, graph, spacing, input.kept.empty() ? shape : Shape{}, cancel);
    Placement placement;
    if (cancel.isCancelled()) return placement;
    placement.size = {geometry.boxes.back().width, geometry.boxes.back().height};
    placement.boxes = inDrawing(nesting, endLabels, geometry);
    if (input.wantsLayers) placement.layers = layersIn(graph, nesting, routeSegments, geometry);
    placement.lines = pathsOf(input, nesting, routeSegments, graph, geometry, placement.boxes, spacing);
    slideLabels(input, nesting, spacing, placement);
    return placement;
}

// Divides layers of drawings that are too high into as few as the shape allows.
Placement placeDivided(const PlacementInput& input, const Spacing& spacing, const Shape& shape,
                       const CancelToken& cancel) {
    constexpr int mostParts = 16;                          // lines pass through all of them
    const auto height = [&](const Placement& placement) {  // relative to what the shape allows
        return (placement.size.height + shape.around.height) * shape.below /
               (placement.size.width + shape.around.width);
    };
    Placement best = placeBoxes(input, spacing, shape, cancel);
    const Size size = best.size;
    if (size.height <= shape.leastSize || height(best) <= 1) return best;
    const std::vector<Rect> placed = best.boxes;
    // Each part adds about as much to the width as it takes from the height.
    const int fewest = std::clamp(static_cast<int>(std::sqrt(height(best))), 2, mostParts);
    for (int parts = fewest; parts <= mostParts && height(best) > 1; parts += (parts + 2) / 3) {
        const auto divided = withDividedLayers(input, placed, size.height / parts, spacing);
        if (!divided) continue;
        Placement next = placeBoxes(*divided, spacing, shape, cancel);
        if (cancel.isCancelled()) return {};
        if (height(next) < height(best)) best = std::move(next);
    }
    return best;
}

}  // namespace

Placement place(const PlacementInput& input, const Spacing& spacing, const Shape& shape,
                const CancelToken& cancel) {
    // Saved and kept layers are those of the input's own containers.
    if (!shape.changesLayers || input.wantsLayers || !input.kept.empty())
        return placeBoxes(input, spacing, shape, cancel);
    const std::optional<PlacementInput> parts = withParts(input);
    Placement placement = placeDivided(parts ? *parts : input, spacing, shape, cancel);
    placement.boxes.resize(std::min(placement.boxes.size(), input.boxes.size()));
    return placement;
}

}  // namespace tessera_draw
