#include "draw/scene.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "draw/read/end_labels.h"
#include "draw/scene/box_sizes.h"
#include "draw/scene/scene_boxes.h"
#include "draw/scene/scene_builder.h"
#include "draw/scene/scene_input.h"
#include "draw/scene/scene_lines.h"

namespace tessera_draw {
namespace {

constexpr double margin = 28;
constexpr double contentTop = 72;
constexpr double headingLine = 40;
constexpr double badgeHeight = 28;
constexpr double badgeTop = 20;
constexpr double maxHeading = 640;
constexpr double minHeading = 160;
constexpr double legendGap = 26;
constexpr double legendStep = 20;
constexpr double legendBetween = 20;
constexpr double maxLegendText = 180;
constexpr std::size_t maxLegendEntries = 24;
constexpr Size emptySize = {440, 132};

// Everything that one drawing is made from.
struct Drawing {
    const Diagram& diagram;
    const LinkPaths& linkPaths;
    const DisplayTypes types;
    const BoxKinds kinds;
    const std::vector<BoxSize> sizes;
    Placement placement;
    std::vector<Index> boxes;  // by node: its box in the placement
    SceneBuilder builder;
    Scene& scene;
};

// The depth of every node, the outermost being 0; without recursion, at any depth.
std::vector<std::uint32_t> depthsOf(const Diagram& diagram) {
    constexpr std::uint32_t unknown = nothing;
    std::vector<std::uint32_t> depths(diagram.nodes.size(), unknown);
    std::vector<Index> path;
    for (std::size_t i = 0; i < depths.size(); ++i) {
        auto at = static_cast<Index>(i);
        for (; at != nothing && depths[at] == unknown; at = diagram.nodes[at].group)
            path.push_back(at);
        std::uint32_t depth = at == nothing ? 0 : depths[at] + 1;
        for (; !path.empty(); path.pop_back())
            depths[path.back()] = depth++;
    }
    return depths;
}

struct Container {
    Index node;
    std::uint32_t depth;
};

// Containers, the outer ones before what they contain.
std::vector<Container> containersOf(const Drawing& drawing) {
    const std::vector<std::uint32_t> depths = depthsOf(drawing.diagram);
    std::vector<Container> containers;
    for (std::size_t i = 0; i < depths.size(); ++i)
        if (drawing.kinds.kinds[i] == BoxKind::container)
            containers.push_back({static_cast<Index>(i), depths[i]});
    std::stable_sort(containers.begin(), containers.end(),
                     [](const Container& a, const Container& b) { return a.depth < b.depth; });
    return containers;
}

const Info& infoOf(const Drawing& drawing, Index container) {
    const Index infoNode = drawing.kinds.groupInfos[container];
    return drawing.diagram.nodes[infoNode == nothing ? container : infoNode].info;
}

void drawContainers(Drawing& drawing, const std::vector<Container>& containers) {
    for (const auto& [at, depth] : containers) {
        const Node& node = drawing.diagram.nodes[at];
        drawing.builder.begin(Element::Kind::group, node.id, at).type = node.displayType;
        drawContainer(drawing.builder, node, infoOf(drawing, at), drawing.placement.boxes[drawing.boxes[at]],
                      drawing.types.lookOf(node.displayType), depth % 2 == 1);
        ++drawing.scene.groupCount;
    }
}

void drawHeaders(Drawing& drawing, const std::vector<Container>& containers) {
    for (const auto& [at, depth] : containers) {
        const Node& node = drawing.diagram.nodes[at];
        drawing.builder.begin(Element::Kind::header, node.id, at);
        drawHeader(drawing.builder, node, infoOf(drawing, at), drawing.sizes[at],
                   drawing.placement.boxes[drawing.boxes[at]], drawing.types.lookOf(node.displayType),
                   depth % 2 == 1);
    }
}

void describeLine(Drawing& drawing, const LinkPath& path) {
    const auto& nodes = drawing.diagram.nodes;
    if (!path.name.empty()) drawing.builder.tooltip(path.name);
    drawing.builder.tooltip(captionOf(nodes[path.from]), arrowText(path.direction),
                            captionOf(nodes[path.to]));
    if (path.link == nothing) return;
    const Link& link = drawing.diagram.links[path.link];
    for (const Info* info : {&link.fromInfo, &link.totalInfo, &link.toInfo})
        drawing.builder.tooltips(*info);
}

void drawLines(Drawing& drawing, const std::vector<Index>& pathOfLine) {
    const auto& nodes = drawing.diagram.nodes;
    for (std::size_t i = 0; i < pathOfLine.size(); ++i) {
        const LinkPath& path = drawing.linkPaths.paths[pathOfLine[i]];
        Element& element = drawing.builder.begin(Element::Kind::line, path.id, pathOfLine[i]);
        element.from = nodes[path.from].id;
        element.to = nodes[path.to].id;
        drawing.builder.line(makeLine(std::move(drawing.placement.lines[i]), path.direction));
        describeLine(drawing, path);
        ++drawing.scene.lineCount;
    }
}

void drawCards(Drawing& drawing) {
    for (std::size_t i = 0; i < drawing.diagram.nodes.size(); ++i) {
        if (drawing.kinds.kinds[i] != BoxKind::card) continue;
        const Node& node = drawing.diagram.nodes[i];
        drawing.builder.begin(Element::Kind::node, node.id, static_cast<Index>(i)).type = node.displayType;
        drawCard(drawing.builder, node, drawing.sizes[i], drawing.placement.boxes[drawing.boxes[i]],
                 drawing.types.lookOf(node.displayType));
        ++drawing.scene.nodeCount;
    }
}

void drawLabels(Drawing& drawing) {
    std::vector<Index> pathOf(drawing.diagram.nodes.size(), nothing);
    const auto& linkPaths = drawing.linkPaths;
    for (std::size_t at = 0; at < linkPaths.paths.size(); ++at)
        for (std::uint32_t i = 0; i < linkPaths.paths[at].stopCount; ++i)
            pathOf[linkPaths.stops[linkPaths.paths[at].firstStop + i].node] = static_cast<Index>(at);
    for (std::size_t i = 0; i < pathOf.size(); ++i) {
        if (drawing.kinds.kinds[i] != BoxKind::label) continue;
        const Node& node = drawing.diagram.nodes[i];
        Element& element = drawing.builder.begin(Element::Kind::label, node.id, static_cast<Index>(i));
        if (pathOf[i] != nothing) {
            const LinkPath& path = linkPaths.paths[pathOf[i]];
            element.link = path.id;
            element.place = node.location;
            if (!path.name.empty()) drawing.builder.tooltip(path.name);
            if (path.from != nothing && path.to != nothing)
                drawing.builder.tooltip(captionOf(drawing.diagram.nodes[path.from]),
                                        arrowText(path.direction), captionOf(drawing.diagram.nodes[path.to]));
        }
        drawLabel(drawing.builder, node, drawing.sizes[i], drawing.placement.boxes[drawing.boxes[i]]);
    }
}

// As wide as any of the usual modes needs it, so that a change of mode moves nothing.
double badgeWidth() {
    const TextStyle& style = styleOf(TextRole::badge);
    return std::ceil(measureText("bandwidth", style.size, style.weight).width) + 28;
}

std::string_view titleOf(const Diagram& diagram) {
    return diagram.name.empty() ? diagram.id : diagram.name;
}

double headingWidth(const Diagram& diagram) {
    const TextStyle& style = styleOf(TextRole::heading);
    const double title = fitText(titleOf(diagram), maxHeading, style.size, style.weight).width;
    return std::max(title, minHeading) + 24 + badgeWidth();
}

void drawHeading(SceneBuilder& builder, const Diagram& diagram, double width) {
    builder.begin(Element::Kind::heading, {});
    const double badge = badgeWidth();
    builder.text({margin, headingLine}, TextRole::heading, titleOf(diagram), width - 2 * margin - 24 - badge);
    if (!titleOf(diagram).empty()) builder.tooltip(titleOf(diagram));
    if (diagram.displayMode.empty()) return;
    const Rect rect{width - margin - badge, badgeTop, badge, badgeHeight};
    builder.box(rect, BoxRole::badge);
    builder.text({rect.x + badge / 2, rect.y + 18.5}, TextRole::badge, diagram.displayMode, badge - 16);
    builder.tooltip("display mode", ": ", diagram.displayMode);
}

// The display types and their signs, in as many lines as they need. Returns how high it came to be.
double drawLegend(SceneBuilder& builder, const DisplayTypes& types, double top, double width) {
    if (types.entries().empty()) return 0;
    builder.begin(Element::Kind::legend, {});
    double x = margin;
    double line = top + legendGap;
    const TextStyle& style = styleOf(TextRole::legend);
    const auto place = [&](double itemWidth) {
        if (x > margin && x + itemWidth > width - margin) {
            x = margin;
            line += legendStep;
        }
        x += itemWidth + legendBetween;
        return x - itemWidth - legendBetween;
    };
    const std::size_t all = types.entries().size();
    const std::size_t shown = all <= maxLegendEntries + 1 ? all : maxLegendEntries;
    for (std::size_t i = 0; i < shown; ++i) {
        const auto& [type, look] = types.entries()[i];
        const double text = fitText(type, maxLegendText, style.size, style.weight).width;
        const double at = place(symbolSpace + text);
        builder.symbol({at + symbolSize / 2, line - 4}, look);
        builder.text({at + symbolSpace, line}, TextRole::legend, type, maxLegendText);
    }
    if (shown < all)
        builder.text({place(maxLegendText / 2), line}, TextRole::legend,
                     builder.own(fmt::format("+{} more", all - shown)), maxLegendText / 2);
    return line + 4 - top;
}

void drawNothing(SceneBuilder& builder, const Rect& rect) {
    builder.begin(Element::Kind::note, {});
    builder.box(rect, BoxRole::note);
    const double middle = rect.x + rect.width / 2;
    builder.text({middle, rect.y + rect.height / 2 - 4}, TextRole::noteTitle, "Nothing to show yet",
                 rect.width);
    builder.text({middle, rect.y + rect.height / 2 + 20}, TextRole::note, "This diagram has no nodes.",
                 rect.width);
}

void shift(Placement& placement, double dx, double dy) {
    const auto move = [&](Point& point) { point = {point.x + dx, point.y + dy}; };
    for (Rect& rect : placement.boxes) {
        rect.x += dx;
        rect.y += dy;
    }
    for (PlacedLine& line : placement.lines) {
        for (auto& stretch : line.stretches) {
            move(stretch.start);
            for (Segment& segment : stretch.segments) {
                move(segment.control1);
                move(segment.control2);
                move(segment.end);
            }
        }
    }
}

}  // namespace

Scene makeScene(const basekit2::variant_bag_t& bag, const SceneOptions& options) {
    const Diagram diagram = readDiagram(bag);
    LinkPaths linkPaths = findLinkPaths(diagram);
    moveEndLabels(diagram, linkPaths);
    BoxKinds kinds = findKinds(diagram);
    std::vector<BoxSize> sizes = boxSizesOf(diagram, linkPaths, kinds, options.reservation);
    SceneInput input = makeInput(diagram, linkPaths, kinds, sizes, options.direction);
    Placement placement = placeInput(input, options.direction, options.cancel);
    if (placement.boxes.size() != input.input.boxes.size()) return {};  // stopped
    shift(placement, margin, contentTop);

    Scene scene;
    scene.name = titleOf(diagram);
    scene.mode = diagram.displayMode;
    const Size content = input.input.boxes.empty() ? emptySize : placement.size;
    scene.size.width = std::max(content.width, headingWidth(diagram)) + 2 * margin;
    Drawing drawing{diagram,
                    linkPaths,
                    DisplayTypes(diagram),
                    std::move(kinds),
                    std::move(sizes),
                    std::move(placement),
                    std::move(input.boxOfNode),
                    SceneBuilder(scene),
                    scene};
    drawHeading(drawing.builder, diagram, scene.size.width);
    if (input.input.boxes.empty())
        drawNothing(drawing.builder, {margin, contentTop, scene.size.width - 2 * margin, emptySize.height});
    const std::vector<Container> containers = containersOf(drawing);
    drawContainers(drawing, containers);
    drawLines(drawing, input.pathOfLine);
    drawHeaders(drawing, containers);
    drawCards(drawing);
    drawLabels(drawing);
    const double bottom = contentTop + content.height;
    scene.size.height =
        bottom + drawLegend(drawing.builder, drawing.types, bottom, scene.size.width) + margin;
    drawing.builder.end();
    return scene;
}

}  // namespace tessera_draw
