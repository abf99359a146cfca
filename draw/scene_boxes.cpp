#include "draw/scene_boxes.h"

#include <fmt/format.h>

#include <algorithm>

namespace tessera_draw {
namespace {

// Where the two columns of rows stand, and the styles of their texts.
struct Columns {
    double left = 0;
    double right = 0;
    double firstLine = 0;
    double step = 0;
    double valueRoom = 0;  // kept for values
    TextRole nameRole = TextRole::rowName;
    TextRole valueRole = TextRole::rowValue;
};

void drawRow(SceneBuilder& builder, const Row& row, const Columns& columns, double line) {
    const TextStyle& nameStyle = styleOf(columns.nameRole);
    const TextStyle& valueStyle = styleOf(columns.valueRole);
    const double both = columns.right - columns.left - columnGap;
    // A value may use what a short name leaves; a name may use what a short value leaves.
    const double name = fitText(row.name, both, nameStyle.size, nameStyle.weight).width;
    const double valueRoom = std::max(std::min(columns.valueRoom, both), both - name);
    const double value = fitText(row.value, valueRoom, valueStyle.size, valueStyle.weight).width;
    builder.text({columns.left, line}, columns.nameRole, row.name, both - value);
    builder.text({columns.right, line}, columns.valueRole, row.value, valueRoom);
}

void drawRows(SceneBuilder& builder, const std::vector<Row>& rows, std::uint32_t room,
              const Columns& columns) {
    if (room == 0) return;
    const bool allFit = rows.size() <= room;
    const std::size_t shown = allFit ? rows.size() : room - 1;
    const auto lineOf = [&](std::size_t row) {
        return columns.firstLine + columns.step * static_cast<double>(row);
    };
    for (std::size_t i = 0; i < shown; ++i)
        drawRow(builder, rows[i], columns, lineOf(i));
    if (!allFit)
        builder.text({columns.left, lineOf(shown)}, TextRole::more,
                     builder.own(fmt::format("+{} more", rows.size() - shown)), columns.right - columns.left);
}

// One row needs no name of its own: the data transfer's stands over the value.
void drawSingleValue(SceneBuilder& builder, const Info& info, const Rect& rect) {
    const double middle = rect.x + rect.width / 2;
    const double room = rect.width - 2 * labelSide + 8;
    const Row& row = info.rows.front();
    std::string_view title = info.name.empty() ? row.name : info.name;
    if (info.rows.size() > 1)
        title = builder.own(fmt::format("{} +{}", fitText(title, room - 24, 9.5, Weight::regular).kept,
                                        info.rows.size() - 1));
    if (title.empty()) {
        builder.text({middle, rect.y + 21}, TextRole::labelValue, row.value, room);
        return;
    }
    builder.text({middle, rect.y + labelTitleLine}, TextRole::labelName, title, room);
    builder.text({middle, rect.y + labelValueLine}, TextRole::labelValue, row.value, room);
}

}  // namespace

void drawCard(SceneBuilder& builder, const Node& node, const BoxRoom& room, const Rect& rect, TypeLook look) {
    const bool isInterface = node.displayType == "interface";
    builder.box(rect, isInterface ? BoxRole::interfaceCard : BoxRole::card,
                look.accent == Ink::none ? Ink::labelBorder : look.accent);
    const double left = rect.x + cardLeft;
    const double right = rect.right() - cardRight;
    const double nameLine = rect.y + (room.rows == 0 ? cardNameAlone : cardNameLine);
    if (look.mark != Mark::none) builder.mark({right - markSize / 2, nameLine - 4.5}, look);
    builder.text({left, nameLine}, TextRole::name, captionOf(node),
                 right - left - (look.mark == Mark::none ? 0 : markRoom));
    drawRows(builder, node.info.rows, room.rows,
             {left, right, rect.y + cardFirstRow, rowStep, room.valueColumn, TextRole::rowName,
              TextRole::rowValue});
    builder.tip(captionOf(node));
    if (look.mark != Mark::none) builder.tip(node.displayType);
    builder.tips(node.info);
}

void drawLabel(SceneBuilder& builder, const Node& node, const BoxRoom& room, const Rect& rect) {
    builder.box(rect, BoxRole::labelCard);
    const Info& info = node.info;
    const double middle = rect.x + rect.width / 2;
    builder.tips(info);
    if (info.rows.empty()) {
        builder.text({middle, rect.y + rect.height / 2 + 4}, TextRole::labelName, "–", rect.width);
        return;
    }
    if (room.rows <= 1) {
        drawSingleValue(builder, info, rect);
        return;
    }
    builder.text({middle, rect.y + labelTitleLine}, TextRole::labelName, info.name, rect.width - 12);
    drawRows(builder, info.rows, room.rows,
             {rect.x + labelSide, rect.right() - labelSide, rect.y + labelFirstRow, labelRowStep,
              room.valueColumn, TextRole::labelRowName, TextRole::labelRowValue});
}

void drawContainer(SceneBuilder& builder, const Node& node, const Info& info, const Rect& rect, TypeLook look,
                   bool isInner) {
    builder.box(rect, isInner ? BoxRole::innerContainer : BoxRole::container);
    builder.tip(captionOf(node));
    if (look.mark != Mark::none) builder.tip(node.displayType);
    builder.tips(info);
}

void drawHeader(SceneBuilder& builder, const Node& node, const Info& info, const BoxRoom& room,
                const Rect& rect, TypeLook look, bool isInner) {
    builder.haloes(styleOf(isInner ? BoxRole::innerContainer : BoxRole::container).fill);
    double left = rect.x + groupSide;
    const double line = rect.y + groupTitleLine;
    if (look.mark != Mark::none) {
        builder.mark({left + markSize / 2, line - 4.5}, look);
        left += markRoom;
    }
    builder.text({left, line}, TextRole::name, captionOf(node), rect.right() - groupSide - left);
    const double rowsLeft = rect.x + groupSide;
    drawRows(builder, info.rows, room.rows,
             {rowsLeft, rowsLeft + room.nameColumn + columnGap + room.valueColumn, rect.y + groupFirstRow,
              rowStep, room.valueColumn, TextRole::rowName, TextRole::rowValue});
}

}  // namespace tessera_draw
