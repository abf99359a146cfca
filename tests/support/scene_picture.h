// Placements and scenes as the checker of drawings wants them.
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

#include "draw/read/diagram.h"
#include "draw/read/end_labels.h"
#include "draw/read/link_paths.h"
#include "draw/scene.h"
#include "draw/scene/box_sizes.h"
#include "draw/scene/scene_lines.h"
#include "draw/scene/shapes.h"
#include "tests/support/picture_check.h"

namespace tessera_test {

inline Picture pictureOf(const tessera_draw::PlacementInput& input,
                         const tessera_draw::Placement& placement) {
    Picture picture;
    picture.size = placement.size;
    for (std::size_t i = 0; i < input.boxes.size(); ++i) {
        const tessera_draw::BoxToPlace& box = input.boxes[i];
        picture.boxes.push_back({placement.boxes[i], box.group, box.isContainer, box.isLabel, box.padding,
                                 "box " + std::to_string(i)});
        const tessera_draw::Rect& rect = placement.boxes[i];
        if (rect.width < box.size.width - 0.01 || rect.height < box.size.height - 0.01) ++picture.missing;
    }
    for (std::size_t i = 0; i < input.lines.size(); ++i) {
        Picture::Line& line = picture.lines.emplace_back();
        line.from = input.lines[i].from;
        line.to = input.lines[i].to;
        line.through = input.lines[i].through;
        line.stretches = placement.lines[i].stretches;
        line.name = "line " + std::to_string(i);
    }
    return picture;
}

// What a text covers, from its ascent to its descent, at most its maximum width.
inline tessera_draw::Rect areaOf(const tessera_draw::TextShape& text) {
    using tessera_draw::Anchor;
    const double size = styleOf(text.role).size;
    const double shown = std::min(text.width, text.maxWidth);
    const double free = text.maxWidth - shown;
    const Anchor anchor = styleOf(text.role).anchor;
    const double before = anchor == Anchor::start ? 0 : anchor == Anchor::end ? free : free / 2;
    return {leftOf(text) + before, text.at.y - 0.8 * size, shown, size};
}

// A scene of the diagram in `bag`.
class ScenePicture {
  public:
    ScenePicture(const basekit2::variant_bag_t& bag, const tessera_draw::Scene& scene)
        : m_diagram(tessera_draw::readDiagram(bag)),
          m_linkPaths(threadsOf(m_diagram)),
          m_scene(scene),
          m_boxes(m_diagram.nodes.size(), nothing) {}

    [[nodiscard]] Picture make() {
        m_picture.size = m_scene.size;
        m_picture.headLength = tessera_draw::arrowLength;
        for (const tessera_draw::Element& element : m_scene.elements)
            addBox(element);
        nestBoxes();
        for (const tessera_draw::Element& element : m_scene.elements) {
            if (element.kind == Kind::line) addLine(element);
            addTexts(element);
        }
        countMissing();
        return std::move(m_picture);
    }

  private:
    using Kind = tessera_draw::Element::Kind;

    static tessera_draw::LinkPaths threadsOf(const tessera_draw::Diagram& diagram) {
        tessera_draw::LinkPaths linkPaths = tessera_draw::findLinkPaths(diagram);
        moveEndLabels(diagram, linkPaths);
        return linkPaths;
    }

    void addBox(const tessera_draw::Element& element) {
        const bool isBox =
            element.kind == Kind::group || element.kind == Kind::node || element.kind == Kind::label;
        if (!isBox || element.boxes.count == 0) return;
        m_boxes[element.index] = static_cast<Index>(m_picture.boxes.size());
        m_picture.boxes.push_back({m_scene.boxes[element.boxes.first].rect,
                                   nothing,
                                   element.kind == Kind::group,
                                   element.kind == Kind::label,
                                   {},
                                   std::string(element.id)});
    }

    // Labels are in the group of their stop, or in one around an end of their link.
    void nestBoxes() {
        const auto put = [this](Index node, Index group) {
            if (m_boxes[node] != nothing)
                m_picture.boxes[m_boxes[node]].container = group == nothing ? nothing : m_boxes[group];
        };
        for (Index i = 0; i < m_boxes.size(); ++i)
            put(i, m_diagram.nodes[i].group);
        for (const tessera_draw::LinkPath& path : m_linkPaths.paths) {
            for (std::uint32_t i = 0; i < path.stopCount; ++i) {
                const tessera_draw::PathStop& stop = m_linkPaths.stops[path.firstStop + i];
                if (m_boxes[stop.node] == nothing) continue;
                Index innermost = nothing;
                for (const Index start : {path.from, path.to, stop.group}) {
                    const Index group = groupAround(stop.node, start);
                    if (innermost == nothing || isInside(group, innermost)) innermost = group;
                }
                put(stop.node, innermost);
            }
        }
    }

    [[nodiscard]] bool isInside(Index group, Index outer) const {
        while (group != nothing && group != outer)
            group = m_diagram.nodes[group].group;
        return group != nothing;
    }

    // The innermost group from `start` outwards that has the whole label inside it.
    [[nodiscard]] Index groupAround(Index label, Index start) const {
        const tessera_draw::Rect& inner = m_picture.boxes[m_boxes[label]].rect;
        for (Index group = start; group != nothing; group = m_diagram.nodes[group].group) {
            if (m_boxes[group] == nothing || !m_picture.boxes[m_boxes[group]].isContainer) continue;
            const tessera_draw::Rect& outer = m_picture.boxes[m_boxes[group]].rect;
            if (inner.x >= outer.x && inner.y >= outer.y && inner.right() <= outer.right() &&
                inner.bottom() <= outer.bottom())
                return group;
        }
        return nothing;
    }

    // A group's values are a part of it.
    [[nodiscard]] Index endBox(Index node) const {
        if (node == nothing) return nothing;
        const tessera_draw::Node& end = m_diagram.nodes[node];
        if (m_boxes[node] == nothing && end.type == "groupInfo" && end.group != nothing)
            return m_boxes[end.group];
        return m_boxes[node];
    }

    void addLine(const tessera_draw::Element& element) {
        const tessera_draw::LinkPath& path = m_linkPaths.paths[element.index];
        const tessera_draw::LineShape& shape = m_scene.lines[element.lines.first];
        Picture::Line& line = m_picture.lines.emplace_back();
        line.from = endBox(path.from);
        line.to = endBox(path.to);
        for (std::uint32_t i = 0; i < path.stopCount; ++i)
            if (const Index label = m_boxes[m_linkPaths.stops[path.firstStop + i].node]; label != nothing)
                line.through.push_back(label);
        line.stretches = shape.stretches;
        line.wantsFromHead = path.direction == "back" || path.direction == "both";
        line.wantsToHead = path.direction == "forward" || path.direction == "both";
        if (shape.hasFromHead) line.fromHead = {shape.fromHead.tip, shape.fromHead.direction};
        if (shape.hasToHead) line.toHead = {shape.toHead.tip, shape.toHead.direction};
        line.name =
            std::string(element.id) + " from " + std::string(element.from) + " to " + std::string(element.to);
    }

    void addTexts(const tessera_draw::Element& element) {
        const bool hasBox = element.kind == Kind::group || element.kind == Kind::header ||
                            element.kind == Kind::node || element.kind == Kind::label;
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            const tessera_draw::TextShape& text = m_scene.texts[element.texts.first + i];
            Picture::Text& added = m_picture.texts.emplace_back();
            added.area = areaOf(text);
            if (hasBox) added.box = m_boxes[element.index];
            added.text = text.text;
            added.isHeader = element.kind == Kind::header;
            const bool isCut = text.isShortened || endOfName(text) != std::string_view::npos;
            if (!hasBox || !isCut || m_boxes[element.index] == nothing) continue;
            added.whole = wholeWidth(element, text);
            added.room = roomFor(element, text);
        }
    }

    // Where the end of a long name begins, after the "…"; npos in other texts.
    static std::size_t endOfName(const tessera_draw::TextShape& text) {
        constexpr std::string_view dots = "…";
        const std::size_t at = text.text.find(dots);
        return text.role != tessera_draw::TextRole::name || at == std::string_view::npos
                   ? std::string_view::npos
                   : at + dots.size();
    }

    // Whether the text shows a part of the whole one: a part of the same bytes, or a name's beginning and end.
    static bool shows(const tessera_draw::TextShape& text, std::string_view whole) {
        const char* const start = text.text.data();
        if (text.text.empty()) return false;
        if (start >= whole.data() && start < whole.data() + whole.size()) return true;
        const std::size_t end = endOfName(text);
        return end != std::string_view::npos && whole.starts_with(text.text.substr(0, text.text.find("…"))) &&
               whole.ends_with(text.text.substr(end));
    }

    // The width of the tooltip that the text is a part of; 0 if there is none.
    [[nodiscard]] double wholeWidth(const tessera_draw::Element& element,
                                    const tessera_draw::TextShape& text) const {
        const tessera_draw::TextStyle& style = styleOf(text.role);
        // A header has no tooltips of its own: those of its group are elsewhere in the same list.
        const std::span<const tessera_draw::TooltipLine> own =
            element.kind == Kind::header
                ? std::span(m_scene.tooltips)
                : std::span(m_scene.tooltips).subspan(element.tooltips.first, element.tooltips.count);
        for (const tessera_draw::TooltipLine& line : own)
            for (const std::string_view whole : {line.first, line.second})
                if (shows(text, whole)) return measureText(whole, style.size, style.weight).width;
        return 0;
    }

    // What the margins of its box, its symbol and the other texts of its line leave.
    [[nodiscard]] double roomFor(const tessera_draw::Element& element,
                                 const tessera_draw::TextShape& text) const {
        const bool isCentered = styleOf(text.role).anchor == tessera_draw::Anchor::middle;
        const double sides = element.kind == Kind::header ? 2 * tessera_draw::groupSide
                             : element.kind == Kind::node ? tessera_draw::cardLeft + tessera_draw::cardRight
                             : isCentered                 ? 2 * tessera_draw::labelSide - 8
                                                          : 2 * tessera_draw::labelSide;
        double room = m_picture.boxes[m_boxes[element.index]].rect.width - sides;
        if (text.role == tessera_draw::TextRole::name && element.symbols.count > 0)
            room -= tessera_draw::symbolSpace;
        for (std::uint32_t i = 0; i < element.texts.count; ++i) {
            const tessera_draw::TextShape& other = m_scene.texts[element.texts.first + i];
            if (&other != &text && other.at.y == text.at.y) room -= other.width + tessera_draw::columnGap;
        }
        return room;
    }

    void countMissing() {
        for (std::size_t i = 0; i < m_boxes.size(); ++i) {
            const std::string_view type = m_diagram.nodes[i].type;
            if (type != "dummy" && type != "groupInfo" && m_boxes[i] == nothing) ++m_picture.missing;
        }
        std::size_t drawable = 0;
        for (const tessera_draw::LinkPath& path : m_linkPaths.paths)
            drawable += endBox(path.from) != nothing && endBox(path.to) != nothing ? 1U : 0U;
        m_picture.missing += drawable - std::min(drawable, m_picture.lines.size());
    }

    const tessera_draw::Diagram m_diagram;
    const tessera_draw::LinkPaths m_linkPaths;
    const tessera_draw::Scene& m_scene;
    std::vector<Index> m_boxes;  // by node
    Picture m_picture;
};

inline Faults checkScene(const basekit2::variant_bag_t& bag, const tessera_draw::Scene& scene) {
    return checkPicture(ScenePicture(bag, scene).make());
}

}  // namespace tessera_test
