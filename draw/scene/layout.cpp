#include "draw/layout.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "draw/read/end_labels.h"
#include "draw/scene/heading.h"
#include "draw/scene/kept_input.h"
#include "draw/scene/layout_data.h"
#include "draw/scene/scene_input.h"
#include "draw/scene/scene_lines.h"

namespace tessera_draw {
namespace {

// In pixels: the space of the note that replaces a diagram without boxes.
constexpr Size emptySize = {440, 132};

// The bag may end before the layout does, so the layout copies its texts.
void own(TextArena& texts, std::string_view& text) {
    text = texts.add(text);
}

// Copies each text once, for types and similar texts: few different ones are used by many nodes.
class FewTexts {
  public:
    explicit FewTexts(TextArena& texts) : m_texts(texts) {}

    void own(std::string_view& text) {
        if (text.empty()) return;
        for (const std::string_view known : m_known)
            if (known == text) return void(text = known);
        tessera_draw::own(m_texts, text);
        // Bounds the search: beyond this many, texts are copied each time.
        constexpr std::size_t maxKnown = 16;
        if (m_known.size() < maxKnown) m_known.push_back(text);
    }

  private:
    TextArena& m_texts;
    std::vector<std::string_view> m_known;
};

void ownTexts(Diagram& diagram, TextArena& texts) {
    FewTexts few(texts);
    for (std::string_view* text : {&diagram.id, &diagram.name, &diagram.displayMode})
        own(texts, *text);
    for (Node& node : diagram.nodes) {
        own(texts, node.id);
        own(texts, node.name);
        for (std::string_view* text : {&node.type, &node.displayType, &node.aligning, &node.location})
            few.own(*text);
    }
    for (Link& link : diagram.links) {
        own(texts, link.id);
        own(texts, link.name);
        few.own(link.direction);
    }
}

// The depth of every node; outermost nodes have 0. Iterative, so any depth works.
std::vector<std::uint32_t> depthsOf(const Diagram& diagram) {
    constexpr std::uint32_t unknown = nothing;
    std::vector<std::uint32_t> depths(diagram.nodes.size(), unknown);
    std::vector<Index> path;
    for (std::size_t i = 0; i < depths.size(); ++i) {
        auto at = static_cast<Index>(i);
        // Up to a node of known depth: each node is on one such path, so the time is linear.
        for (; at != nothing && depths[at] == unknown; at = diagram.nodes[at].group)
            path.push_back(at);
        std::uint32_t depth = at == nothing ? 0 : depths[at] + 1;
        for (; !path.empty(); path.pop_back())
            depths[path.back()] = depth++;
    }
    return depths;
}

// Containers, the outer ones before what they contain.
std::vector<LayoutData::Container> containersOf(const LayoutData& data) {
    const std::vector<std::uint32_t> depths = depthsOf(data.structure);
    std::vector<LayoutData::Container> containers;
    for (std::size_t i = 0; i < depths.size(); ++i)
        if (data.kinds.kinds[i] == BoxKind::container)
            containers.push_back({static_cast<Index>(i), depths[i]});
    std::stable_sort(
        containers.begin(), containers.end(),
        [](const LayoutData::Container& a, const LayoutData::Container& b) { return a.depth < b.depth; });
    return containers;
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

// Stores the placement by nodes and link paths instead of the placement's own indices.
void adopt(LayoutData& data, Placement placement, SceneInput& input) {
    shift(placement, sceneMargin, contentTop);
    data.boxes.resize(data.structure.nodes.size());
    for (std::size_t i = 0; i < data.boxes.size(); ++i)
        if (input.boxOfNode[i] != nothing) data.boxes[i] = placement.boxes[input.boxOfNode[i]];
    data.pathOfLine = std::move(input.pathOfLine);
    data.lines.reserve(placement.lines.size());
    for (std::size_t i = 0; i < placement.lines.size(); ++i)
        data.lines.push_back(
            makeLine(std::move(placement.lines[i]), data.linkPaths.paths[data.pathOfLine[i]].direction));
    data.isEmpty = placement.boxes.empty();
    data.content = data.isEmpty ? emptySize : placement.size;
    data.width = std::max(data.content.width, headingWidth(data.structure, data.badge)) + 2 * sceneMargin;
}

std::vector<BoxSize> sizesOf(const LayoutData& data, const LayoutOptions& options) {
    std::vector<Info> first;
    if (options.firstValues != nullptr) first = readNodeValues(*options.firstValues, data.structure);
    return boxSizesOf(data.structure, data.linkPaths, data.kinds, data.pathOfLabel, options.reservation,
                      options.firstValues == nullptr ? nullptr : &first);
}

// The boxes of a diagram, placed in one direction.
struct Attempt {
    SceneInput input;
    Placement placement;
    Direction direction;
};

std::optional<Attempt> layOutIn(Direction direction, bool isFolded, const LayoutData& data,
                                LayoutOptions options) {
    options.direction = direction;
    options.isFolded = isFolded && options.isFolded;
    Attempt attempt{
        makeInput(data.structure, data.linkPaths, data.kinds, data.sizes, options), {}, direction};
    attempt.placement = placeInput(attempt.input, options);
    if (attempt.placement.boxes.size() != attempt.input.input.boxes.size()) return std::nullopt;  // cancelled
    return attempt;
}

Size inPicture(const Attempt& attempt) {
    const Size size = attempt.placement.size;
    return {size.width + 2 * sceneMargin, size.height + contentTop + sceneMargin};
}

bool isBand(Size picture) {
    return picture.width > widestShape * picture.height || picture.height > highestShape * picture.width;
}

// How large the drawing can be shown in a space of that shape; a band, wide or high, counts less.
double scaleIn(Size fit, Size picture) {
    constexpr double band = 0.75;
    return std::min(fit.width / picture.width, fit.height / picture.height) * (isBand(picture) ? band : 1);
}

// Whether the drawing is a band that may be folded.
bool isToFold(const Attempt& attempt, const LayoutOptions& options) {
    const Size size = attempt.placement.size;
    return options.isFolded && attempt.placement.boxes.size() <= mostFolded &&
           std::max(size.width, size.height) > fitsAnywhere && isBand(inPicture(attempt));
}

std::optional<Attempt> layOutBest(const LayoutData& data, const LayoutOptions& options) {
    using enum Direction;
    if (options.kept != nullptr) return layOutIn(options.kept->direction, false, data, options);
    if (options.direction != automatic) return layOutIn(options.direction, true, data, options);
    // Reading to the right is easier, and one layout takes less time than two.
    constexpr std::size_t seenAsAWhole = 2'000;  // boxes
    constexpr double tooWide = 1.5;
    constexpr double clearlyBetter = 1.1;
    constexpr double betterThanFolded = 0.5;  // a folded drawing has long lines, and takes more to follow
    std::optional<Attempt> right = layOutIn(leftToRight, false, data, options);
    if (!right) return right;
    const Size size = right->placement.size;
    const bool isTooWide = size.width > fitsAnywhere && right->placement.boxes.size() <= seenAsAWhole &&
                           size.width * options.fit.height > tooWide * size.height * options.fit.width;
    const bool isFolded = isToFold(*right, options);
    if (isFolded) right = layOutIn(leftToRight, true, data, options);
    if (!right || !isTooWide) return right;
    std::optional<Attempt> down = layOutIn(topToBottom, false, data, options);
    if (!down || isToFold(*down, options)) return down ? std::move(right) : std::move(down);
    const double factor = isFolded ? betterThanFolded : clearlyBetter;
    return scaleIn(options.fit, inPicture(*down)) > factor * scaleIn(options.fit, inPicture(*right))
               ? std::move(down)
               : std::move(right);
}

}  // namespace

LayoutPointer layOut(const basekit2::variant_bag_t& bag, const LayoutOptions& options) {
    auto data = std::make_unique<LayoutData>();
    data->structure = readStructure(bag);
    ownTexts(data->structure, data->texts);
    const Diagram& diagram = data->structure;
    data->linkPaths = findLinkPaths(diagram);
    moveEndLabels(diagram, data->linkPaths);
    data->pathOfLabel = pathsOfStops(data->linkPaths, diagram.nodes.size());
    data->types = DisplayTypes(diagram);
    data->kinds = findKinds(diagram);
    data->sizes = sizesOf(*data, options);
    std::optional<Attempt> attempt = layOutBest(*data, options);
    if (!attempt) return nullptr;  // cancelled
    data->badge = badgeWidth(options.reservation == nullptr ? Reservation::usualModeWidth
                                                            : options.reservation->modeWidth());
    if (options.isSaved)
        data->saved = savedLayoutOf(attempt->placement.layers, attempt->direction, diagram, data->linkPaths,
                                    attempt->input);
    data->isDownward = attempt->direction == Direction::topToBottom;
    adopt(*data, std::move(attempt->placement), attempt->input);
    data->containers = containersOf(*data);
    return std::make_shared<Layout>(std::move(data));
}

Layout::Layout(std::unique_ptr<const LayoutData> data) : m_data(std::move(data)) {}

Layout::~Layout() = default;

Size Layout::size() const noexcept {
    return {m_data->width, contentTop + m_data->content.height + sceneMargin};
}

std::optional<Rect> Layout::boxOf(std::string_view nodeId) const {
    // From the end: of several nodes with one id the last counts.
    for (std::size_t i = m_data->boxes.size(); i-- > 0;)
        if (m_data->structure.nodes[i].id == nodeId && m_data->kinds.kinds[i] != BoxKind::none)
            return m_data->boxes[i];
    return std::nullopt;
}

std::size_t Layout::boxCount() const noexcept {
    return static_cast<std::size_t>(std::count_if(m_data->kinds.kinds.begin(), m_data->kinds.kinds.end(),
                                                  [](BoxKind kind) { return kind != BoxKind::none; }));
}

std::size_t Layout::lineCount() const noexcept {
    return m_data->lines.size();
}

}  // namespace tessera_draw
