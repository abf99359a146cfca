#include "draw/scene/scene_boxes.h"

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

void drawRows(SceneBuilder& builder, const std::vector<Row>& rows, std::uint32_t maxRows,
              const Columns& columns) {
    if (maxRows == 0) return;
    const bool allFit = rows.size() <= maxRows;
    const std::size_t shown = allFit ? rows.size() : maxRows - 1;
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
    const double maxWidth = rect.width - 2 * labelSide + 8;
    const Row& row = info.rows.front();
    std::string_view title = info.name.empty() ? row.name : info.name;
    if (info.rows.size() > 1)
        title = builder.own(fmt::format("{} +{}", fitText(title, maxWidth - 24, 9.5, Weight::regular).kept,
                                        info.rows.size() - 1));
    if (title.empty()) {
        builder.text({middle, rect.y + 21}, TextRole::labelValue, row.value, maxWidth);
        return;
    }
    builder.text({middle, rect.y + labelTitleLine}, TextRole::labelName, title, maxWidth);
    builder.text({middle, rect.y + labelValueLine}, TextRole::labelValue, row.value, maxWidth);
}

}  // namespace

void drawCard(SceneBuilder& builder, const Node& node, const BoxSize& size, const Rect& rect, TypeLook look) {
    const bool isInterface = node.displayType == "interface";
    builder.box(rect, isInterface ? BoxRole::interfaceCard : BoxRole::card,
                look.accent == ColorRole::none ? ColorRole::labelBorder : look.accent);
    const double left = rect.x + cardLeft;
    const double right = rect.right() - cardRight;
    const double nameLine = rect.y + (size.rows == 0 ? cardNameAlone : cardNameLine);
    if (look.symbol != Symbol::none) builder.symbol({right - symbolSize / 2, nameLine - 4.5}, look);
    builder.text({left, nameLine}, TextRole::name, captionOf(node),
                 right - left - (look.symbol == Symbol::none ? 0 : symbolSpace));
    drawRows(builder, node.info.rows, size.rows,
             {left, right, rect.y + cardFirstRow, rowStep, size.valueColumn, TextRole::rowName,
              TextRole::rowValue});
    builder.tooltip(captionOf(node));
    if (look.symbol != Symbol::none) builder.tooltip(node.displayType);
    builder.tooltips(node.info);
}

void drawLabel(SceneBuilder& builder, const Node& node, const BoxSize& size, const Rect& rect) {
    builder.box(rect, BoxRole::labelCard);
    const Info& info = node.info;
    const double middle = rect.x + rect.width / 2;
    builder.tooltips(info);
    if (info.rows.empty()) {
        builder.text({middle, rect.y + rect.height / 2 + 4}, TextRole::labelName, "–", rect.width);
        return;
    }
    if (size.rows <= 1) {
        drawSingleValue(builder, info, rect);
        return;
    }
    builder.text({middle, rect.y + labelTitleLine}, TextRole::labelName, info.name, rect.width - 12);
    drawRows(builder, info.rows, size.rows,
             {rect.x + labelSide, rect.right() - labelSide, rect.y + labelFirstRow, labelRowStep,
              size.valueColumn, TextRole::labelRowName, TextRole::labelRowValue});
}

void drawContainer(SceneBuilder& builder, const Node& node, const Info& info, const Rect& rect, TypeLook look,
                   bool isInner) {
    builder.box(rect, isInner ? BoxRole::innerContainer : BoxRole::container);
    builder.tooltip(captionOf(node));
    if (look.symbol != Symbol::none) builder.tooltip(node.displayType);
    builder.tooltips(info);
}

void drawHeader(SceneBuilder& builder, const Node& node, const Info& info, const BoxSize& size,
                const Rect& rect, TypeLook look, bool isInner) {
    builder.setTextHalo(styleOf(isInner ? BoxRole::innerContainer : BoxRole::container).fill);
    double left = rect.x + groupSide;
    const double line = rect.y + groupTitleLine;
    if (look.symbol != Symbol::none) {
        builder.symbol({left + symbolSize / 2, line - 4.5}, look);
        left += symbolSpace;
    }
    builder.text({left, line}, TextRole::name, captionOf(node), rect.right() - groupSide - left);
    const double rowsLeft = rect.x + groupSide;
    drawRows(builder, info.rows, size.rows,
             {rowsLeft, rowsLeft + size.nameColumn + columnGap + size.valueColumn, rect.y + groupFirstRow,
              rowStep, size.valueColumn, TextRole::rowName, TextRole::rowValue});
}

}  // namespace tessera_draw
