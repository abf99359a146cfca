#include "draw/scene/box_sizes.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "draw/scene/display_types.h"
#include "draw/text_width.h"
#include "draw/theme.h"

namespace tessera_draw {
namespace {

constexpr double minCard = 84;  // widths inside the margins
constexpr double maxCard = 244;
constexpr double maxNameColumn = 140;
constexpr double minLabel = 52;
constexpr double maxLabel = 168;
constexpr double maxGroupTitle = 320;
constexpr std::uint32_t maxCardRows = 12;
constexpr std::uint32_t maxLabelRows = 6;
constexpr double groupMargin = 20;
constexpr double groupTop = 40;
constexpr double groupTopWithRows = 48;
constexpr double belowHeader = 8;  // from a group's texts to where lines may bend

// Usual space, in em, for callers that give no reservation.
constexpr RowSpace usualNode = {2, 0, 5.6, 6.6};
constexpr RowSpace usualLabel = {1, 6, 0, 5.8};
constexpr RowSpace usualGroup = {1, 0, 6, 6.6};

// With an even width, the middle of a box is on a whole pixel.
double even(double length) {
    return 2 * std::ceil(length / 2);
}

double captionWidth(const Node& node, double maxWidth) {
    const TextStyle& style = styleOf(TextRole::name);
    return fitText(captionOf(node), maxWidth, style.size, style.weight).width;
}

// Values come first, up to their share of the width; names get what is left. One pixel more covers rounding.
void setColumns(BoxSize& box, const RowSpace& space, double nameSize, double valueSize, double maxWidth,
                double maxName = maxNameColumn) {
    box.valueColumn = std::min(space.valueWidth * valueSize + 1, maxWidth * maxValueShare);
    box.nameColumn =
        std::min({space.nameWidth * nameSize + 1, maxName, maxWidth - columnGap - box.valueColumn});
}

BoxSize cardSize(const Node& node, const RowSpace& space) {
    BoxSize box;
    box.rows = std::min(space.rows, maxCardRows);
    double inner = captionWidth(node, maxCard - symbolSpace) + (isMarked(node.displayType) ? symbolSpace : 0);
    if (box.rows > 0) {
        setColumns(box, space, styleOf(TextRole::rowName).size, styleOf(TextRole::rowValue).size, maxCard);
        inner = std::max(inner, box.nameColumn + columnGap + box.valueColumn);
    }
    box.size.width = even(std::clamp(inner, minCard, maxCard)) + cardLeft + cardRight;
    box.size.height = box.rows == 0 ? 38 : cardFirstRow - 8 + rowStep * box.rows;
    return box;
}

BoxSize labelSize(const RowSpace& space) {
    BoxSize box;
    const double nameSize = styleOf(TextRole::labelName).size;
    const double valueSize = styleOf(TextRole::labelValue).size;
    box.rows = std::clamp<std::uint32_t>(space.rows, 1, maxLabelRows);
    setColumns(box, space, nameSize, valueSize, maxLabel);
    double inner = space.titleWidth * nameSize;
    // A single value is drawn below its title, so the widest text decides, and not their sum.
    if (box.rows == 1) {
        inner = std::max({inner, space.nameWidth * nameSize, space.valueWidth * valueSize});
        box.size.height = 34;
    } else {
        inner = std::max(inner, box.nameColumn + columnGap + box.valueColumn);
        box.size.height = labelFirstRow - 6 + labelRowStep * box.rows;
    }
    box.size.width = even(std::clamp(inner, minLabel, maxLabel)) + 2 * labelSide;
    return box;
}

BoxSize containerSize(const Node& node, const RowSpace& space) {
    BoxSize box;
    box.rows = std::min(space.rows, maxCardRows);
    // The size is a lower limit: what the group contains usually needs more.
    double inner = captionWidth(node, maxGroupTitle) + (isMarked(node.displayType) ? symbolSpace : 0);
    double top = groupTop;
    if (box.rows > 0) {
        setColumns(box, space, styleOf(TextRole::rowName).size, styleOf(TextRole::rowValue).size,
                   maxGroupTitle, maxGroupTitle);
        inner = std::max(inner, box.nameColumn + columnGap + box.valueColumn);
        top = groupTopWithRows + rowStep * box.rows;
    }
    box.padding = {groupMargin, top, groupMargin, groupMargin};
    box.size = {even(inner) + 2 * groupSide, top + groupMargin};
    box.header = {groupSide + inner, top - belowHeader};
    return box;
}

Reservation::Place placeOf(std::string_view location) {
    if (location == "from") return Reservation::Place::from;
    return location == "to" ? Reservation::Place::to : Reservation::Place::center;
}

// Values that exceed what was expected may still grow.
void widenFor(RowSpace& space, const Info& info) {
    constexpr double digit = 0.7;  // em, bold
    for (const Row& row : info.rows) {
        const double width = measureText(row.value, 1, Weight::bold).width;
        if (width > space.valueWidth) space.valueWidth = width + digit;
    }
}

// A reservation without an entry for a node says that the node has no rows.
RowSpace orNothing(const RowSpace* space) {
    return space == nullptr ? RowSpace{} : *space;
}

}  // namespace

BoxKinds findKinds(const Diagram& diagram) {
    const std::size_t count = diagram.nodes.size();
    BoxKinds result{std::vector<BoxKind>(count, BoxKind::card), std::vector<Index>(count, nothing)};
    for (std::size_t i = 0; i < count; ++i) {
        const Node& node = diagram.nodes[i];
        if (node.type == "dummy") result.kinds[i] = BoxKind::none;
        if (node.type == "label") result.kinds[i] = BoxKind::label;
        if (node.type != "groupInfo" || node.isGroup || node.group == nothing) continue;
        result.kinds[i] = BoxKind::none;
        result.groupInfos[node.group] = static_cast<Index>(i);
    }
    for (std::size_t i = 0; i < count; ++i) {
        // A second pass, because a group may come after its members; it overrides every other kind.
        if (diagram.nodes[i].isGroup) result.kinds[i] = BoxKind::container;
        if (diagram.nodes[i].group != nothing) result.kinds[diagram.nodes[i].group] = BoxKind::container;
    }
    return result;
}

std::vector<BoxSize> boxSizesOf(const Diagram& diagram, const LinkPaths& linkPaths, const BoxKinds& kinds,
                                const std::vector<Index>& pathOfLabel, const Reservation* reservation,
                                const std::vector<Info>* first) {
    std::vector<BoxSize> sizes(diagram.nodes.size());
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const Node& node = diagram.nodes[i];
        const Index infoNode = kinds.groupInfos[i] == nothing ? static_cast<Index>(i) : kinds.groupInfos[i];
        const auto widened = [&](RowSpace space) {
            if (first != nullptr) widenFor(space, (*first)[infoNode]);
            return space;
        };
        const RowSpace* kept = reservation == nullptr ? nullptr : reservation->findNode(node.id);
        if (kinds.kinds[i] == BoxKind::card) {
            sizes[i] = cardSize(node, widened(reservation == nullptr ? usualNode : orNothing(kept)));
        } else if (kinds.kinds[i] == BoxKind::container) {
            const bool hasRows = kinds.groupInfos[i] != nothing;
            sizes[i] = containerSize(node, widened(reservation != nullptr ? orNothing(kept)
                                                   : hasRows              ? usualGroup
                                                                          : RowSpace{}));
        } else if (kinds.kinds[i] == BoxKind::label) {
            const Index path = pathOfLabel[i];
            const RowSpace* link =
                reservation == nullptr || path == nothing
                    ? nullptr
                    : reservation->findLink(linkPaths.paths[path].id, placeOf(node.location));
            sizes[i] = labelSize(widened(link == nullptr ? usualLabel : *link));
        }
    }
    return sizes;
}

}  // namespace tessera_draw
