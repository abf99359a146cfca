#include "draw/scene.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "draw/box_sizes.h"
#include "draw/end_labels.h"
#include "draw/scene_boxes.h"
#include "draw/scene_builder.h"
#include "draw/scene_input.h"
#include "draw/scene_lines.h"

namespace tessera_draw {
namespace {

constexpr double margin = 28;
constexpr double contentTop = 72;
constexpr double headingLine = 40;
constexpr double chipHeight = 28;
constexpr double chipTop = 20;
constexpr double mostHeading = 640;
constexpr double leastHeading = 160;
constexpr double legendGap = 26;
constexpr double legendStep = 20;
constexpr double legendBetween = 20;
constexpr double mostLegendText = 180;
constexpr std::size_t mostLegendEntries = 24;
constexpr Size emptySize = {440, 132};

// Everything that one drawing is made from.
struct Drawing {
    const Diagram& diagram;
    const Threads& threads;
    const DisplayTypes types;
    const BoxKinds kinds;
    const std::vector<BoxRoom> rooms;
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
        drawHeader(drawing.builder, node, infoOf(drawing, at), drawing.rooms[at],
                   drawing.placement.boxes[drawing.boxes[at]], drawing.types.lookOf(node.displayType),
                   depth % 2 == 1);
    }
}

void describeLine(Drawing& drawing, const Thread& thread) {
    const auto& nodes = drawing.diagram.nodes;
    if (!thread.name.empty()) drawing.builder.tip(thread.name);
    drawing.builder.tip(captionOf(nodes[thread.from]), arrowText(thread.direction),
                        captionOf(nodes[thread.to]));
    if (thread.link == nothing) return;
    const Link& link = drawing.diagram.links[thread.link];
    for (const Info* info : {&link.fromInfo, &link.totalInfo, &link.toInfo})
        drawing.builder.tips(*info);
}

void drawLines(Drawing& drawing, const std::vector<Index>& threadOfLine) {
    const auto& nodes = drawing.diagram.nodes;
    for (std::size_t i = 0; i < threadOfLine.size(); ++i) {
        const Thread& thread = drawing.threads.threads[threadOfLine[i]];
        Element& element = drawing.builder.begin(Element::Kind::line, thread.id, threadOfLine[i]);
        element.from = nodes[thread.from].id;
        element.to = nodes[thread.to].id;
        drawing.builder.line(makeLine(std::move(drawing.placement.lines[i]), thread.direction));
        describeLine(drawing, thread);
        ++drawing.scene.lineCount;
    }
}

void drawCards(Drawing& drawing) {
    for (std::size_t i = 0; i < drawing.diagram.nodes.size(); ++i) {
        if (drawing.kinds.kinds[i] != BoxKind::card) continue;
        const Node& node = drawing.diagram.nodes[i];
        drawing.builder.begin(Element::Kind::node, node.id, static_cast<Index>(i)).type = node.displayType;
        drawCard(drawing.builder, node, drawing.rooms[i], drawing.placement.boxes[drawing.boxes[i]],
                 drawing.types.lookOf(node.displayType));
        ++drawing.scene.nodeCount;
    }
}

void drawLabels(Drawing& drawing) {
    std::vector<Index> threadOf(drawing.diagram.nodes.size(), nothing);
    const auto& threads = drawing.threads;
    for (std::size_t at = 0; at < threads.threads.size(); ++at)
        for (std::uint32_t i = 0; i < threads.threads[at].slotCount; ++i)
            threadOf[threads.slots[threads.threads[at].firstSlot + i].node] = static_cast<Index>(at);
    for (std::size_t i = 0; i < threadOf.size(); ++i) {
        if (drawing.kinds.kinds[i] != BoxKind::label) continue;
        const Node& node = drawing.diagram.nodes[i];
        Element& element = drawing.builder.begin(Element::Kind::label, node.id, static_cast<Index>(i));
        if (threadOf[i] != nothing) {
            const Thread& thread = threads.threads[threadOf[i]];
            element.link = thread.id;
            element.place = node.location;
            if (!thread.name.empty()) drawing.builder.tip(thread.name);
            if (thread.from != nothing && thread.to != nothing)
                drawing.builder.tip(captionOf(drawing.diagram.nodes[thread.from]),
                                    arrowText(thread.direction), captionOf(drawing.diagram.nodes[thread.to]));
        }
        drawLabel(drawing.builder, node, drawing.rooms[i], drawing.placement.boxes[drawing.boxes[i]]);
    }
}

// As wide as any of the usual modes needs it, so that a change of mode moves nothing.
double chipWidth() {
    const TextStyle& style = styleOf(TextRole::chip);
    return std::ceil(measureText("bandwidth", style.size, style.weight).width) + 28;
}

std::string_view titleOf(const Diagram& diagram) {
    return diagram.name.empty() ? diagram.id : diagram.name;
}

double headingWidth(const Diagram& diagram) {
    const TextStyle& style = styleOf(TextRole::heading);
    const double title = fitText(titleOf(diagram), mostHeading, style.size, style.weight).width;
    return std::max(title, leastHeading) + 24 + chipWidth();
}

void drawHeading(SceneBuilder& builder, const Diagram& diagram, double width) {
    builder.begin(Element::Kind::heading, {});
    const double chip = chipWidth();
    builder.text({margin, headingLine}, TextRole::heading, titleOf(diagram), width - 2 * margin - 24 - chip);
    if (!titleOf(diagram).empty()) builder.tip(titleOf(diagram));
    if (diagram.displayMode.empty()) return;
    const Rect rect{width - margin - chip, chipTop, chip, chipHeight};
    builder.box(rect, BoxRole::chip);
    builder.text({rect.x + chip / 2, rect.y + 18.5}, TextRole::chip, diagram.displayMode, chip - 16);
    builder.tip("display mode", ": ", diagram.displayMode);
}

// The display types and their signs, in as many lines as they need. Answers how high it came to be.
double drawLegend(SceneBuilder& builder, const DisplayTypes& types, double top, double width) {
    if (types.entries().empty()) return 0;
    builder.begin(Element::Kind::legend, {});
    double x = margin;
    double line = top + legendGap;
    const TextStyle& style = styleOf(TextRole::legend);
    const auto place = [&](double room) {
        if (x > margin && x + room > width - margin) {
            x = margin;
            line += legendStep;
        }
        x += room + legendBetween;
        return x - room - legendBetween;
    };
    const std::size_t all = types.entries().size();
    const std::size_t shown = all <= mostLegendEntries + 1 ? all : mostLegendEntries;
    for (std::size_t i = 0; i < shown; ++i) {
        const auto& [type, look] = types.entries()[i];
        const double text = fitText(type, mostLegendText, style.size, style.weight).width;
        const double at = place(markRoom + text);
        builder.mark({at + markSize / 2, line - 4}, look);
        builder.text({at + markRoom, line}, TextRole::legend, type, mostLegendText);
    }
    if (shown < all)
        builder.text({place(mostLegendText / 2), line}, TextRole::legend,
                     builder.own(fmt::format("+{} more", all - shown)), mostLegendText / 2);
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
    Threads threads = findThreads(diagram);
    moveEndLabels(diagram, threads);
    BoxKinds kinds = findKinds(diagram);
    std::vector<BoxRoom> rooms = reserveBoxes(diagram, threads, kinds, options.reservation);
    SceneInput input = makeInput(diagram, threads, kinds, rooms, options.direction);
    input.input.isStopped = options.isStopped;
    Placement placement = placeInput(input, options.direction);
    if (placement.boxes.size() != input.input.boxes.size()) return {};  // stopped
    shift(placement, margin, contentTop);

    Scene scene;
    scene.name = titleOf(diagram);
    scene.mode = diagram.displayMode;
    const Size content = input.input.boxes.empty() ? emptySize : placement.size;
    scene.size.width = std::max(content.width, headingWidth(diagram)) + 2 * margin;
    Drawing drawing{diagram,
                    threads,
                    DisplayTypes(diagram),
                    std::move(kinds),
                    std::move(rooms),
                    std::move(placement),
                    std::move(input.boxOfNode),
                    SceneBuilder(scene),
                    scene};
    drawHeading(drawing.builder, diagram, scene.size.width);
    if (input.input.boxes.empty())
        drawNothing(drawing.builder, {margin, contentTop, scene.size.width - 2 * margin, emptySize.height});
    const std::vector<Container> containers = containersOf(drawing);
    drawContainers(drawing, containers);
    drawLines(drawing, input.threadOfLine);
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
