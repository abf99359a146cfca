#include <utility>

#include "draw/placement.h"
#include "draw/placement/frame.h"
#include "draw/placement/hops.h"
#include "draw/placement/ordering.h"
#include "draw/placement/paths.h"
#include "draw/placement/watch.h"

namespace tessera_draw {
namespace {

using namespace placing;  // NOLINT(google-build-using-namespace): the steps of this one function

// From places in the containers to places in the drawing; containers stand before what is in them.
std::vector<Rect> inDrawing(const Nesting& nesting, const Frame& frame) {
    std::vector<Rect> boxes(frame.boxes.begin(), frame.boxes.end() - 1);
    for (const Index box : nesting.members) {
        const Index around = nesting.parent[box];
        if (around == nesting.drawing) continue;
        boxes[box].x += boxes[around].x;
        boxes[box].y += boxes[around].y;
    }
    return boxes;
}

}  // namespace

Placement place(const PlacementInput& input, const Spacing& spacing) {
    Watch watch(input.isStopped);
    const Nesting nesting = nestingOf(input.boxes);
    const std::vector<Hop> hops = hopsOf(input, nesting);
    Net net = netOf(input.boxes, nesting, hops, layersOf(input.boxes, nesting, hops));
    orderLayers(net, nesting, watch);
    const Frame frame = frameOf(input.boxes, nesting, net, spacing, watch);
    Placement placement;
    if (watch.isStopped()) return placement;
    placement.size = {frame.boxes.back().width, frame.boxes.back().height};
    placement.boxes = inDrawing(nesting, frame);
    placement.lines = pathsOf(input, nesting, hops, net, frame, placement.boxes, spacing);
    return placement;
}

}  // namespace tessera_draw
