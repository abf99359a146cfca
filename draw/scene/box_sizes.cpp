#include "draw/scene/box_sizes.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "draw/scene/display_types.h"
#include "draw/scene/fitted_value.h"
#include "draw/text_width.h"
#include "draw/theme.h"

namespace tessera_draw {
namespace {

constexpr double minCard = 84;  // widths inside the margins
constexpr double maxCard = 244;
constexpr double maxCaption = 320;  // cards are wider for long names
constexpr double maxTitle = 640;    // of groups: no line passes through one of this width
constexpr double maxNumber = 280;   // and for values that are there at first
constexpr double maxNameColumn = 140;
constexpr double minLabel = 52;
constexpr double maxLabel = 168;
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

// What a box has to hold.
struct Needs {
    RowSpace space;
    double number = 0;  // em: the widest number that is there at first, with its unit
    bool hasChanges = false;
};

struct FontSizes {
    double name = 0;
    double value = 0;
};

FontSizes fontSizes(TextRole name, TextRole value) {
    return {styleOf(name).size, styleOf(value).size};
}

// Numbers are whole. Other values come first up to their share of the width, and use what short names leave; names get
// the rest. One pixel more covers rounding. Returns the width of both columns.
double setColumns(BoxSize& box, const Needs& needs, FontSizes sizes, double maxWidth,
                  double maxName = maxNameColumn) {
    const double name = std::min(needs.space.nameWidth * sizes.name + 1, maxName);
    const double share = maxWidth * maxValueShare;
    const double number = std::min(needs.number * sizes.value + 1, maxNumber);
    box.valueColumn = std::min(needs.space.valueWidth * sizes.value + 1,
                               std::max({share, number, maxWidth - columnGap - name}));
    box.nameColumn = std::min(name, maxWidth - columnGap - std::min(box.valueColumn, share));
    return box.nameColumn + columnGap + box.valueColumn;
}

// Of a card or container.
BoxSize boxWithRows(const Needs& needs) {
    BoxSize box;
    box.rows = std::min(needs.space.rows, maxCardRows);
    box.hasChanges = needs.hasChanges;
    box.rowStep = needs.hasChanges ? changedRowStep : rowStep;
    return box;
}

BoxSize cardSize(const Node& node, const Needs& needs) {
    BoxSize box = boxWithRows(needs);
    double inner =
        captionWidth(node, maxCaption - symbolSpace) + (isMarked(node.displayType) ? symbolSpace : 0);
    if (box.rows > 0)
        inner = std::max(inner,
                         setColumns(box, needs, fontSizes(TextRole::rowName, TextRole::rowValue), maxCard));
    box.size.width = even(std::max(inner, minCard)) + cardLeft + cardRight;
    box.size.height = box.rows == 0 ? 38 : cardFirstRow - 8 + box.rowStep * box.rows;
    return box;
}

BoxSize labelSize(const Needs& needs) {
    BoxSize box;
    const FontSizes sizes = fontSizes(TextRole::labelName, TextRole::labelValue);
    box.rows = std::clamp<std::uint32_t>(needs.space.rows, 1, maxLabelRows);
    box.hasChanges = needs.hasChanges;
    box.rowStep = needs.hasChanges ? labelChangedRowStep : labelRowStep;
    double inner = std::min(needs.space.titleWidth * sizes.name, maxLabel);
    const double columns = setColumns(box, needs, sizes, maxLabel);
    // A single value is drawn below its title, so the widest text decides, and not their sum.
    if (box.rows == 1) {
        const double number = std::min(needs.number * sizes.value, maxNumber);
        const double widest =
            std::max(needs.space.nameWidth * sizes.name, needs.space.valueWidth * sizes.value);
        inner = std::max({inner, std::min(widest, maxLabel), number});
        box.size.height = needs.hasChanges ? 44 : 34;
    } else {
        inner = std::max(inner, columns);
        box.size.height = labelFirstRow - 6 + box.rowStep * box.rows;
    }
    box.size.width = even(std::max(inner, minLabel)) + 2 * labelSide;
    return box;
}

BoxSize containerSize(const Node& node, const Needs& needs) {
    BoxSize box = boxWithRows(needs);
    // The size is a lower limit: what the group contains usually needs more.
    double inner = captionWidth(node, maxTitle) + (isMarked(node.displayType) ? symbolSpace : 0);
    double top = groupTop;
    if (box.rows > 0) {
        inner = std::max(inner, setColumns(box, needs, fontSizes(TextRole::rowName, TextRole::rowValue),
                                           maxCaption, maxCaption));
        top = groupTopWithRows + box.rowStep * box.rows;
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
void widenFor(Needs& needs, const Info& info) {
    constexpr double digit = 0.7;  // em, bold
    for (const Row& row : info.rows) {
        double width = measureText(row.value, 1, Weight::bold).width;
        if (width > needs.space.valueWidth) needs.space.valueWidth = width += digit;
        if (beginsWithNumber(row.value)) needs.number = std::max(needs.number, width);
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
        const auto widened = [&](const RowSpace& space) {
            Needs needs{space, 0, reservation != nullptr && reservation->hasChanges()};
            if (first != nullptr) widenFor(needs, (*first)[infoNode]);
            return needs;
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
