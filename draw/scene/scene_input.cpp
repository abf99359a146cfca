#include "draw/scene/scene_input.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "draw/placement/kept_levels.h"
#include "draw/placement/link_layers.h"
#include "draw/scene/display_types.h"
#include "draw/scene/kept_input.h"
#include "draw/scene/layout_data.h"

namespace tessera_draw {
namespace {

using Along = BoxToPlace::Along;
using Border = BoxToPlace::Border;

// Where a box stands in a column that is wider: towards the end of its link that a label belongs to.
Along alongOf(std::string_view aligning) {
    if (aligning == "from") return Along::start;
    return aligning == "to" ? Along::end : Along::middle;
}

Along opposite(Along along) {
    if (along == Along::middle) return along;
    return along == Along::start ? Along::end : Along::start;
}

// The placement supports layers along x only; for the other direction x and y are exchanged.
void turn(BoxToPlace& box) {
    std::swap(box.size.width, box.size.height);
    std::swap(box.padding.left, box.padding.top);
    std::swap(box.padding.right, box.padding.bottom);
    std::swap(box.header.width, box.header.height);
}

void turn(Point& point) {
    std::swap(point.x, point.y);
}

void turn(Placement& placement) {
    std::swap(placement.size.width, placement.size.height);
    for (Rect& rect : placement.boxes) {
        std::swap(rect.x, rect.y);
        std::swap(rect.width, rect.height);
    }
    for (PlacedLine& line : placement.lines) {
        for (auto& stretch : line.stretches) {
            turn(stretch.start);
            for (Segment& segment : stretch.segments) {
                turn(segment.control1);
                turn(segment.control2);
                turn(segment.end);
            }
        }
    }
}

// First and last layer that the members of each group have, by the group; the last entry is the top level.
struct Layers {
    std::int32_t first = -1;
    std::int32_t last = -1;
};

std::vector<Layers> layersOf(const Diagram& diagram, const BoxKinds& kinds) {
    std::vector<Layers> layers(diagram.nodes.size() + 1);
    for (std::size_t i = 0; i < diagram.nodes.size(); ++i) {
        const Node& node = diagram.nodes[i];
        if (node.level < 0 || kinds.kinds[i] == BoxKind::none) continue;
        Layers& group = layers[node.group == nothing ? diagram.nodes.size() : node.group];
        group.first = group.first < 0 ? node.level : std::min(group.first, node.level);
        group.last = std::max(group.last, node.level);
    }
    return layers;
}

// Interfaces are on the border of their group, on the side that their layer is at.
Border borderOf(const Node& node, const std::vector<Layers>& layers) {
    if (!ruleOf(node.displayType).isAtBorder || node.group == nothing || node.level < 0) return Border::none;
    if (node.level == layers[node.group].last) return Border::end;
    return node.level == layers[node.group].first ? Border::start : Border::none;
}

// Whether a line leads to an earlier layer of the group that contains both its ends.
bool runsBack(const PlacementInput& input, const LineToPlace& line) {
    const BoxToPlace& from = input.boxes[line.from];
    const BoxToPlace& to = input.boxes[line.to];
    return from.group == to.group && from.level > to.level;
}

BoxToPlace::LabelEnd labelEndOf(const Node& label) {
    using LabelEnd = BoxToPlace::LabelEnd;
    if (label.location == "from") return LabelEnd::from;
    if (label.location == "center") return LabelEnd::center;
    return label.location == "to" ? LabelEnd::to : LabelEnd::none;
}

// The box that a line to `node` ends at. A group's values are in its header, so
// lines to them end at the group.
Index boxFor(const Diagram& diagram, const std::vector<Index>& boxOfNode, Index node) {
    if (node == nothing) return nothing;
    if (boxOfNode[node] != nothing || diagram.nodes[node].type != "groupInfo") return boxOfNode[node];
    return diagram.nodes[node].group == nothing ? nothing : boxOfNode[diagram.nodes[node].group];
}

void addLine(const Diagram& diagram, const LinkPaths& linkPaths, const BoxKinds& kinds, Index at,
             SceneInput& result) {
    const LinkPath& path = linkPaths.paths[at];
    LineToPlace line{
        boxFor(diagram, result.boxOfNode, path.from), boxFor(diagram, result.boxOfNode, path.to), {}};
    if (line.from == nothing || line.to == nothing) return;
    for (std::uint32_t i = 0; i < path.stopCount; ++i) {
        const PathStop& stop = linkPaths.stops[path.firstStop + i];
        if (stop.node == nothing || kinds.kinds[stop.node] != BoxKind::label) continue;
        BoxToPlace& box = result.input.boxes[result.boxOfNode[stop.node]];
        // A label belongs to the first line that passes through it.
        if (box.isLabel) continue;
        box.isLabel = true;
        box.group = stop.group == nothing ? nothing : result.boxOfNode[stop.group];
        box.level = stop.level;
        box.labelEnd = labelEndOf(diagram.nodes[stop.node]);
        line.through.push_back(result.boxOfNode[stop.node]);
    }
    result.input.lines.push_back(std::move(line));
    result.pathOfLine.push_back(at);
}

// Labels stand towards the end of their line that they belong to, whichever way it runs.
void turnLabelsOfLinesBack(PlacementInput& input) {
    for (const LineToPlace& line : input.lines)
        for (const Index label : line.through)
            if (runsBack(input, line)) input.boxes[label].along = opposite(input.boxes[label].along);
}

// Makes cards of one layer as wide as the widest of them, so that their texts are in columns.
void evenOut(PlacementInput& input, const std::vector<char>& isCard) {
    // By group and level: each group has layers of its own.
    std::map<std::pair<Index, std::int32_t>, double> widest;
    const auto visit = [&](auto change) {
        for (std::size_t i = 0; i < input.boxes.size(); ++i)
            if (isCard[i] != 0 && input.boxes[i].level >= 0)
                change(input.boxes[i].size.width, widest[{input.boxes[i].group, input.boxes[i].level}]);
    };
    visit([](double width, double& most) { most = std::max(most, width); });
    visit([](double& width, double most) { width = most; });
}

}  // namespace

SceneInput makeInput(const Diagram& diagram, const LinkPaths& linkPaths, const BoxKinds& kinds,
                     const std::vector<BoxSize>& sizes, const LayoutOptions& options) {
    SceneInput result;
    result.boxOfNode.assign(diagram.nodes.size(), nothing);
    Index next = 0;
    for (std::size_t i = 0; i < diagram.nodes.size(); ++i)
        // Numbered before boxes are made, because a node's group may follow it.
        if (kinds.kinds[i] != BoxKind::none) result.boxOfNode[i] = next++;
    result.input.boxes.reserve(next);
    std::vector<char> isCard(next, 0);
    const std::vector<Layers> layers = layersOf(diagram, kinds);
    for (std::size_t i = 0; i < diagram.nodes.size(); ++i) {
        if (kinds.kinds[i] == BoxKind::none) continue;
        const Node& node = diagram.nodes[i];
        BoxToPlace& box = result.input.boxes.emplace_back();
        box.group = node.group == nothing ? nothing : result.boxOfNode[node.group];
        box.level = node.level;
        box.size = sizes[i].size;
        box.isContainer = kinds.kinds[i] == BoxKind::container;
        box.padding = sizes[i].padding;
        box.header = sizes[i].header;
        box.along = alongOf(node.aligning);
        if (kinds.kinds[i] == BoxKind::card) box.border = borderOf(node, layers);
        isCard[result.boxOfNode[i]] = kinds.kinds[i] == BoxKind::card ? 1 : 0;
    }
    for (std::size_t i = 0; i < linkPaths.paths.size(); ++i)
        addLine(diagram, linkPaths, kinds, static_cast<Index>(i), result);
    if (options.layers == LayerSource::links) layerByLines(result.input);
    result.input.wantsLayers = options.isSaved;
    evenOut(result.input, isCard);
    if (options.kept != nullptr) {
        // After the widths, which are as they would be anew.
        result.input.kept = keptLayersOf(*options.kept, diagram, linkPaths, result);
        keepLevels(result.input);
    }
    turnLabelsOfLinesBack(result.input);
    if (options.direction == Direction::topToBottom)
        for (BoxToPlace& box : result.input.boxes)
            turn(box);
    return result;
}

Placement placeInput(const SceneInput& input, const LayoutOptions& options) {
    const bool isDown = options.direction == Direction::topToBottom;
    Shape shape;
    if (options.isFolded && input.input.boxes.size() <= mostFolded) {
        shape.above = isDown ? highestShape : widestShape;
        shape.below = 1 / (isDown ? widestShape : highestShape);
    }
    shape.leastSize = fitsAnywhere;
    shape.changesLayers = options.layers == LayerSource::links;
    shape.around = {2 * sceneMargin, contentTop + sceneMargin};
    if (isDown) std::swap(shape.around.width, shape.around.height);
    Placement placement = place(input.input, Spacing{}, shape, options.cancel);
    if (isDown) turn(placement);
    return placement;
}

}  // namespace tessera_draw
