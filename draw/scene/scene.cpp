#include "draw/scene.h"

#include <algorithm>
#include <string>
#include <utility>

#include "draw/scene/changes.h"
#include "draw/scene/heading.h"
#include "draw/scene/layout_data.h"
#include "draw/scene/level_badge.h"
#include "draw/scene/scene_boxes.h"
#include "draw/scene/scene_builder.h"
#include "draw/scene/scene_lines.h"

namespace tessera_draw {
namespace {

// The inputs of one scene, and the builder that it is made with.
struct Drawing {
    const LayoutData& data;
    const Values values;
    SceneBuilder builder;
    Scene& scene;
    const BadgePlaces places{data, !values.meaning.levels.empty()};
};

// A group's values are on its "groupInfo" node where it has one.
const Info& infoOf(const Drawing& drawing, Index container) {
    const Index infoNode = drawing.data.kinds.groupInfos[container];
    return drawing.values.nodes[infoNode == nothing ? container : infoNode];
}

// Outer containers first: inner ones are drawn on them.
void drawContainers(Drawing& drawing) {
    for (const auto& [at, depth] : drawing.data.containers) {
        const Node& node = drawing.data.structure.nodes[at];
        drawing.builder.begin(Element::Kind::group, node.id, at).type = node.displayType;
        drawContainer(drawing.builder, node, infoOf(drawing, at), drawing.data.boxes[at],
                      drawing.data.types.lookOf(node.displayType), depth % 2 == 1);
        ++drawing.scene.groupCount;
    }
}

// After the lines, so that titles stay readable where lines pass.
void drawHeaders(Drawing& drawing) {
    for (const auto& [at, depth] : drawing.data.containers) {
        const Node& node = drawing.data.structure.nodes[at];
        drawing.builder.begin(Element::Kind::header, node.id, at);
        drawHeader(drawing.builder, node, infoOf(drawing, at), drawing.data.sizes[at], drawing.data.boxes[at],
                   drawing.data.types.lookOf(node.displayType), depth % 2 == 1, at, drawing.places);
    }
}

// Tooltips and rows of a line: its values are shown by labels, or by the tooltip alone.
void describeLine(Drawing& drawing, const LinkPath& path) {
    const auto& nodes = drawing.data.structure.nodes;
    if (!path.name.empty()) drawing.builder.tooltip(path.name);
    drawing.builder.tooltip(captionOf(nodes[path.from]), arrowText(path.direction),
                            captionOf(nodes[path.to]));
    if (path.link == nothing) return;
    const LinkValues& link = drawing.values.links[path.link];
    drawing.builder.tooltips(link.from);
    drawing.builder.tooltips(link.total);
    drawing.builder.tooltips(link.to);
    drawing.builder.rows(link.from, "from");
    drawing.builder.rows(link.total, "total");
    drawing.builder.rows(link.to, "to");
}

void drawLines(Drawing& drawing) {
    const auto& pathOfLine = drawing.data.pathOfLine;
    const auto& nodes = drawing.data.structure.nodes;
    for (std::size_t i = 0; i < pathOfLine.size(); ++i) {
        const LinkPath& path = drawing.data.linkPaths.paths[pathOfLine[i]];
        Element& element = drawing.builder.begin(Element::Kind::line, path.id, pathOfLine[i]);
        element.from = nodes[path.from].id;
        element.to = nodes[path.to].id;
        drawing.builder.line(static_cast<std::uint32_t>(i));
        describeLine(drawing, path);
        ++drawing.scene.lineCount;
    }
}

void drawCards(Drawing& drawing) {
    for (std::size_t i = 0; i < drawing.data.structure.nodes.size(); ++i) {
        if (drawing.data.kinds.kinds[i] != BoxKind::card) continue;
        const Node& node = drawing.data.structure.nodes[i];
        drawing.builder.begin(Element::Kind::node, node.id, static_cast<Index>(i)).type = node.displayType;
        drawCard(drawing.builder, node, drawing.values.nodes[i], drawing.data.sizes[i], drawing.data.boxes[i],
                 drawing.data.types.lookOf(node.displayType), static_cast<Index>(i), drawing.places);
        ++drawing.scene.nodeCount;
    }
}

void drawLabels(Drawing& drawing) {
    const auto& pathOf = drawing.data.pathOfLabel;
    const auto& linkPaths = drawing.data.linkPaths;
    for (std::size_t i = 0; i < pathOf.size(); ++i) {
        if (drawing.data.kinds.kinds[i] != BoxKind::label) continue;
        const Node& node = drawing.data.structure.nodes[i];
        Element& element = drawing.builder.begin(Element::Kind::label, node.id, static_cast<Index>(i));
        if (pathOf[i] != nothing) {
            const LinkPath& path = linkPaths.paths[pathOf[i]];
            element.link = path.id;
            element.place = node.location;
            if (!path.name.empty()) drawing.builder.tooltip(path.name);
            if (path.from != nothing && path.to != nothing)
                drawing.builder.tooltip(captionOf(drawing.data.structure.nodes[path.from]),
                                        arrowText(path.direction),
                                        captionOf(drawing.data.structure.nodes[path.to]));
        }
        drawLabel(drawing.builder, drawing.values.nodes[i], drawing.data.sizes[i], drawing.data.boxes[i],
                  static_cast<Index>(i), drawing.places);
    }
}

std::uint8_t widestOf(const Info& info) {
    std::uint8_t widest = 0;
    for (const Row& row : info.rows)
        widest = std::max(widest, row.width);
    return widest;
}

// The steps of all lines: the largest value decides of those at a link. Empty when no value says anything about it.
std::vector<std::uint8_t> lineStepsOf(const LayoutData& data, const Values& values) {
    if (values.meaning.widthSteps.empty()) return {};
    std::vector<std::uint8_t> ofPath(data.linkPaths.paths.size(), 0);
    for (std::size_t i = 0; i < data.pathOfLabel.size(); ++i)
        if (const Index path = data.pathOfLabel[i]; path != nothing)
            ofPath[path] = std::max(ofPath[path], widestOf(values.nodes[i]));
    std::vector<std::uint8_t> steps;
    steps.reserve(data.pathOfLine.size());
    for (const Index path : data.pathOfLine) {
        std::uint8_t widest = ofPath[path];
        if (const Index link = data.linkPaths.paths[path].link; link != nothing)
            for (const Info* info :
                 {&values.links[link].from, &values.links[link].total, &values.links[link].to})
                widest = std::max(widest, widestOf(*info));
        // Steps count from 1; without a value, a line is as wide as in the first one.
        steps.push_back(widest == 0 ? 0 : widest - 1);
    }
    return steps;
}

// The lines with a value that only the other result has. Their labels can be missing, so such values are at the link.
std::vector<std::uint8_t> goneLinesOf(const LayoutData& data, const Values& values) {
    if (values.meaning.comparison.empty()) return {};
    std::vector<std::uint8_t> gone;
    gone.reserve(data.pathOfLine.size());
    const auto hasGone = [](const Info& info) {
        return std::any_of(info.rows.begin(), info.rows.end(), isGone);
    };
    for (const Index path : data.pathOfLine) {
        const Index link = data.linkPaths.paths[path].link;
        gone.push_back(link != nothing &&
                               (hasGone(values.links[link].from) || hasGone(values.links[link].total) ||
                                hasGone(values.links[link].to))
                           ? 1
                           : 0);
    }
    return gone;
}

// Where a value stands, for people: the node, or the ends of the link.
std::string placeOf(const LayoutData& data, std::size_t node) {
    const auto& nodes = data.structure.nodes;
    const auto captionAt = [&](Index at) { return std::string(at == nothing ? "" : captionOf(nodes[at])); };
    if (const Index path = data.pathOfLabel[node]; path != nothing) {
        const LinkPath& link = data.linkPaths.paths[path];
        return captionAt(link.from) + std::string(arrowText(link.direction)) + captionAt(link.to);
    }
    const Node& shown = nodes[node];
    return captionAt(shown.type == "groupInfo" && shown.group != nothing ? shown.group
                                                                         : static_cast<Index>(node));
}

// "Errors of Web shop → Orders", or "" when no value is at a level.
std::string worstPlaceOf(const LayoutData& data, const Values& values) {
    for (std::size_t i = 0; i < values.nodes.size(); ++i)
        for (const Row& row : values.nodes[i].rows)
            if (row.isWorst)
                return row.name.empty() ? placeOf(data, i)
                                        : std::string(row.name) + " of " + placeOf(data, i);
    return {};
}

}  // namespace

Scene fill(const LayoutPointer& layout, const basekit2::variant_bag_t& bag, Differences* differences) {
    const LayoutData& data = layout->data();
    // readValues() always reports differences; here they go where the caller wants none.
    Differences unused;
    Scene scene;
    scene.layout = layout;
    Drawing drawing{
        data,
        readValues(bag, data.structure, scene.ownedTexts, differences == nullptr ? unused : *differences),
        SceneBuilder(scene), scene};
    scene.name = titleOf(data.structure);
    scene.mode = drawing.values.displayMode;
    scene.lines = data.lines;
    setLevels(scene, drawing.values.meaning);
    scene.lineSteps = lineStepsOf(data, drawing.values);
    scene.goneLines = goneLinesOf(data, drawing.values);
    scene.hasChanges = !drawing.values.meaning.comparison.empty();
    scene.size.width = data.width;
    const Rect room = drawHeading(drawing.builder, data.structure, scene.mode, data.badge, scene.size.width);
    drawSummary(drawing.builder, drawing.values.meaning, worstPlaceOf(data, drawing.values),
                scene.size.width);
    if (data.isEmpty)
        drawNothing(drawing.builder,
                    {sceneMargin, contentTop, scene.size.width - 2 * sceneMargin, data.content.height});
    drawContainers(drawing);
    drawLines(drawing);
    drawHeaders(drawing);
    drawCards(drawing);
    drawLabels(drawing);
    // The legend comes last: its height depends on how many lines its entries take.
    const double bottom = contentTop + data.content.height;
    scene.size.height =
        bottom +
        drawLegend(drawing.builder, data.types, drawing.values.meaning, room, bottom, scene.size.width) +
        sceneMargin;
    drawing.builder.end();
    return scene;
}

Scene makeScene(const basekit2::variant_bag_t& bag, const SceneOptions& options) {
    const LayoutPointer layout = layOut(bag, options);
    // A cancelled layout has no scene.
    return layout == nullptr ? Scene{} : fill(layout, bag);
}

}  // namespace tessera_draw
